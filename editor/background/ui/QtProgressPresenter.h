// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "background/ProgressDlg.h"

#include <QPointer>
#include <QWidget>

#include <chrono>

namespace ek {

class ProgressDialog;

/// Shows progress as a modal dialog. Input to every other window is held off from the first moment on, but the dialog
/// comes up only when the work lasts longer than `delay`, so that short work does not flicker. It belongs to the window
/// that is active, or to the main window when none is. Document windows do not close meanwhile.
class QtProgressPresenter final : public ProgressPresenter {
public:
    static constexpr std::chrono::milliseconds UsualDelay{150};

    explicit QtProgressPresenter(std::chrono::milliseconds delay = UsualDelay) : m_delay(delay) {}

    void SetMainWindow(QWidget* window) { m_mainWindow = window; }

    WorkResult Show(CProgressDlg& progress) override;

private:
    void ShowDialog(QPointer<ProgressDialog>& dialog, CProgressDlg& progress) const;

    QPointer<QWidget> m_mainWindow;
    std::chrono::milliseconds m_delay;
};

} // namespace ek
