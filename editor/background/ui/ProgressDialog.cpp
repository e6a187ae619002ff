// SPDX-License-Identifier: GPL-3.0-or-later
#include "background/ui/ProgressDialog.h"

#include <QHBoxLayout>
#include <QProgressBar>
#include <QPushButton>
#include <QVBoxLayout>

namespace ek {

namespace {
constexpr int FollowMilliseconds = 10;
constexpr int BarWidth = 380;
} // namespace

ProgressDialog::ProgressDialog(CProgressDlg& progress, QWidget* parent)
    : QDialog(parent), m_progress(progress), m_bar(new QProgressBar(this)), m_cancel(new QPushButton("Cancel", this))
{
    setWindowModality(Qt::ApplicationModal);
    const QString caption = QString::fromStdString(progress.Caption());
    setWindowTitle(caption.isEmpty() ? QStringLiteral("Please Wait For Progress") : caption);
    m_bar->setRange(0, 100);
    m_bar->setMinimumWidth(BarWidth);
    m_cancel->setVisible(progress.IsCancellable());
    m_cancel->setAutoDefault(false);
    auto* buttons = new QHBoxLayout;
    buttons->addStretch();
    buttons->addWidget(m_cancel);
    auto* layout = new QVBoxLayout(this);
    layout->addWidget(m_bar);
    layout->addLayout(buttons);
    layout->setSizeConstraint(QLayout::SetFixedSize);
    connect(m_cancel, &QPushButton::clicked, this, &ProgressDialog::reject);
    connect(&m_timer, &QTimer::timeout, this, &ProgressDialog::ShowPosition);
    m_timer.start(FollowMilliseconds);
}

void ProgressDialog::reject()
{
    if (!m_progress.IsCancellable())
        return;
    m_progress.Cancel();
    m_cancel->setEnabled(false);
}

void ProgressDialog::ShowPosition()
{
    m_bar->setValue(static_cast<int>(m_progress.Position()));
}

} // namespace ek
