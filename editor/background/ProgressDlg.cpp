// SPDX-License-Identifier: GPL-3.0-or-later
#include "background/ProgressDlg.h"

#include <chrono>
#include <system_error>
#include <thread>

namespace ek {

namespace {

ProgressPresenter* g_presenter = nullptr;

WorkResult RunGuarded(CProgressDlg& progress, const std::function<WorkResult(CProgressDlg&)>& work)
{
    try {
        return work(progress);
    } catch (...) {
        return WorkResult::Failed;
    }
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
    Begin();
    const WorkResult result = WaitResult();
    End();
    return result;
}

bool CProgressDlg::WaitFinished()
{
    return m_finished.WaitFor(std::chrono::seconds(10));
}

void CProgressDlg::Begin()
{
    m_cancelled = false;
    m_finished.Reset();
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
    m_finished.Set();
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
    std::thread worker;
    try {
        worker = std::thread([&] {
            progress.WaitStarted();
            progress.Finish(RunGuarded(progress, work));
        });
    } catch (const std::system_error&) {
        return WorkResult::Failed;
    }
    const WorkResult result = progress.DoModal();
    worker.join();
    return result;
}

} // namespace ek
