// SPDX-License-Identifier: GPL-3.0-or-later
#include "app/ui/MainMenu.h"

#include "resources/Commands.h"
#include "resources/Menus.h"

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

/// A path as one line of a menu: an ampersand is no mnemonic, a tab no key.
QString MenuText(const std::filesystem::path& path)
{
    QString text = QString::fromStdString(path.string()).replace('&', "&&");
    for (QChar& character : text) {
        if (character < ' ')
            character = ' ';
    }
    return text;
}

} // namespace

MainMenu::MainMenu(CommandRouter& router) : m_menu(std::make_unique<QMenu>())
{
    for (const MenuItem& item : LoadMenu(MENU_MAIN)) {
        auto* submenu = new CommandMenu('&' + QString::fromUtf8(item.Text), router, m_menu.get());
        Fill(*submenu, item.Submenu());
        m_menu->addMenu(submenu);
        if (!m_fileMenu)
            m_fileMenu = submenu;
    }
}

void MainMenu::SetRecentFiles(const std::vector<std::filesystem::path>& paths)
{
    m_fileMenu->RemoveCommands(ID_RECENT_FIRST, ID_RECENT_LAST);
    uint32_t id = ID_RECENT_FIRST;
    for (const std::filesystem::path& path : paths)
        m_fileMenu->AddCommand(id++, MenuText(path), QString::fromStdString(path.string()));
}

} // namespace ek
