// SPDX-License-Identifier: GPL-3.0-or-later
#include "Interruption.h"

#include <csignal>

namespace ek {

namespace {

volatile std::sig_atomic_t g_interrupted = 0;

void OnSignal(int)
{
    g_interrupted = 1;
}

} // namespace

void CatchInterruptions()
{
    struct sigaction action = {};
    action.sa_handler = OnSignal;
    action.sa_flags = SA_RESTART;
    for (const int signal : {SIGINT, SIGTERM, SIGHUP})
        sigaction(signal, &action, nullptr);
    std::signal(SIGPIPE, SIG_IGN); // a reader that went away is a failed write, not the end
}

bool IsInterrupted()
{
    return g_interrupted != 0;
}

WorkResult InterruptibleProgress::Show(CProgressDlg& progress)
{
    ManualResetEvent finished;
    progress.OnFinish([&finished] { finished.Set(); });
    progress.Begin();
    while (!finished.WaitFor(std::chrono::milliseconds(50))) {
        if (IsInterrupted())
            progress.Cancel();
    }
    const WorkResult result = progress.WaitResult();
    progress.End();
    return result;
}

} // namespace ek
