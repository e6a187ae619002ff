// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "background/ProgressDlg.h"

namespace ek {

/// From now on SIGINT, SIGTERM and SIGHUP do not end the program: they ask it to stop where it safely can.
void CatchInterruptions();
bool IsInterrupted();

/// Waits for long work, and cancels it when the program is asked to stop.
class InterruptibleProgress final : public ProgressPresenter {
public:
    WorkResult Show(CProgressDlg& progress) override;
};

} // namespace ek
