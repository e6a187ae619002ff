// SPDX-License-Identifier: GPL-3.0-or-later
#include "framework/ui/CommandToolBar.h"

#include <QMouseEvent>
#include <QStyle>
#include <QStyleOptionToolButton>
#include <QToolButton>

namespace ek {

namespace {

class HistoryButton final : public QToolButton {
public:
    HistoryButton(QAction* action, std::function<void()> request) : m_request(std::move(request))
    {
        setDefaultAction(action);
        setPopupMode(QToolButton::MenuButtonPopup);
        setAutoRaise(true);
        setFocusPolicy(Qt::NoFocus);
    }

protected:
    void mousePressEvent(QMouseEvent* event) override
    {
        if (event->button() == Qt::RightButton || (event->button() == Qt::LeftButton && IsOnArrow(event->pos())))
            Request();
        else
            QToolButton::mousePressEvent(event);
    }

    void contextMenuEvent(QContextMenuEvent*) override {} // the right button has its own meaning here

private:
    /// The list that opens takes the pointer without telling the button.
    void Request()
    {
        m_request();
        setAttribute(Qt::WA_UnderMouse, false);
        update();
    }

    bool IsOnArrow(const QPoint& at) const
    {
        QStyleOptionToolButton option;
        initStyleOption(&option);
        return style()->subControlRect(QStyle::CC_ToolButton, &option, QStyle::SC_ToolButtonMenu, this).contains(at);
    }

    std::function<void()> m_request;
};

} // namespace

CommandToolBar::CommandToolBar(const QString& title, CommandRouter& router, QWidget* parent)
    : QToolBar(title, parent), m_router(router)
{
    setMovable(false);
    setContextMenuPolicy(Qt::PreventContextMenu);
    connect(this, &QToolBar::actionTriggered, this, [this](QAction* action) {
        if (const uint32_t id = CommandOf(*action))
            m_router.RouteCommand(id, CN_COMMAND, nullptr);
    });
}

QAction* CommandToolBar::AddCommand(uint32_t id, const ButtonTexts& texts)
{
    QAction* action = addAction(texts.ToolTip);
    action->setData(id);
    action->setToolTip(texts.ToolTip);
    action->setStatusTip(texts.StatusText);
    return action;
}

QAction* CommandToolBar::AddHistoryCommand(uint32_t id, uint32_t historyId, const ButtonTexts& texts)
{
    QAction* action = AddCommand(id, texts);
    removeAction(action); // the button takes the place of the one that the tool bar made
    auto* button = new HistoryButton(action, [this, historyId] { emit HistoryRequested(historyId); });
    addWidget(button);
    connect(button, &QToolButton::triggered, this, &QToolBar::actionTriggered);
    return action;
}

void CommandToolBar::SetCommandIcon(uint32_t id, const QIcon& icon)
{
    for (QAction* action : findChildren<QAction*>(Qt::FindDirectChildrenOnly)) {
        if (CommandOf(*action) == id)
            action->setIcon(icon);
    }
}

void CommandToolBar::UpdateActions()
{
    for (QAction* action : findChildren<QAction*>(Qt::FindDirectChildrenOnly))
        UpdateAction(*action, m_router);
}

} // namespace ek
