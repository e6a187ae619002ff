// SPDX-License-Identifier: GPL-3.0-or-later
#include "framework/ui/CommandActions.h"

namespace ek {

uint32_t CommandOf(const QAction& action)
{
    return action.data().toUInt();
}

void UpdateAction(QAction& action, CommandRouter& router)
{
    CommandUi ui{.Id = CommandOf(action)};
    if (ui.Id == 0)
        return;
    const bool handled = router.RouteCommand(ui.Id, CN_UPDATE_COMMAND_UI, &ui);
    action.setEnabled(handled && ui.Enabled);
    if (ui.Checked)
        action.setCheckable(true);
    action.setChecked(ui.Checked);
}

CommandMenu::CommandMenu(const QString& title, CommandRouter& router, QWidget* parent)
    : QMenu(title, parent), m_router(router)
{
    connect(this, &QMenu::aboutToShow, this, &CommandMenu::UpdateActions);
}

QAction* CommandMenu::AddCommand(uint32_t id, const QString& text, const QString& statusText)
{
    QAction* action = addAction(text);
    action->setData(id);
    action->setStatusTip(statusText);
    return action;
}

void CommandMenu::AddPlaceholder(const QString& text)
{
    addAction(text)->setEnabled(false);
}

void CommandMenu::RemoveCommands(uint32_t firstId, uint32_t lastId)
{
    for (QAction* action : actions()) {
        const uint32_t id = CommandOf(*action);
        if (id < firstId || id > lastId)
            continue;
        removeAction(action);
        action->deleteLater(); // it may be the one that is running
    }
}

void CommandMenu::UpdateActions()
{
    for (QAction* action : actions())
        UpdateAction(*action, m_router);
}

} // namespace ek
