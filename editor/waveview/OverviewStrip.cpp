// SPDX-License-Identifier: GPL-3.0-or-later
#include "waveview/OverviewStrip.h"

namespace ek {

int64_t OverviewStrip::FrameToX(uint64_t frame, uint64_t length) const
{
    const int64_t left = Area.Left + Inset;
    if (length == 0)
        return left;
    return left + (Area.Width() - Inset) * static_cast<int64_t>(frame) / static_cast<int64_t>(length);
}

std::pair<int64_t, int64_t> OverviewStrip::VisibleBox(const WaveGeometry& geometry) const
{
    if (geometry.Length == 0)
        return {FrameToX(0, 0), FrameToX(0, 0)};
    const uint64_t end = std::min(geometry.FirstVisibleFrame + geometry.Span(), geometry.Length - 1);
    return {FrameToX(geometry.FirstVisibleFrame, geometry.Length), FrameToX(end, geometry.Length)};
}

bool OverviewStrip::IsInBox(const WaveGeometry& geometry, int x, int y) const
{
    const auto [left, right] = VisibleBox(geometry);
    return geometry.Length > 0 && Area.Contains(x, y) && x >= left && x <= right;
}

std::optional<uint64_t> OverviewStrip::FrameAt(int x, uint64_t length) const
{
    const int64_t offset = x - (Area.Left + Inset);
    const int64_t width = Area.Width() - Inset;
    if (offset < 0 || width <= 0 || length == 0)
        return std::nullopt;
    return std::min(static_cast<uint64_t>(offset) * length / static_cast<uint64_t>(width), length);
}

void OverviewStrip::DragBox(WaveGeometry& geometry, uint64_t startFrame, int startX, int x) const
{
    if (Area.IsEmpty() || geometry.Length == 0)
        return;
    const auto length = static_cast<int64_t>(geometry.Length);
    const int64_t last = length - std::min(length, static_cast<int64_t>(geometry.Span()));
    const int64_t first = static_cast<int64_t>(startFrame) + int64_t{x - startX} * length / Area.Width();
    geometry.FirstVisibleFrame = static_cast<uint64_t>(std::clamp<int64_t>(first, 0, last));
    geometry.FollowPlayback = false;
    geometry.Align();
}

} // namespace ek
