// SPDX-License-Identifier: GPL-3.0-or-later
#include "waveview/ViewLayout.h"

#include <cmath>

namespace ek {

namespace {

constexpr int LeftColumnWidth = 28;
constexpr int RulerHeight = 16;
constexpr int HeadHeight = 24; // ruler and marker strip
constexpr int OverviewHeight = 16;
constexpr int OverviewRowHeight = 12;
constexpr int OverviewFrame = 2;

int OverviewHeightOf(const LayoutInput& input)
{
    if (!input.OverviewExpanded)
        return ScaledLength(OverviewHeight, input.Scale);
    return ScaledLength(OverviewRowHeight * static_cast<int>(input.ChannelCount) + OverviewFrame, input.Scale);
}

} // namespace

int ScaledLength(int length, double scale)
{
    const int scaled = static_cast<int>(std::lround(length * scale));
    return length > 0 ? std::max(scaled, 1) : scaled;
}

ViewLayout ViewLayout::Compute(const LayoutInput& input)
{
    Rect area = input.Client;
    area.Bottom -= input.StatusBarHeight;
    const int dataLeft = area.Left + ScaledLength(LeftColumnWidth, input.Scale);
    const int dataRight = area.Right - input.ScrollBarWidth;
    const int headTop = area.Top + OverviewHeightOf(input);
    const int rulerBottom = headTop + ScaledLength(RulerHeight, input.Scale);
    const int headBottom = headTop + ScaledLength(HeadHeight, input.Scale);
    const int dataBottom = area.Bottom - input.ScrollBarHeight;
    const int labelLeft = area.Right - 5 * input.ScrollBarHeight;

    ViewLayout layout;
    layout.Overview = {area.Left, area.Top, dataRight, headTop};
    layout.Tool = {area.Left, headTop, dataLeft, headBottom};
    layout.ToggleButton = {area.Left, headTop, dataLeft, rulerBottom};
    layout.Time = {dataLeft, headTop, dataRight, rulerBottom};
    layout.Marker = {dataLeft, rulerBottom, dataRight, headBottom};
    layout.Amplitude = {area.Left, headBottom, dataLeft, dataBottom};
    layout.Wave = {dataLeft, headBottom, dataRight, dataBottom};
    layout.HorizontalBar = {0, dataBottom, labelLeft, area.Bottom};
    layout.ZoomLabel = {labelLeft, dataBottom, area.Right, area.Bottom};
    layout.VerticalBar = {dataRight, 0, area.Right, area.Bottom - input.ScrollBarWidth};
    layout.StatusBar = {area.Left, area.Bottom, area.Right, input.Client.Bottom};
    layout.OverviewInset = dataLeft - area.Left;
    return layout;
}

} // namespace ek
