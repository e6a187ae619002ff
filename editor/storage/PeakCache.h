// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "servicefuncs/Channels.h"
#include "storage/PeakKernel.h"

#include <array>
#include <cstdint>
#include <span>
#include <vector>

namespace ek {

/// For every channel and every block of 256 frames the smallest and the largest sample value; on top of it one
/// coarser level, so that a view of ten hours costs no more than a view of ten minutes.
class PeakCache {
public:
    static constexpr uint32_t BlockFrames = 256;
    static constexpr uint32_t CoarseBlocks = 64; ///< blocks that one entry of the coarse level covers

    void Alloc(uint64_t frames, uint32_t channels); ///< (frames / 256) + 1 entries a channel; empties when either is 0
    void Grow(uint64_t frames);                     ///< keeps the entries; never shrinks
    void Trim(uint64_t frames);                     ///< keeps the entries of that many frames; empties for 0
    void Free();
    bool IsEmpty() const { return m_channels == 0; }
    uint32_t ChannelCount() const { return m_channels; }
    uint64_t ByteSize() const; ///< of one channel's array

    std::span<const PeakPair> Entries(uint32_t channel) const { return m_entries[channel]; }

    /// Enters the extremes of a run of interleaved frames for one channel or (AllChannels) all of them. A block
    /// that begins in the run is overwritten, one that began before is combined with what stands there; so runs
    /// are given in order, the first from a multiple of 256 on. Runs in different blocks may be entered by
    /// different threads at once.
    void Enter(const int16_t* frames, uint64_t firstFrame, uint64_t count, uint32_t onlyChannel = AllChannels);
    /// After Enter calls: brings the coarse level up to date from the block of `firstFrame` to the end or `endFrame`.
    void FinishCoarse(uint64_t firstFrame, uint64_t endFrame);

    /// Changes entries, which must be there; FinishCoarse is due afterwards.
    void Move(uint64_t first, uint64_t end, uint64_t to); ///< of all channels
    void Put(uint32_t channel, uint64_t first, std::span<const PeakPair> entries);

    /// Extremes of the entries [first, end) of a channel; (32767, -32768) when the range is empty.
    PeakPair Extremes(uint32_t channel, uint64_t first, uint64_t end) const;

    static constexpr uint32_t AllChannels = 0xFFFFFFFF;

private:
    void Resize(uint64_t frames);
    void EnterBlock(const int16_t* frames, uint64_t block, uint64_t count, bool combine, uint32_t onlyChannel);

    uint32_t m_channels = 0;
    std::array<std::vector<PeakPair>, MaxChannels> m_entries;
    std::array<std::vector<PeakPair>, MaxChannels> m_coarse;
};

} // namespace ek
