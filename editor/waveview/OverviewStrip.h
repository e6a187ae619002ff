// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "waveview/Rect.h"
#include "waveview/WaveGeometry.h"

namespace ek {

/// The strip that stands for the whole sound: frames against its pixels, and the box of the visible range.
struct OverviewStrip {
    Rect Area;
    int Inset = 0; ///< where the data starts, from the left edge on

    int64_t FrameToX(uint64_t frame, uint64_t length) const;
    /// Left and right end of the visible range, both inside; equal when the range is narrower than a pixel.
    std::pair<int64_t, int64_t> VisibleBox(const WaveGeometry& geometry) const;
    bool IsInBox(const WaveGeometry& geometry, int x, int y) const;
    /// The frame that a click at x stands for; none left of the data and for an empty sound.
    std::optional<uint64_t> FrameAt(int x, uint64_t length) const;
    /// Moves the visible range as far as the mouse moved since the box was grabbed with `startFrame` at the left
    /// edge of the wave panel.
    void DragBox(WaveGeometry& geometry, uint64_t startFrame, int startX, int x) const;
};

} // namespace ek
