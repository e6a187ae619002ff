// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "ek/WaveFormat.h"
#include "framework/CmdTarget.h"
#include "framework/Document.h"

#include <QWidget>

namespace ek {

class CEffectTree;
class CHostPlayer;
class MessageEvent;

/// What a view needs of the frame that it lives in.
class ViewSite {
public:
    /// The sound format of the document whose view was updated last.
    virtual void SetActiveFormat(const WAVEFORMATEXTENSIBLE& format) = 0;
    /// Runs a command as if it came from a menu.
    virtual bool RunCommand(uint32_t id) = 0;
    /// What came along with the command that is running: for the history lists the tool bar's QWidget; else 0.
    virtual intptr_t CommandParameter() const { return 0; }
    virtual CHostPlayer* Player() const { return nullptr; } ///< null: the host has none
    virtual CEffectTree* GetEffectTree() const { return nullptr; }
    /// Shows a text in the host's status bar; empty clears it.
    virtual void ShowStatusText(const QString& text) = 0;

protected:
    ~ViewSite() = default;
};

/// A window onto a document: a widget that handles commands and hears of the document's changes. The document
/// outlives its views.
class CView : public QWidget, public CCmdTarget, public DocumentObserver {
public:
    CView(CDocument& document, ViewSite& site, QWidget* parent);
    ~CView() override;

    CDocument& Document() const { return m_document; }
    ViewSite& Site() const { return m_site; }

    virtual void OnInitialUpdate() {}                ///< once, when the view is about to be shown for the first time
    virtual void OnSkinChanged() {}                  ///< colours and images are to be read again
    virtual bool CanPlay() const { return false; }   ///< whether the host's transport buttons may start playing
    virtual bool IsPlaying() const { return false; } ///< from the moment it asks for the player; also while paused
    virtual void OnActivateView(bool) {}             ///< its child window was activated or deactivated
    /// A transport command (EK_WM_COMMAND) or player message that the main frame routed here.
    virtual void OnHostMessage(MessageEvent&) {}
    void OnDocumentChanged(const DocumentChange&) override {}

private:
    CDocument& m_document;
    ViewSite& m_site;
};

} // namespace ek
