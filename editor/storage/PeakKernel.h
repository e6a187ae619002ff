// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <cstdint>

namespace ek {

struct PeakPair {
    int16_t Min = 0;
    int16_t Max = 0;
    bool operator==(const PeakPair&) const = default;
};

/// What the extremes of no value are.
inline constexpr PeakPair NoPeak{32767, -32768};

inline void Widen(PeakPair& pair, PeakPair other)
{
    pair.Min = other.Min < pair.Min ? other.Min : pair.Min;
    pair.Max = other.Max > pair.Max ? other.Max : pair.Max;
}

/// The extremes of every channel over interleaved frames, into `channels` pairs; 1 to 8 channels.
void InterleavedExtremes(const int16_t* frames, uint64_t count, uint32_t channels, PeakPair* extremes);

} // namespace ek
