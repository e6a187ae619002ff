// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "framework/CmdTarget.h"

#include <QAction>
#include <QMenu>

namespace ek {

/// Where the commands of menus and tool bars go, and where their state comes from.
class CommandRouter {
public:
    /// As CCmdTarget::OnCmdMsg.
    virtual bool RouteCommand(uint32_t id, CommandCode code, CommandUi* ui) = 0;
    virtual void OnCommandHovered(uint32_t id) = 0; ///< to show the command's status text

protected:
    ~CommandRouter() = default;
};

uint32_t CommandOf(const QAction& action); ///< 0: the action is no command

/// Enables and checks the action as its command's handler says; without a handler it is disabled. An action that is
/// no command stays as it is.
void UpdateAction(QAction& action, CommandRouter& router);

/// A menu of commands. Each action's data() is its command id. Whoever shows the menu also runs the chosen command;
/// the menu itself keeps the state of its actions current and reports what the pointer rests on.
class CommandMenu : public QMenu {
    Q_OBJECT
public:
    CommandMenu(const QString& title, CommandRouter& router, QWidget* parent);

    /// `text` may name a key behind a tab; the key does nothing by itself.
    QAction* AddCommand(uint32_t id, const QString& text);
    void AddPlaceholder(const QString& text); ///< a line that is never enabled
    void RemoveCommands(uint32_t firstId, uint32_t lastId);

private:
    void UpdateActions();

    CommandRouter& m_router;
};

} // namespace ek
