// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <QObject>
#include <QStringList>
#include <QTimer>

#include <functional>

class QDialog;

namespace ek {

/// Stands in for the person while nobody sits at the screen: a dialog that opens is answered, or else noted with its
/// texts and cancelled, so that no run hangs on a question. A dialog that shows progress is left to finish.
class UnattendedDialogs : public QObject {
public:
    /// True when the dialog was one of those expected; it may be asked again about the same dialog.
    using Answer = std::function<bool(QDialog& dialog)>;

    UnattendedDialogs();

    void SetAnswer(Answer answer) { m_answer = std::move(answer); }
    const QStringList& Complaints() const { return m_complaints; } ///< the texts of the dialogs that were cancelled

private:
    void Look();

    QTimer m_timer;
    Answer m_answer;
    QStringList m_complaints;
};

} // namespace ek
