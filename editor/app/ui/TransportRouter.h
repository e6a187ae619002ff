// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "ek/Message.h"

#include <QPointer>
#include <QWidget>

#include <optional>

namespace ek {

class CView;

/// Knows the view that plays, and sends it what the host's transport buttons and player say. Only the play button
/// passes over from a view that plays to another one; that the player is to be taken may just mean another device.
class TransportRouter {
public:
    /// `frame` is the main frame's widget: requests to the host go to its parent's parent.
    explicit TransportRouter(QWidget& frame) : m_frame(frame) {}

    /// Whether somebody took the message; nothing when it is none of the transport's and goes the way of all
    /// commands.
    std::optional<bool> Route(MessageEvent& message, CView* activeView);

    CView* CurrentView() const; ///< null: no view plays
    /// Makes `activeView` (may be null) the current view; another one that was it is stopped first.
    void ActivateCurrentView(CView* activeView);
    void StopAndForget(); ///< stops the current view, if there is one

private:
    std::optional<bool> RouteCommand(MessageEvent& message, CView* activeView);
    bool SendToCurrent(MessageEvent& message);
    bool SendToHost(const MessageEvent& message);
    bool SendLast(MessageEvent& message); ///< to the current view, which is then forgotten

    QWidget& m_frame;
    QPointer<QWidget> m_current; ///< a CView
};

} // namespace ek
