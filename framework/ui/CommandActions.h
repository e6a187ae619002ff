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

protected:
    ~CommandRouter() = default;
};

uint32_t CommandOf(const QAction& action); ///< 0: the action is no command

/// Enables and checks the action as its command's handler says; without a handler it is disabled. An action that is
/// no command stays as it is.
void UpdateAction(QAction& action, CommandRouter& router);

/// A menu of commands. Each action's data() is its command id. Whoever shows the menu also runs the chosen command;
/// the menu itself keeps the state of its actions current.
class CommandMenu : public QMenu {
    Q_OBJECT
public:
    CommandMenu(const QString& title, CommandRouter& router, QWidget* parent);

    /// `text` may name a key behind a tab; the key does nothing by itself. `statusText` is for the status bar of the
    /// window that shows the menu.
    QAction* AddCommand(uint32_t id, const QString& text, const QString& statusText);
    void AddPlaceholder(const QString& text); ///< a line that is never enabled
    void RemoveCommands(uint32_t firstId, uint32_t lastId);

private:
    void UpdateActions();

    CommandRouter& m_router;
};

} // namespace ek
