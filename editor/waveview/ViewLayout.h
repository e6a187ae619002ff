// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "waveview/Rect.h"

#include <cstdint>

namespace ek {

/// A length given for a display of scale 1, in device pixels of a display of scale `scale`; at least 1 for lengths
/// above 0.
int ScaledLength(int length, double scale);

/// What the places of the view's parts follow from. All lengths are device pixels.
struct LayoutInput {
    Rect Client;
    int ScrollBarWidth = 0;  ///< of a vertical scroll bar
    int ScrollBarHeight = 0; ///< of a horizontal scroll bar
    int StatusBarHeight = 0; ///< taken off the bottom of the client rectangle; 0: none
    uint32_t ChannelCount = 0;
    bool OverviewExpanded = false; ///< one row per channel
    double Scale = 1.0;            ///< device pixels per pixel of a display of scale 1
};

/// Where every part of the view lies, in device pixels. In a window that is too small rectangles are empty or
/// inside out; nothing is drawn or hit in those.
struct ViewLayout {
    Rect Overview;
    Rect Tool;
    Rect ToggleButton; ///< lies on the tool panel
    Rect Time;
    Rect Marker;
    Rect Amplitude;
    Rect Wave;
    Rect HorizontalBar;
    Rect ZoomLabel;
    Rect VerticalBar;
    Rect StatusBar;
    int OverviewInset = 0; ///< the overview's data area starts here, above the left edge of the wave panel

    static ViewLayout Compute(const LayoutInput& input);
    bool operator==(const ViewLayout&) const = default;
};

} // namespace ek
