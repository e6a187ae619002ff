// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "framework/CmdTarget.h"
#include "framework/ui/MDIChildWnd.h"

#include <QMainWindow>
#include <QMdiArea>
#include <QPointer>

#include <vector>

namespace ek {

class CView;

/// A frame window with document windows in it, and the one place that knows the order in which commands are offered.
class CMDIFrameWnd : public QMainWindow, public CCmdTarget {
    Q_OBJECT
public:
    explicit CMDIFrameWnd(QWidget* parent);

    /// To the client of the document windows, the active view, its document, the document's window, the frame's own
    /// table and the application; the first that has the command takes it.
    bool OnCmdMsg(uint32_t id, CommandCode code, CommandUi* ui) override;

    CMDIChildWnd* ActiveChild() const; ///< null: no document window, or none is active
    CView* ActiveView() const;
    std::vector<CMDIChildWnd*> Children() const; ///< the open document windows in the order of their opening

signals:
    void ActiveChildChanged();

protected:
    /// Takes the client; it may be a command target too.
    void SetClient(QMdiArea* client);
    /// To be called for every document window, so that another one is active as soon as it closes.
    void Watch(CMDIChildWnd& child);
    void SetApplication(CCmdTarget* application) { m_application = application; }

private:
    void OnSubWindowActivated();
    void ActivateAnother();

    QMdiArea* m_client = nullptr;
    CCmdTarget* m_clientTarget = nullptr;
    CCmdTarget* m_application = nullptr;
    QPointer<QMdiSubWindow> m_lastActive;
};

} // namespace ek
