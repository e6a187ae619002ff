// SPDX-License-Identifier: GPL-3.0-or-later
#include "host/HostStyle.h"

#include "skincontrols/Skin.h"

#include <QPainter>
#include <QPainterPath>
#include <QStyleOption>

namespace ek {

namespace {

constexpr int DocumentFrameWidth = 3;
constexpr double GlyphStroke = 1.25;

// The usual indices of system colours.
constexpr uint32_t ActiveCaption = 2;
constexpr uint32_t InactiveCaption = 3;
constexpr uint32_t CaptionText = 9;
constexpr uint32_t ActiveBorder = 10;
constexpr uint32_t InactiveBorder = 11;
constexpr uint32_t InactiveCaptionText = 19;

/// The sign on a title button, within one unit around the origin.
QPainterPath Glyph(QStyle::SubControl button)
{
    QPainterPath path;
    if (button == QStyle::SC_TitleBarMinButton) {
        path.moveTo(-1, 0.6);
        path.lineTo(1, 0.6);
    } else if (button == QStyle::SC_TitleBarMaxButton) {
        path.addRect(-0.95, -0.95, 1.9, 1.9);
    } else if (button == QStyle::SC_TitleBarNormalButton) {
        path.addRect(-1, -0.5, 1.5, 1.5);
        path.moveTo(-0.4, -1);
        path.lineTo(1, -1);
        path.lineTo(1, 0.4);
    } else {
        path.moveTo(-0.9, -0.9);
        path.lineTo(0.9, 0.9);
        path.moveTo(-0.9, 0.9);
        path.lineTo(0.9, -0.9);
    }
    return path;
}

/// The window state in which a button takes the place of its counterpart.
bool IsShown(const QStyleOptionTitleBar& option, QStyle::SubControl button)
{
    const bool isMaximized = option.titleBarState & Qt::WindowMaximized;
    const bool isMinimized = option.titleBarState & Qt::WindowMinimized;
    switch (button) {
    case QStyle::SC_TitleBarMinButton:
        return option.titleBarFlags & Qt::WindowMinimizeButtonHint && !isMinimized;
    case QStyle::SC_TitleBarMaxButton:
        return option.titleBarFlags & Qt::WindowMaximizeButtonHint && !isMaximized;
    case QStyle::SC_TitleBarNormalButton:
        return isMinimized || isMaximized;
    default:
        return option.titleBarFlags & Qt::WindowSystemMenuHint;
    }
}

} // namespace

HostStyle::HostStyle() : QProxyStyle(QStringLiteral("Fusion")) {}

int HostStyle::pixelMetric(PixelMetric metric, const QStyleOption* option, const QWidget* widget) const
{
    return metric == PM_MdiSubWindowFrameWidth ? DocumentFrameWidth : QProxyStyle::pixelMetric(metric, option, widget);
}

/// Document windows have square corners, and the buttons of dialogs have no pictures.
int HostStyle::styleHint(StyleHint hint, const QStyleOption* option, const QWidget* widget,
                         QStyleHintReturn* returnData) const
{
    return hint == SH_WindowFrame_Mask || hint == SH_DialogButtonBox_ButtonsHaveIcons
               ? 0
               : QProxyStyle::styleHint(hint, option, widget, returnData);
}

void HostStyle::drawPrimitive(PrimitiveElement element, const QStyleOption* option, QPainter* painter,
                              const QWidget* widget) const
{
    if (element != PE_FrameWindow) {
        QProxyStyle::drawPrimitive(element, option, painter, widget);
        return;
    }
    const bool isActive = option->state & State_Active;
    painter->fillRect(option->rect, SkinColorOf(isActive ? ActiveCaption : InactiveCaption));
    painter->setPen(SkinColorOf(isActive ? ActiveBorder : InactiveBorder));
    painter->drawRect(option->rect.adjusted(0, 0, -1, -1));
}

void HostStyle::drawComplexControl(ComplexControl control, const QStyleOptionComplex* option, QPainter* painter,
                                   const QWidget* widget) const
{
    const auto* titleBar = qstyleoption_cast<const QStyleOptionTitleBar*>(option);
    if (control != CC_TitleBar || !titleBar) {
        QProxyStyle::drawComplexControl(control, option, painter, widget);
        return;
    }
    painter->save();
    DrawTitleBar(*titleBar, *painter, widget);
    painter->restore();
}

void HostStyle::DrawTitleBar(const QStyleOptionTitleBar& option, QPainter& painter, const QWidget* widget) const
{
    const bool isActive = option.titleBarState & State_Active;
    const QColor color = SkinColorOf(isActive ? CaptionText : InactiveCaptionText);
    painter.fillRect(option.rect, SkinColorOf(isActive ? ActiveCaption : InactiveCaption));
    painter.setPen(SkinColorOf(isActive ? ActiveBorder : InactiveBorder));
    painter.drawPolyline(
        QPolygon({option.rect.bottomLeft(), option.rect.topLeft(), option.rect.topRight(), option.rect.bottomRight()}));
    const QRect place = subControlRect(CC_TitleBar, &option, SC_TitleBarLabel, widget);
    painter.setPen(color);
    painter.drawText(place, Qt::AlignCenter,
                     option.fontMetrics.elidedText(option.text, Qt::ElideMiddle, place.width()));
    for (const SubControl button :
         {SC_TitleBarMinButton, SC_TitleBarMaxButton, SC_TitleBarNormalButton, SC_TitleBarCloseButton}) {
        if (IsShown(option, button))
            DrawTitleButton(option, button, color, painter, widget);
    }
}

void HostStyle::DrawTitleButton(const QStyleOptionTitleBar& option, SubControl button, const QColor& color,
                                QPainter& painter, const QWidget* widget) const
{
    const QRect place = subControlRect(CC_TitleBar, &option, button, widget);
    painter.setRenderHint(QPainter::Antialiasing);
    if (option.activeSubControls & button) {
        QColor glow = color;
        glow.setAlphaF(option.state & State_Sunken ? 0.3F : 0.15F);
        painter.setPen(Qt::NoPen);
        painter.setBrush(glow);
        painter.drawRoundedRect(place, 3, 3);
    }
    const double size = place.height() * 0.24;
    painter.setPen(QPen(color, GlyphStroke, Qt::SolidLine, Qt::RoundCap, Qt::RoundJoin));
    painter.setBrush(Qt::NoBrush);
    painter.drawPath(QTransform::fromTranslate(place.center().x() + 0.5, place.center().y() + 0.5)
                         .scale(size, size)
                         .map(Glyph(button)));
}

} // namespace ek
