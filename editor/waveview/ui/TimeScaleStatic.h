// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <QLabel>

#include <functional>

namespace ek {

/// The label beside the horizontal scroll bar that shows the zoom: "1:" and the frames per pixel.
class CTimeScaleStatic final : public QLabel {
public:
    /// `showMenu` is called for a press of any button, with its place on the screen.
    CTimeScaleStatic(QWidget* parent, std::function<void(QPoint)> showMenu);
    void SetRatio(uint32_t framesPerPixel);

protected:
    void mousePressEvent(QMouseEvent* event) override;

private:
    std::function<void(QPoint)> m_showMenu;
};

} // namespace ek
