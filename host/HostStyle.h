// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <QProxyStyle>

class QStyleOptionTitleBar;

namespace ek {

/// The look of the program: a plain style under the skin's colours, with quiet title bars for document windows.
class HostStyle : public QProxyStyle {
public:
    HostStyle();

    int pixelMetric(PixelMetric metric, const QStyleOption* option, const QWidget* widget) const override;
    int styleHint(StyleHint hint, const QStyleOption* option, const QWidget* widget,
                  QStyleHintReturn* returnData) const override;
    void drawPrimitive(PrimitiveElement element, const QStyleOption* option, QPainter* painter,
                       const QWidget* widget) const override;
    void drawComplexControl(ComplexControl control, const QStyleOptionComplex* option, QPainter* painter,
                            const QWidget* widget) const override;

private:
    void DrawTitleBar(const QStyleOptionTitleBar& option, QPainter& painter, const QWidget* widget) const;
    void DrawTitleButton(const QStyleOptionTitleBar& option, SubControl button, const QColor& color, QPainter& painter,
                         const QWidget* widget) const;
};

} // namespace ek
