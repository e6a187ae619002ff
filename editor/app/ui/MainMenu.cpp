// SPDX-License-Identifier: GPL-3.0-or-later
#include "app/ui/MainMenu.h"

#include "effectmanager/EffectTree.h"
#include "resources/Commands.h"
#include "resources/Menus.h"
#include "resources/Strings.h"

#include <list>

namespace ek {

namespace {

void Fill(CommandMenu& menu, std::span<const MenuItem> items)
{
    for (const MenuItem& item : items) {
        if (item.IsSeparator())
            menu.addSeparator();
        else if (item.Id == 0)
            menu.AddPlaceholder(QString::fromUtf8(item.Text));
        else
            menu.AddCommand(item.Id, QString::fromUtf8(item.Text), QString::fromStdString(CommandStatusText(item.Id)));
    }
}

/// A name as one line of a menu: an ampersand is no mnemonic, a tab no key.
QString MenuText(const std::string& name)
{
    QString text = QString::fromStdString(name).replace('&', "&&");
    for (QChar& character : text) {
        if (character < ' ')
            character = ' ';
    }
    return text;
}

/// A popup of the effects, which is shown disabled while nothing is in it.
class MorphPopup final : public EffectMenu {
public:
    MorphPopup(const QString& title, CommandRouter& router, QMenu& parent)
        : m_router(router), m_menu(*new CommandMenu(title, router, &parent))
    {
        parent.addMenu(&m_menu)->setEnabled(false);
    }

    void AddItem(uint32_t command, const std::string& text) override
    {
        m_menu.AddCommand(command, MenuText(text), {});
        m_menu.menuAction()->setEnabled(true);
    }

    EffectMenu& AddPopup(const std::string& text) override
    {
        m_menu.menuAction()->setEnabled(true);
        return m_inner.emplace_back(MenuText(text), m_router, m_menu);
    }

private:
    CommandRouter& m_router;
    CommandMenu& m_menu;
    std::list<MorphPopup> m_inner;
};

} // namespace

MainMenu::MainMenu(CommandRouter& router) : m_menu(std::make_unique<QMenu>()), m_router(router)
{
    const QString morph = QString::fromStdString(LoadString(IDS_MORPH_MENU));
    for (const MenuItem& item : LoadMenu(MENU_MAIN)) {
        auto* submenu = new CommandMenu('&' + QString::fromUtf8(item.Text), router, m_menu.get());
        Fill(*submenu, item.Submenu());
        m_menu->addMenu(submenu);
        if (!m_fileMenu)
            m_fileMenu = submenu;
        if (morph.compare(QString::fromUtf8(item.Text), Qt::CaseInsensitive) == 0)
            m_morphMenu = submenu;
    }
}

void MainMenu::SetMorphEffects(const CEffectTree& effects)
{
    if (!m_morphMenu)
        return;
    m_morphMenu->clear();
    MorphPopup popup(QString::fromStdString(LoadString(IDS_MORPH_EFFECTS)), m_router, *m_morphMenu);
    effects.BuildMorphMenu(popup, true);
}

void MainMenu::SetRecentFiles(const std::vector<std::filesystem::path>& paths)
{
    m_fileMenu->RemoveCommands(ID_RECENT_FIRST, ID_RECENT_LAST);
    uint32_t id = ID_RECENT_FIRST;
    for (const std::filesystem::path& path : paths)
        m_fileMenu->AddCommand(id++, MenuText(path.string()), QString::fromStdString(path.string()));
}

} // namespace ek
