// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "servicefuncs/Channels.h"

#include <array>
#include <cstddef>
#include <cstdint>

namespace ek {

/// Gains that make the channels of one layout from those of another.
struct ChannelMatrix {
    uint32_t Inputs = 0;
    uint32_t Outputs = 0;
    std::array<std::array<double, MaxChannels>, MaxChannels> Gain{}; ///< [output][input]

    bool IsIdentity() const;
    /// Interleaved frames; `in` and `out` must not overlap.
    void Apply(const double* in, double* out, size_t frames) const;
    bool operator==(const ChannelMatrix&) const = default;
};

/// Speakers that both layouts have go through unchanged; others are folded into their neighbours (the low frequency
/// channel is left out), and everything is scaled down as far as needed for full scale on all inputs not to clip.
/// Mono fills left and right of stereo and the centre of larger layouts; mono out of stereo is its mean.
/// A mask that does not name as many speakers as there are channels stands for the usual layout.
ChannelMatrix MakeChannelMatrix(uint32_t fromChannels, uint32_t fromMask, uint32_t toChannels, uint32_t toMask);

} // namespace ek
