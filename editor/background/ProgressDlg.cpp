// SPDX-License-Identifier: GPL-3.0-or-later
#include "background/ProgressDlg.h"

#include "debugmanager/DebugManager.h"

#include <exception>
#include <optional>
#include <thread>

namespace ek {

namespace {

ProgressPresenter* g_presenter = nullptr;

int g_running = 0; // more than one when work is started while a progress is shown

struct RunningMark {
    RunningMark() { ++g_running; }
    ~RunningMark() { --g_running; }
    RunningMark(const RunningMark&) = delete;
    RunningMark& operator=(const RunningMark&) = delete;
};

void LogFailure(const CProgressDlg& progress, const char* reason)
{
    enDebugManager().WriteLogMessage(ModuleName, LogError, "Error: Work \"%s\" failed: %s", progress.Caption().c_str(),
                                     reason);
}

/// What the call returns; nothing, and a line in the log, when it throws.
template <typename Call>
std::optional<WorkResult> Guarded(const CProgressDlg& progress, Call call)
{
    try {
        return call();
    } catch (const std::exception& error) {
        LogFailure(progress, error.what());
    } catch (...) {
        LogFailure(progress, "unknown exception");
    }
    return std::nullopt;
}

WorkResult WaitPlainly(CProgressDlg& progress)
{
    progress.Begin();
    const WorkResult result = progress.WaitResult();
    progress.End();
    return result;
}

} // namespace

void CProgressDlg::Finish(WorkResult result)
{
    m_result = result;
    m_ended.Set();
    if (m_notify)
        m_notify();
    m_left.Set();
}

WorkResult CProgressDlg::DoModal()
{
    if (g_presenter)
        return g_presenter->Show(*this);
    return WaitPlainly(*this);
}

void CProgressDlg::Begin()
{
    m_cancelled = false;
    m_started.Set();
}

void CProgressDlg::OnFinish(std::function<void()> notify)
{
    m_notify = std::move(notify);
}

void CProgressDlg::Cancel()
{
    if (m_cancellable)
        m_cancelled = true;
}

WorkResult CProgressDlg::WaitResult()
{
    m_left.Wait();
    return m_result;
}

void CProgressDlg::End()
{
    m_notify = nullptr;
}

void SetProgressPresenter(ProgressPresenter* presenter)
{
    g_presenter = presenter;
}

WorkResult RunInBackground(const std::string& caption, bool cancellable,
                           const std::function<WorkResult(CProgressDlg&)>& work)
{
    CProgressDlg progress;
    progress.SetCaption(caption);
    progress.SetCancellable(cancellable);
    const RunningMark mark;
    std::jthread worker;
    const auto start = [&] {
        worker = std::jthread([&progress, &work] {
            progress.WaitStarted();
            progress.Finish(Guarded(progress, [&] { return work(progress); }).value_or(WorkResult::Failed));
        });
        return WorkResult::Finished;
    };
    if (!Guarded(progress, start))
        return WorkResult::Failed;
    const std::optional<WorkResult> shown = Guarded(progress, [&] { return progress.DoModal(); });
    if (shown)
        return *shown;
    progress.End(); // what it would notify is gone
    return WaitPlainly(progress);
}

bool IsWorkRunning()
{
    return g_running != 0;
}

} // namespace ek
