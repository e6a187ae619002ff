// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "background/ProgressDlg.h"

#include <QDialog>
#include <QTimer>

class QProgressBar;
class QPushButton;

namespace ek {

/// "Please Wait For Progress": a bar that follows the work, and Cancel where the work can be cancelled. It never
/// closes by itself.
class ProgressDialog : public QDialog {
    Q_OBJECT
public:
    ProgressDialog(CProgressDlg& progress, QWidget* parent);

    void reject() override; ///< Esc, the close box and Cancel: asks the work to stop

private:
    void ShowPosition();

    CProgressDlg& m_progress;
    QProgressBar* m_bar;
    QPushButton* m_cancel;
    QTimer m_timer;
};

} // namespace ek
