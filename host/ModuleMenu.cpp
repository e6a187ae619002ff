// SPDX-License-Identifier: GPL-3.0-or-later
#include "host/ModuleMenu.h"

#include "host/Module.h"

#include <QAction>
#include <QMenu>
#include <QMenuBar>

namespace ek {

namespace {

QAction* MakeSeparator(QObject* parent)
{
    auto* separator = new QAction(parent);
    separator->setSeparator(true);
    return separator;
}

QList<QMenu*> SubMenus(const QMenu& menu)
{
    QList<QMenu*> menus;
    for (const QAction* action : menu.actions()) {
        if (action->menu())
            menus.append(action->menu());
    }
    return menus;
}

QString PlainTitle(const QMenu& menu)
{
    return menu.title().remove(u'&');
}

QMenu* FindView(const QList<QMenu*>& menus)
{
    for (QMenu* menu : menus) {
        if (PlainTitle(*menu) == u"View")
            return menu;
    }
    return nullptr;
}

/// Adding an action that is in the menu already moves it to the end.
void PlaceLast(QMenu& menu, QAction* separator, QAction* action)
{
    menu.addAction(separator);
    menu.addAction(action);
}

} // namespace

ModuleMenu::ModuleMenu(const ModuleExports& module, QMenuBar& bar)
    : m_module(module), m_bar(bar), m_quitSeparator(MakeSeparator(this)), m_skinSeparator(MakeSeparator(this))
{
}

void ModuleMenu::SetOwnEntries(QAction* quit, QMenu* skins, QMenu* transport, QMenu* help)
{
    m_quit = quit;
    m_skins = skins;
    m_transport = transport;
    m_help = help;
}

void ModuleMenu::Clear()
{
    delete m_connections;
    m_connections = nullptr;
    m_bar.clear();
    m_frame = nullptr;
}

void ModuleMenu::Rebuild(QWidget* moduleFrame)
{
    Clear();
    m_frame = moduleFrame;
    m_connections = new QObject(this);
    const QMenu* menu = m_module.GetMenu(m_frame);
    const QList<QMenu*> menus = menu ? SubMenus(*menu) : QList<QMenu*>();
    for (QMenu* subMenu : menus) {
        m_bar.addMenu(subMenu);
        Connect(subMenu);
    }
    PlaceOwnEntries(menus);
}

void ModuleMenu::PlaceOwnEntries(const QList<QMenu*>& menus)
{
    if (!menus.isEmpty())
        PlaceLast(*menus.first(), m_quitSeparator, m_quit);
    if (QMenu* view = FindView(menus))
        PlaceLast(*view, m_skinSeparator, m_skins->menuAction());
    else
        m_bar.addMenu(m_skins);
    m_bar.addMenu(m_transport);
    m_bar.addMenu(m_help);
}

/// A menu also reports what is chosen in its submenus.
void ModuleMenu::Connect(QMenu* menu)
{
    connect(menu, &QMenu::triggered, m_connections, [this](const QAction* action) { Run(*action); });
    ConnectStates(menu);
}

void ModuleMenu::ConnectStates(QMenu* menu)
{
    connect(menu, &QMenu::aboutToShow, m_connections, [this, menu] { UpdateStates(*menu); });
    for (QMenu* subMenu : SubMenus(*menu))
        ConnectStates(subMenu);
}

void ModuleMenu::UpdateStates(QMenu& menu)
{
    for (QAction* action : menu.actions()) {
        if (!action->data().isValid())
            continue;
        CommandUi ui{.Id = action->data().toUInt()};
        const bool isHandled = m_module.OnCmdMsg(m_frame, ui.Id, CN_UPDATE_COMMAND_UI, &ui, nullptr) != 0;
        action->setEnabled(isHandled && ui.Enabled);
        action->setCheckable(action->isCheckable() || ui.Checked);
        action->setChecked(ui.Checked);
    }
}

void ModuleMenu::Run(const QAction& action)
{
    if (action.data().isValid())
        m_module.OnCmdMsg(m_frame, action.data().toUInt(), CN_COMMAND, nullptr, nullptr);
}

} // namespace ek
