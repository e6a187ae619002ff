// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "background/ProgressDlg.h"

#include <chrono>

namespace ek {

/// Shows progress as a modal dialog. Input to every other window is held off from the first moment on, but the dialog
/// comes up only when the work lasts longer than `delay`, so that short work does not flicker.
class QtProgressPresenter final : public ProgressPresenter {
public:
    static constexpr std::chrono::milliseconds UsualDelay{150};

    explicit QtProgressPresenter(std::chrono::milliseconds delay = UsualDelay) : m_delay(delay) {}

    WorkResult Show(CProgressDlg& progress) override;

private:
    std::chrono::milliseconds m_delay;
};

} // namespace ek
