// SPDX-License-Identifier: GPL-3.0-or-later
#include "skincontrols/SCScrollBar.h"

#include "skincontrols/Skin.h"
#include "skincontrols/SystemColors.h"

#include <QPainter>
#include <QStyle>
#include <QStyleOptionSlider>
#include <QWheelEvent>

namespace ek {

namespace {

constexpr int ThumbMargin = 3;

QColor Mixed(const QColor& color, const QColor& other, double share)
{
    const auto mix = [share](int a, int b) { return static_cast<int>(a + (b - a) * share); };
    return QColor(mix(color.red(), other.red()), mix(color.green(), other.green()), mix(color.blue(), other.blue()));
}

} // namespace

CSCScrollBar::CSCScrollBar(Qt::Orientation orientation, QWidget* parent) : QScrollBar(orientation, parent)
{
    setAttribute(Qt::WA_OpaquePaintEvent);
    setAttribute(Qt::WA_Hover);
}

void CSCScrollBar::paintEvent(QPaintEvent*)
{
    QStyleOptionSlider option;
    initStyleOption(&option);
    QPainter painter(this);
    painter.fillRect(rect(), SkinColorOf(ColorScrollBar));
    painter.setRenderHint(QPainter::Antialiasing);
    painter.setPen(Qt::NoPen);
    if (isEnabled() && maximum() > minimum())
        DrawThumb(painter, option);
    for (const auto part : {QStyle::SC_ScrollBarSubLine, QStyle::SC_ScrollBarAddLine})
        DrawArrow(painter, style()->subControlRect(QStyle::CC_ScrollBar, &option, part, this),
                  part == QStyle::SC_ScrollBarAddLine);
}

void CSCScrollBar::wheelEvent(QWheelEvent* event)
{
    event->ignore();
}

void CSCScrollBar::DrawThumb(QPainter& painter, const QStyleOptionSlider& option) const
{
    const QRect slider = style()->subControlRect(QStyle::CC_ScrollBar, &option, QStyle::SC_ScrollBarSlider, this);
    const bool horizontal = orientation() == Qt::Horizontal;
    const QRect thumb = slider.adjusted(horizontal ? 1 : ThumbMargin, horizontal ? ThumbMargin : 1,
                                        horizontal ? -1 : -ThumbMargin, horizontal ? -ThumbMargin : -1);
    const double emphasis = isSliderDown() ? 0.35 : underMouse() ? 0.2 : 0.0;
    painter.setBrush(Mixed(SkinColorOf(ColorButtonShadow), SkinColorOf(ColorButtonText), emphasis));
    const double radius = std::min(thumb.width(), thumb.height()) / 2.0;
    painter.drawRoundedRect(thumb, radius, radius);
}

void CSCScrollBar::DrawArrow(QPainter& painter, const QRect& button, bool forward) const
{
    const QPointF center = QRectF(button).center();
    const double size = std::min(button.width(), button.height()) / 5.0;
    const double tip = forward ? size * 0.7 : -size * 0.7;
    QPolygonF triangle{QPointF(tip, 0), QPointF(-tip, -size), QPointF(-tip, size)};
    if (orientation() == Qt::Vertical) {
        for (QPointF& point : triangle)
            point = point.transposed();
    }
    painter.setBrush(SkinColorOf(isEnabled() ? ColorGrayText : ColorButtonShadow));
    painter.drawPolygon(triangle.translated(center));
}

} // namespace ek
