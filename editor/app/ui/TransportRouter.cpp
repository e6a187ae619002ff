// SPDX-License-Identifier: GPL-3.0-or-later
#include "app/ui/TransportRouter.h"

#include "framework/ui/View.h"
#include "resources/CommandIds.h"

#include <QCoreApplication>

namespace ek {

CView* TransportRouter::CurrentView() const
{
    return static_cast<CView*>(m_current.data());
}

void TransportRouter::ActivateCurrentView(CView* activeView)
{
    if (CurrentView() == activeView)
        return;
    StopAndForget();
    m_current = activeView;
}

void TransportRouter::StopAndForget()
{
    MessageEvent stop(EK_WM_COMMAND, ID_TRANSPORT_STOP, 0);
    SendLast(stop);
}

std::optional<bool> TransportRouter::Route(MessageEvent& message, CView* activeView)
{
    switch (message.Id) {
    case EK_WM_TAKE_PLAYER:
        if (!m_current || !CurrentView()->IsPlaying())
            ActivateCurrentView(activeView);
        return SendToCurrent(message);
    case EK_WM_RELEASE_PLAYER:
        return SendLast(message);
    case EK_WM_COMMAND:
        return RouteCommand(message, activeView);
    default:
        return std::nullopt;
    }
}

std::optional<bool> TransportRouter::RouteCommand(MessageEvent& message, CView* activeView)
{
    switch (message.WParam) {
    case ID_TRANSPORT_PLAY:
        ActivateCurrentView(activeView);
        return SendToCurrent(message);
    case ID_TRANSPORT_START:
    case ID_TRANSPORT_BACK:
    case ID_TRANSPORT_PAUSE:
    case ID_TRANSPORT_FORWARD:
    case ID_TRANSPORT_END:
    case ID_TRANSPORT_POSITION:
        return SendToCurrent(message);
    case ID_TRANSPORT_STOP:
        return SendLast(message);
    case ID_HOST_REQUEST_FIRST:
    case ID_HOST_REQUEST_LAST:
        return SendToHost(message);
    default:
        return std::nullopt;
    }
}

bool TransportRouter::SendToCurrent(MessageEvent& message)
{
    if (!m_current)
        return false;
    CurrentView()->OnHostMessage(message);
    return true;
}

bool TransportRouter::SendLast(MessageEvent& message)
{
    const bool taken = SendToCurrent(message);
    m_current = nullptr;
    return taken;
}

bool TransportRouter::SendToHost(const MessageEvent& message)
{
    const QWidget* parent = m_frame.parentWidget();
    QWidget* host = parent ? parent->parentWidget() : nullptr;
    if (!host)
        return false;
    MessageEvent passedUp(message.Id, message.WParam, message.LParam);
    passedUp.ignore();
    QCoreApplication::sendEvent(host, &passedUp);
    return passedUp.isAccepted();
}

} // namespace ek
