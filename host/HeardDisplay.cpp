// SPDX-License-Identifier: GPL-3.0-or-later
#include "host/HeardDisplay.h"

#include <QFontDatabase>
#include <QPainter>

namespace ek {

namespace {

constexpr uint64_t LongestTime = 99ULL * 3600 * 1000; ///< that there is room for
constexpr int Margin = 8;

} // namespace

QString HeardText(uint64_t milliseconds)
{
    const uint64_t seconds = milliseconds / 1000;
    return QStringLiteral("%1:%2:%3,%4")
        .arg(seconds / 3600)
        .arg(seconds / 60 % 60, 2, 10, QLatin1Char('0'))
        .arg(seconds % 60, 2, 10, QLatin1Char('0'))
        .arg(milliseconds % 1000, 3, 10, QLatin1Char('0'));
}

HeardDisplay::HeardDisplay(QWidget* parent) : QWidget(parent), m_text(HeardText(0))
{
    setFont(QFontDatabase::systemFont(QFontDatabase::FixedFont));
    setSizePolicy(QSizePolicy::Fixed, QSizePolicy::Fixed);
    setAttribute(Qt::WA_OpaquePaintEvent);
    setToolTip(tr("Heard since the start"));
}

void HeardDisplay::Show(uint64_t milliseconds)
{
    const QString text = HeardText(milliseconds);
    if (text == m_text)
        return;
    m_text = text;
    update();
}

QSize HeardDisplay::sizeHint() const
{
    return {fontMetrics().horizontalAdvance(HeardText(LongestTime)) + 2 * Margin, fontMetrics().height()};
}

void HeardDisplay::paintEvent(QPaintEvent*)
{
    QPainter painter(this);
    painter.fillRect(rect(), palette().window());
    painter.setPen(palette().color(QPalette::WindowText));
    painter.drawText(rect(), Qt::AlignCenter, m_text);
}

} // namespace ek
