// SPDX-License-Identifier: GPL-3.0-or-later
#include "skincontrols/SCSlider.h"

#include "skincontrols/Skin.h"
#include "skincontrols/SystemColors.h"

#include <QMouseEvent>
#include <QPainter>

namespace ek {

namespace {

constexpr double Radius = 6; ///< of the handle
constexpr double GrooveHeight = 4;

} // namespace

CSCSlider::CSCSlider(QWidget* parent) : QSlider(Qt::Horizontal, parent)
{
    setAttribute(Qt::WA_Hover);
}

QSize CSCSlider::sizeHint() const
{
    return {200, static_cast<int>(2 * Radius) + 4};
}

QRectF CSCSlider::Groove() const
{
    return {Radius + 1, (height() - GrooveHeight) / 2, width() - 2 * (Radius + 1), GrooveHeight};
}

void CSCSlider::paintEvent(QPaintEvent*)
{
    QPainter painter(this);
    painter.setRenderHint(QPainter::Antialiasing);
    painter.setPen(Qt::NoPen);
    const QRectF groove = Groove();
    painter.setBrush(SkinColorOf(ColorButtonShadow));
    painter.drawRoundedRect(groove, GrooveHeight / 2, GrooveHeight / 2);
    if (!isEnabled() || maximum() <= minimum())
        return;
    QRectF passed = groove;
    passed.setWidth(groove.width() * (sliderPosition() - minimum()) / (maximum() - minimum()));
    painter.setBrush(SkinColorOf(ColorHighlight));
    painter.drawRoundedRect(passed, GrooveHeight / 2, GrooveHeight / 2);
    const bool isEmphasized = isSliderDown() || underMouse() || hasFocus();
    const double radius = isEmphasized ? Radius : Radius - 1;
    painter.drawEllipse(QPointF(passed.right(), groove.center().y()), radius, radius);
}

void CSCSlider::MoveTo(double x)
{
    const QRectF groove = Groove();
    setSliderPosition(minimum() + qRound((x - groove.left()) * (maximum() - minimum()) / groove.width()));
}

void CSCSlider::mousePressEvent(QMouseEvent* event)
{
    if (event->button() != Qt::LeftButton || isSliderDown())
        return;
    setSliderDown(true);
    MoveTo(event->position().x());
}

void CSCSlider::mouseMoveEvent(QMouseEvent* event)
{
    if (isSliderDown())
        MoveTo(event->position().x());
}

void CSCSlider::mouseReleaseEvent(QMouseEvent* event)
{
    if (event->button() == Qt::LeftButton && isSliderDown())
        setSliderDown(false);
}

void CSCSlider::wheelEvent(QWheelEvent* event)
{
    event->ignore();
}

} // namespace ek
