// SPDX-License-Identifier: GPL-3.0-or-later
#include "ek/Module.h"

#include "app/EkEditorApp.h"
#include "app/HostRequests.h"
#include "app/ModuleIdentity.h"
#include "app/ui/MainFrame.h"
#include "app/ui/QtPrompts.h"
#include "background/ui/QtProgressPresenter.h"
#include "ek/HostFrame.h"
#include "platform/Text.h"
#include "resources/Accelerators.h"
#include "resources/Strings.h"

namespace ek {

namespace {

CEkEditorApp& App()
{
    static CEkEditorApp app;
    return app;
}

/// What exists from EkInitialize to EkFree.
class Session {
public:
    Session()
    {
        SetPrompts(&m_prompts);
        SetProgressPresenter(&m_presenter);
    }

    ~Session()
    {
        delete m_frame;
        SetProgressPresenter(nullptr);
        SetPrompts(nullptr);
    }

    Session(const Session&) = delete;
    Session& operator=(const Session&) = delete;

    CMainFrame* MakeFrame(QWidget* parent, CHostFrame* host)
    {
        m_frame = new CMainFrame(parent, App(), host);
        m_prompts.SetMainWindow(m_frame);
        m_presenter.SetMainWindow(m_frame);
        m_frame->setGeometry(0, 0, 0, 0);
        m_frame->show();
        return m_frame;
    }

    CMainFrame* Frame() const { return m_frame; } ///< null: the host's window took it along

private:
    QtPrompts m_prompts;
    QtProgressPresenter m_presenter;
    QPointer<CMainFrame> m_frame;
};

std::unique_ptr<Session> g_session;

/// The frame that the host means; null when it is not the one that EkInitialize gave out.
CMainFrame* FrameOf(const QWidget* window)
{
    CMainFrame* frame = g_session ? g_session->Frame() : nullptr;
    return frame == window ? frame : nullptr;
}

/// Runs the body of an export: no exception leaves the module.
template <class Result, class Body>
Result Guarded(Result onFailure, Body body) noexcept
{
    try {
        return body();
    } catch (...) {
        return onFailure;
    }
}

QWidget* Initialize(QWidget* parent, CHostFrame* host)
{
    if (g_session)
        return nullptr;
    g_session = std::make_unique<Session>();
    try {
        const auto refusal = host ? HostVersionRefusal(host->GetVersion()) : std::nullopt;
        if (!refusal)
            return g_session->MakeFrame(parent, host);
        AfxSCMessageBox(*refusal);
    } catch (...) {
        g_session.reset();
        throw;
    }
    g_session.reset();
    return nullptr;
}

int Translate(const WindowMessage* message)
{
    return Guarded(0, [&] {
        CMainFrame* frame = g_session ? g_session->Frame() : nullptr;
        return frame && message && message->Event && frame->PreTranslate(*message) ? 1 : 0;
    });
}

} // namespace

} // namespace ek

using namespace ek;

QWidget* EkInitialize(QWidget* parent, void*, void*, CHostFrame* host)
{
    return Guarded<QWidget*>(nullptr, [&] { return Initialize(parent, host); });
}

QMenu* EkGetMenu(QWidget* frameWindow)
{
    return Guarded<QMenu*>(nullptr, [&] {
        CMainFrame* frame = FrameOf(frameWindow);
        return frame ? frame->Menu() : nullptr;
    });
}

const AcceleratorTable* EkGetAccelTable(QWidget*)
{
    return &MainAccelerators();
}

void EkChangeState(QWidget* frameWindow, int active)
{
    Guarded(0, [&] {
        if (CMainFrame* frame = FrameOf(frameWindow))
            frame->ChangeState(active != 0);
        return 0;
    });
}

void EkFree(QWidget* frameWindow)
{
    Guarded(0, [&] {
        if (IsWorkRunning()) // on the stack below this call, and it uses what would go
            return 0;
        if (g_session && (!g_session->Frame() || FrameOf(frameWindow)))
            g_session.reset();
        return 0;
    });
}

int EkLoadSkin(QWidget* frameWindow, const char16_t*)
{
    Guarded(0, [&] {
        if (CMainFrame* frame = FrameOf(frameWindow))
            frame->LoadSkin();
        return 0;
    });
    return 1;
}

int EkFilterDllMsg(const WindowMessage* message)
{
    return Translate(message);
}

int EkPreTranslateMessage(void*, const WindowMessage* message)
{
    return Translate(message);
}

void EkProcessDllIdle()
{
    Guarded(0, [] {
        if (CMainFrame* frame = g_session ? g_session->Frame() : nullptr)
            frame->OnIdle();
        return 0;
    });
}

int EkPassMessage(QWidget* frameWindow, void*, const char16_t* text)
{
    Guarded(0, [&] {
        CMainFrame* frame = FrameOf(frameWindow);
        if (frame && text)
            frame->PassMessage(ToUtf8(text));
        return 0;
    });
    return 1;
}

int EkGetModuleInfo(void*, ModuleInfo* info)
{
    if (!info || info->Size != ModuleInfoSize)
        return 0;
    info->Name = ModuleNameUtf16;
    info->Version = ModuleVersion;
    info->Company = ModuleCompany;
    info->Kind = ModuleKind;
    return 1;
}

int EkOnCmdMsg(QWidget* frameWindow, uint32_t command, int code, void* extra, void*)
{
    return Guarded(0, [&] {
        CMainFrame* frame = FrameOf(frameWindow);
        return frame && frame->HandleCommand(command, code, extra) ? 1 : 0;
    });
}

int EkTryClose()
{
    return Guarded(0, [] {
        CMainFrame* frame = g_session ? g_session->Frame() : nullptr;
        return !frame || frame->TryClose() ? 1 : 0;
    });
}
