// SPDX-License-Identifier: GPL-3.0-or-later
#include "waveview/Lanes.h"

#include <array>

namespace ek {

namespace {

constexpr std::array<uint32_t, 12> AmplitudeSteps = {100, 80, 60, 40, 30, 20, 15, 10, 8, 6, 4, 3};

size_t StepIndex(uint32_t amplitudeScale)
{
    return static_cast<size_t>(std::ranges::find(AmplitudeSteps, amplitudeScale) - AmplitudeSteps.begin());
}

// The lane that row y of a panel belongs to, or -1 in the bands across the borders of two lanes, which are half a
// lane high. The outer quarters of the first and the last lane belong to those lanes.
int LaneAtRow(int y, int panelHeight, int lanes)
{
    const float quarter = 0.25f * static_cast<float>(panelHeight) / static_cast<float>(lanes);
    const int last = 4 * lanes - 1;
    const int index = std::clamp(static_cast<int>(static_cast<float>(y) / quarter), 0, last);
    if (index == 0)
        return 0;
    if (index == last)
        return lanes - 1;
    return (index - 1) % 4 < 2 ? (index - 1) / 4 : -1;
}

int LaneOfTwoAtRow(int y, int panelHeight)
{
    if (y < 0.25 * panelHeight)
        return 0;
    return y > 0.75 * panelHeight ? 1 : -1;
}

} // namespace

int Lanes::Height() const
{
    return VisibleCount == 0 ? 0 : Panel.Height() / static_cast<int>(VisibleCount);
}

Rect Lanes::Lane(uint32_t index) const
{
    const int top = SeparatorAbove(index);
    return {Panel.Left, index == 0 ? top : top + 1, Panel.Right, top + Height()};
}

ChannelCode Lanes::ChannelAt(const WAVEFORMATEXTENSIBLE& format, int y) const
{
    if (VisibleCount == 0 || Panel.IsEmpty())
        return ChannelAll;
    int lane = 0;
    if (VisibleCount == 2)
        lane = LaneOfTwoAtRow(y - Panel.Top, Panel.Height());
    else if (VisibleCount > 2)
        lane = LaneAtRow(y - Panel.Top, Panel.Height(), static_cast<int>(VisibleCount));
    return lane < 0 ? ChannelAll : GetChannelByIndex(format, FirstChannel + static_cast<uint32_t>(lane));
}

Rect Lanes::RowsOf(const WAVEFORMATEXTENSIBLE& format, ChannelCode code) const
{
    if (code == ChannelAll)
        return Panel;
    const uint32_t channel = GetIndexByChannel(format, code);
    if (channel < FirstChannel || channel - FirstChannel >= VisibleCount)
        return {};
    return Lane(channel - FirstChannel);
}

LaneRange LaneRange::ZoomedIn() const
{
    return {First, Count >= 2 ? Count - 1 : Count};
}

LaneRange LaneRange::ZoomedOut(uint32_t channels) const
{
    if (Count >= channels)
        return *this;
    return {std::min(First, channels - (Count + 1)), Count + 1};
}

LaneRange LaneRange::ScrolledTo(int64_t first, uint32_t channels) const
{
    const int64_t last = channels > Count ? channels - Count : 0;
    return {static_cast<uint32_t>(std::clamp<int64_t>(first, 0, last)), Count};
}

uint32_t ScaledIn(uint32_t amplitudeScale)
{
    const size_t index = StepIndex(amplitudeScale);
    return index + 1 < AmplitudeSteps.size() ? AmplitudeSteps[index + 1] : amplitudeScale;
}

uint32_t ScaledOut(uint32_t amplitudeScale)
{
    const size_t index = StepIndex(amplitudeScale);
    return index >= 1 ? AmplitudeSteps[index - 1] : amplitudeScale;
}

int ClampedVerticalOffset(int wanted, int laneHeight, int margin, uint32_t amplitudeScale)
{
    const int half = std::max(0, laneHeight / 2 - margin);
    const int limit = half * 100 / static_cast<int>(amplitudeScale);
    return std::clamp(wanted, half - limit, limit - half);
}

} // namespace ek
