// SPDX-License-Identifier: GPL-3.0-or-later
#include "framework/ui/MDIChildWnd.h"

#include "framework/ui/View.h"

#include <QCloseEvent>
#include <QMdiArea>

#include <utility>

namespace ek {

CMDIChildWnd::CMDIChildWnd(CDocument& document) : m_document(document)
{
    setAttribute(Qt::WA_DeleteOnClose);
    // A maximized window would otherwise put its title and buttons into the host's own.
    setStyleSheet("QMdiSubWindow { mdi-fill-space-on-maximize: 1; }");
    m_document.AddObserver(*this);
    UpdateTitle();
}

CMDIChildWnd::~CMDIChildWnd()
{
    m_document.RemoveObserver(*this);
    setWidget(nullptr);
    delete m_view;
    if (CDocTemplate* owner = m_document.Template())
        owner->CloseDocument(m_document);
}

void CMDIChildWnd::SetView(CView* view)
{
    m_view = view;
    setWidget(view);
    setFocusProxy(view);
}

CView* CMDIChildWnd::View() const
{
    return static_cast<CView*>(m_view.data());
}

void CMDIChildWnd::Activate()
{
    if (isMinimized())
        showNormal();
    if (mdiArea())
        mdiArea()->setActiveSubWindow(this);
    if (m_view)
        m_view->setFocus();
}

std::span<const CommandEntry> CMDIChildWnd::CommandTable() const
{
    static constexpr CommandEntry table[] = {
        Command<CMDIChildWnd, &CMDIChildWnd::OnCloseCommand>(CloseCommand),
    };
    return table;
}

void CMDIChildWnd::OnActivate(bool active)
{
    if (m_view)
        View()->OnActivateView(active);
}

void CMDIChildWnd::closeEvent(QCloseEvent* event)
{
    if (!m_closing && !m_document.SaveModified()) {
        event->ignore();
        return;
    }
    event->accept();
    if (!std::exchange(m_closing, true))
        emit Closed();
}

void CMDIChildWnd::OnDocumentChanged(const DocumentChange& change)
{
    if (change.What == DocumentChange::Kind::Title || change.What == DocumentChange::Kind::Modified)
        UpdateTitle();
}

void CMDIChildWnd::UpdateTitle()
{
    QString name = QString::fromStdString(m_document.DisplayName());
    name.replace("[*]", "[*][*]"); // a single one is the place of the modified mark
    setWindowTitle(name + "[*]");
    setWindowModified(m_document.IsModified());
    emit TitleChanged();
}

void CMDIChildWnd::OnCloseCommand()
{
    close();
}

} // namespace ek
