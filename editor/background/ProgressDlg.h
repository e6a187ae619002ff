// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "platform/Events.h"

#include <atomic>
#include <functional>
#include <mutex>
#include <string>

namespace ek {

/// How a piece of long work ended.
enum class WorkResult : int { Finished = 1, Cancelled = 2, Failed = 3 };

/// The progress of one piece of long work: what its worker thread reports and what a screen shows. How it is
/// shown is the presenter's; without one the owner just waits.
class CProgressDlg {
public:
    // Worker side, any thread.
    void WaitStarted() { m_started.Wait(); }
    void SetPos(uint32_t percent) { m_position = percent; } ///< 0 .. 100
    bool IsCancelled() const { return m_cancelled; }
    void Finish(WorkResult result); ///< once, as the worker's last call

    // Owner side, the thread that waits.
    void SetCaption(std::string caption) { m_caption = std::move(caption); } ///< empty keeps the usual title
    void SetCancellable(bool cancellable) { m_cancellable = cancellable; }
    WorkResult DoModal(); ///< shows the progress until the worker has finished

    // Presenter side, the owner's thread.
    void Begin();                                ///< the dialog is up: clears the flags, lets the worker start
    void OnFinish(std::function<void()> notify); ///< called on the worker's thread by Finish; set before Begin
    uint32_t Position() const { return m_position; }
    const std::string& Caption() const { return m_caption; }
    bool IsCancellable() const { return m_cancellable; }
    void Cancel(); ///< sets the flag when the work can be cancelled; the worker decides when to stop
    bool HasResult() const { return m_ended.IsSet(); } ///< true from before the notification on
    /// Blocks until the worker has left Finish, so a notification never comes after it.
    WorkResult WaitResult();
    void End(); ///< the dialog is down: forgets the notification

private:
    std::atomic<uint32_t> m_position = 0;
    std::atomic<bool> m_cancelled = false;
    bool m_cancellable = false;
    std::string m_caption;
    WorkResult m_result = WorkResult::Failed;
    std::function<void()> m_notify;
    ManualResetEvent m_started;
    ManualResetEvent m_ended; // the worker has called Finish
    ManualResetEvent m_left;  // the worker has returned from it
};

/// Shows a progress until its worker has finished: a modal dialog, or a test that cancels.
class ProgressPresenter {
public:
    virtual ~ProgressPresenter() = default;
    /// Calls Begin, then End after Finish, and returns the result. May throw before Begin only; the work then goes on
    /// without being shown.
    virtual WorkResult Show(CProgressDlg& progress) = 0;
};
void SetProgressPresenter(ProgressPresenter* presenter); ///< null: plain waiting

/// Runs `work` on a thread of its own behind a progress. `work` gets the progress after it was shown, and
/// returns the result. Returns after the thread has ended. Work that throws has failed; the log says why.
WorkResult RunInBackground(const std::string& caption, bool cancellable,
                           const std::function<WorkResult(CProgressDlg&)>& work);

/// True between the start and the end of RunInBackground. While it is, no window may close: what the work uses would go
/// with it. The thread of the windows.
bool IsWorkRunning();

} // namespace ek
