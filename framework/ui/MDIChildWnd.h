// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "framework/CmdTarget.h"
#include "framework/DocTemplate.h"
#include "framework/Document.h"

#include <QMdiSubWindow>
#include <QPointer>

namespace ek {

class CView;

/// The window of one document and its view. Closing it asks the document first; once it is gone, the document's
/// template has closed the document.
class CMDIChildWnd : public QMdiSubWindow, public DocumentFrame, public CCmdTarget, private DocumentObserver {
    Q_OBJECT
public:
    static constexpr uint32_t CloseCommand = 1111;

    explicit CMDIChildWnd(CDocument& document);
    ~CMDIChildWnd() override; ///< the view first, then the document

    void SetView(CView* view); ///< takes it; once
    CView* View() const;       ///< null before SetView
    CDocument& Document() const { return m_document; }
    bool IsClosing() const { return m_closing; } ///< closed, and about to be deleted

    void Activate() override;
    std::span<const CommandEntry> CommandTable() const override;
    virtual void OnActivate(bool active); ///< base: tells the view

signals:
    void TitleChanged();
    void Closed(); ///< the user has agreed; the window is about to be deleted

protected:
    void closeEvent(QCloseEvent* event) override;

private:
    void OnDocumentChanged(const DocumentChange& change) override;
    void UpdateTitle();
    void OnCloseCommand();

    CDocument& m_document;
    QPointer<QWidget> m_view;
    bool m_closing = false;
};

} // namespace ek
