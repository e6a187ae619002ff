// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "storage/PeakCache.h"

#include <cstdint>
#include <span>
#include <vector>

namespace ek {

class CWaveData;

/// A sound in plain memory, with the edits of a store done in the most obvious way: what the store is compared with.
struct SoundModel {
    static constexpr uint32_t AllChannels = PeakCache::AllChannels;

    uint32_t Channels = 2;
    std::vector<int16_t> Values; ///< interleaved

    uint64_t FrameCount() const { return Values.size() / Channels; }
    std::span<const int16_t> Frames(uint64_t start, uint64_t end) const;
    std::vector<int16_t> Channel(uint32_t position, uint64_t start, uint64_t end) const;

    void Insert(uint64_t frame, std::span<const int16_t> values);
    void Remove(uint64_t start, uint64_t end);
    void Write(uint64_t frame, std::span<const int16_t> values);
    void Clear(uint32_t position, uint64_t start, uint64_t end);
    /// `values` is mono unless the position is AllChannels, where it is interleaved.
    void Replace(uint32_t position, uint64_t start, uint64_t end, std::span<const int16_t> values);
    void Mix(uint32_t position, uint64_t start, std::span<const int16_t> values);

    PeakPair Extremes(uint32_t channel, uint64_t start, uint64_t end) const;
};

/// Frames [start, end) of a store; empty when they cannot be read.
std::vector<int16_t> ReadFrames(CWaveData& store, uint64_t start, uint64_t end);
std::vector<int16_t> ReadAll(CWaveData& store);

/// Test assertions that the store holds the model's sound, and that every entry of its peaks is that of the sound.
void ExpectSameSound(CWaveData& store, const SoundModel& model);
void ExpectSamePeaks(const CWaveData& store, const SoundModel& model);

} // namespace ek
