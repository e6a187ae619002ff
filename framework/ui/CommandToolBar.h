// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "framework/ui/CommandActions.h"

#include <QIcon>
#include <QToolBar>

namespace ek {

/// What a button shows besides its image.
struct ButtonTexts {
    QString ToolTip;
    QString StatusText;
};

/// A tool bar of commands: it runs what is clicked.
class CommandToolBar : public QToolBar {
    Q_OBJECT
public:
    CommandToolBar(const QString& title, CommandRouter& router, QWidget* parent);

    QAction* AddCommand(uint32_t id, const ButtonTexts& texts);
    /// A button with an arrow that asks for a list: HistoryRequested(historyId) on a click on the arrow or with the
    /// right button, while the command is enabled.
    QAction* AddHistoryCommand(uint32_t id, uint32_t historyId, const ButtonTexts& texts);
    void SetCommandIcon(uint32_t id, const QIcon& icon);
    void UpdateActions(); ///< when the program is idle

signals:
    void HistoryRequested(uint32_t historyId);

private:
    CommandRouter& m_router;
};

} // namespace ek
