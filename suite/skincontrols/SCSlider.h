// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <QSlider>

namespace ek {

/// A horizontal slider in the skin's colours. A press anywhere on it takes the handle there and drags it on. The wheel
/// does not move it.
class CSCSlider final : public QSlider {
public:
    explicit CSCSlider(QWidget* parent = nullptr);

    QSize sizeHint() const override;

protected:
    void paintEvent(QPaintEvent* event) override;
    void mousePressEvent(QMouseEvent* event) override;
    void mouseMoveEvent(QMouseEvent* event) override;
    void mouseReleaseEvent(QMouseEvent* event) override;
    void wheelEvent(QWheelEvent* event) override;

private:
    QRectF Groove() const;
    void MoveTo(double x);
};

} // namespace ek
