// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <QScrollBar>

namespace ek {

/// A scroll bar in the skin's colours: flat, and without a thumb where there is nothing to scroll. The wheel over it
/// belongs to the widget that it is part of.
class CSCScrollBar final : public QScrollBar {
public:
    CSCScrollBar(Qt::Orientation orientation, QWidget* parent);

protected:
    void paintEvent(QPaintEvent* event) override;
    void wheelEvent(QWheelEvent* event) override;

private:
    void DrawThumb(QPainter& painter, const QStyleOptionSlider& option) const;
    void DrawArrow(QPainter& painter, const QRect& button, bool forward) const;
};

} // namespace ek
