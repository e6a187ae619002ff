// SPDX-License-Identifier: GPL-3.0-or-later
#include "framework/ui/MDIFrameWnd.h"

#include "framework/ui/View.h"

namespace ek {

CMDIFrameWnd::CMDIFrameWnd(QWidget* parent) : QMainWindow(parent)
{
    if (parent)
        setWindowFlags(Qt::Widget); // the base class makes it a window of its own
}

void CMDIFrameWnd::SetClient(QMdiArea* client)
{
    m_client = client;
    m_clientTarget = dynamic_cast<CCmdTarget*>(client);
    setCentralWidget(client);
    connect(client, &QMdiArea::subWindowActivated, this, &CMDIFrameWnd::OnSubWindowActivated);
}

bool CMDIFrameWnd::OnCmdMsg(uint32_t id, CommandCode code, CommandUi* ui)
{
    CMDIChildWnd* child = ActiveChild();
    CCmdTarget* const inside[] = {m_clientTarget, child ? child->View() : nullptr, child ? &child->Document() : nullptr,
                                  child};
    for (CCmdTarget* target : inside) {
        if (target && target->OnCmdMsg(id, code, ui))
            return true;
    }
    return CCmdTarget::OnCmdMsg(id, code, ui) || (m_application && m_application->OnCmdMsg(id, code, ui));
}

CMDIChildWnd* CMDIFrameWnd::ActiveChild() const
{
    auto* child = qobject_cast<CMDIChildWnd*>(m_client->currentSubWindow());
    return child && !child->IsClosing() ? child : nullptr;
}

CView* CMDIFrameWnd::ActiveView() const
{
    CMDIChildWnd* child = ActiveChild();
    return child ? child->View() : nullptr;
}

std::vector<CMDIChildWnd*> CMDIFrameWnd::Children() const
{
    std::vector<CMDIChildWnd*> children;
    for (QMdiSubWindow* window : m_client->subWindowList(QMdiArea::CreationOrder)) {
        auto* child = qobject_cast<CMDIChildWnd*>(window);
        if (child && !child->IsClosing())
            children.push_back(child);
    }
    return children;
}

/// The area also reports that no window is active when another program comes to the front; the one that was active
/// remains the current one then.
void CMDIFrameWnd::OnSubWindowActivated()
{
    CMDIChildWnd* active = ActiveChild();
    if (active == m_lastActive)
        return;
    auto* previous = qobject_cast<CMDIChildWnd*>(m_lastActive.data()); // null while it is being destroyed
    m_lastActive = active;
    if (previous)
        previous->OnActivate(false);
    if (active)
        active->OnActivate(true);
    emit ActiveChildChanged();
}

void CMDIFrameWnd::Watch(CMDIChildWnd& child)
{
    connect(&child, &CMDIChildWnd::Closed, this, &CMDIFrameWnd::ActivateAnother);
}

/// The area would wait until the closed window is deleted.
void CMDIFrameWnd::ActivateAnother()
{
    QList<QMdiSubWindow*> windows = m_client->subWindowList(QMdiArea::ActivationHistoryOrder);
    erase_if(windows, [](const QMdiSubWindow* window) {
        const auto* child = qobject_cast<const CMDIChildWnd*>(window);
        return child && child->IsClosing();
    });
    m_client->setActiveSubWindow(windows.isEmpty() ? nullptr : windows.last());
}

} // namespace ek
