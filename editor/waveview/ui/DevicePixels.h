// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "waveview/Rect.h"

#include <QPointF>
#include <QRect>

#include <cmath>

namespace ek {

/// Conversions between a widget's own units and device pixels, which need not be whole multiples of each other.
struct DevicePixels {
    double Scale = 1.0; ///< device pixels per unit of the widget

    int Length(int units) const { return static_cast<int>(std::lround(units * Scale)); }
    QPoint Point(QPointF position) const
    {
        return {static_cast<int>(std::floor(position.x() * Scale)), static_cast<int>(std::floor(position.y() * Scale))};
    }
    /// Every device pixel that a rectangle of the widget touches.
    Rect Touched(const QRect& rect) const
    {
        return {Floor(rect.left() * Scale), Floor(rect.top() * Scale), Ceil((rect.left() + rect.width()) * Scale),
                Ceil((rect.top() + rect.height()) * Scale)};
    }
    /// The smallest rectangle of the widget that covers the device pixels.
    QRect Cover(const Rect& rect) const
    {
        return Spanned(Floor(rect.Left / Scale), Floor(rect.Top / Scale), Ceil(rect.Right / Scale),
                       Ceil(rect.Bottom / Scale));
    }
    /// The place of a child widget: neighbouring rectangles stay neighbours, and nothing left of or above the
    /// rectangle is covered.
    QRect Place(const Rect& rect) const
    {
        return Spanned(Ceil(rect.Left / Scale), Ceil(rect.Top / Scale), Ceil(rect.Right / Scale),
                       Ceil(rect.Bottom / Scale));
    }

private:
    // Products of whole numbers and scales like 1.1 are off by a rounding error, which must not cost a pixel.
    static constexpr double Tolerance = 1e-6;

    static int Floor(double value) { return static_cast<int>(std::floor(value + Tolerance)); }
    static int Ceil(double value) { return static_cast<int>(std::ceil(value - Tolerance)); }
    static QRect Spanned(int left, int top, int right, int bottom) { return {left, top, right - left, bottom - top}; }
};

} // namespace ek
