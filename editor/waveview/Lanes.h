// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "servicefuncs/Channels.h"
#include "waveview/Rect.h"

#include <cstdint>

namespace ek {

/// How the wave panel is divided among the channels that are shown: VisibleCount lanes of equal height from the top
/// on, the first showing channel FirstChannel. Rows left over at the bottom belong to no lane. No lanes when
/// VisibleCount is 0.
struct Lanes {
    Rect Panel;
    uint32_t FirstChannel = 0;
    uint32_t VisibleCount = 0;

    int Height() const; ///< of one lane with its separator; 0 without lanes
    /// Lane `index` from the top, without the separator line above it.
    Rect Lane(uint32_t index) const;
    /// The row of the separator above lane `index`, which is not the first.
    int SeparatorAbove(uint32_t index) const { return Panel.Top + static_cast<int>(index) * Height(); }
    /// The channel that a point at height y of the view designates: ChannelAll around the borders of two lanes, and
    /// without lanes.
    ChannelCode ChannelAt(const WAVEFORMATEXTENSIBLE& format, int y) const;
    /// The rows of one channel, or of the whole panel for ChannelAll; empty when no lane shows the channel.
    Rect RowsOf(const WAVEFORMATEXTENSIBLE& format, ChannelCode code) const;
};

/// Which channels the lanes show; the document keeps the two numbers.
struct LaneRange {
    uint32_t First = 0;
    uint32_t Count = 0;

    /// One lane fewer; at least one stays.
    LaneRange ZoomedIn() const;
    /// One lane more, as far as there are channels.
    LaneRange ZoomedOut(uint32_t channels) const;
    /// Another first channel, as a scroll bar over the channels allows it.
    LaneRange ScrolledTo(int64_t first, uint32_t channels) const;
    bool operator==(const LaneRange&) const = default;
};

// The amplitude scale: percent of full scale that fits in a lane.
inline constexpr uint32_t LargestAmplitudeScale = 100;
inline constexpr uint32_t SmallestAmplitudeScale = 3;
uint32_t ScaledIn(uint32_t amplitudeScale);  ///< next smaller step: a larger waveform
uint32_t ScaledOut(uint32_t amplitudeScale); ///< next larger step

/// The offset nearest to the wanted one with which full scale still covers a lane of that height. `margin` are the
/// pixels between full scale and the lane's border at the scale 100.
int ClampedVerticalOffset(int wanted, int laneHeight, int margin, uint32_t amplitudeScale);

} // namespace ek
