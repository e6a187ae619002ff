// SPDX-License-Identifier: GPL-3.0-or-later
#include "host/UnattendedDialogs.h"

#include <QApplication>
#include <QDialog>
#include <QLabel>
#include <QProgressBar>

namespace ek {

namespace {

constexpr int LookEveryMilliseconds = 20;

QString TextsOf(const QDialog& dialog)
{
    QStringList texts{dialog.windowTitle()};
    for (const QLabel* label : dialog.findChildren<QLabel*>())
        texts.append(label->text());
    texts.removeAll(QString());
    return texts.join(u": ");
}

} // namespace

UnattendedDialogs::UnattendedDialogs()
{
    connect(&m_timer, &QTimer::timeout, this, [this] { Look(); });
    m_timer.start(LookEveryMilliseconds);
}

void UnattendedDialogs::Look()
{
    auto* dialog = qobject_cast<QDialog*>(QApplication::activeModalWidget());
    if (!dialog || !dialog->isVisible() || dialog->findChild<QProgressBar*>())
        return;
    if (m_answer && m_answer(*dialog))
        return;
    m_complaints.append(TextsOf(*dialog));
    dialog->reject();
}

} // namespace ek
