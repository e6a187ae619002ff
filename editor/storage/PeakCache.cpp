// SPDX-License-Identifier: GPL-3.0-or-later
#include "storage/PeakCache.h"

#include <algorithm>
#include <cassert>
#include <cstring>

namespace ek {

namespace {

PeakPair ExtremesOf(const std::vector<PeakPair>& pairs, uint64_t first, uint64_t end)
{
    if (first >= end)
        return NoPeak;
    // Pairs are like frames of two channels, the smallest values in one and the largest in the other.
    static_assert(sizeof(PeakPair) == 2 * sizeof(int16_t));
    PeakPair ofEach[2];
    InterleavedExtremes(&pairs[first].Min, end - first, 2, ofEach);
    return {ofEach[0].Min, ofEach[1].Max};
}

} // namespace

void PeakCache::Alloc(uint64_t frames, uint32_t channels)
{
    Free();
    if (frames == 0 || channels == 0)
        return;
    m_channels = channels;
    Resize(frames);
}

void PeakCache::Resize(uint64_t frames)
{
    const uint64_t entries = frames / BlockFrames + 1;
    for (uint32_t channel = 0; channel < m_channels; ++channel) {
        m_entries[channel].resize(entries);
        m_coarse[channel].resize((entries + CoarseBlocks - 1) / CoarseBlocks);
    }
}

void PeakCache::Grow(uint64_t frames)
{
    if (!IsEmpty() && frames / BlockFrames + 1 > m_entries[0].size())
        Resize(frames);
}

void PeakCache::Trim(uint64_t frames)
{
    if (frames == 0)
        Free();
    else
        Resize(frames);
}

void PeakCache::Free()
{
    m_entries = {};
    m_coarse = {};
    m_channels = 0;
}

uint64_t PeakCache::ByteSize() const
{
    return m_entries[0].size() * sizeof(PeakPair);
}

void PeakCache::EnterBlock(const int16_t* frames, uint64_t block, uint64_t count, bool combine, uint32_t onlyChannel)
{
    std::array<PeakPair, MaxChannels> extremes;
    InterleavedExtremes(frames, count, m_channels, extremes.data());
    for (uint32_t channel = 0; channel < m_channels; ++channel) {
        if (onlyChannel != AllChannels && onlyChannel != channel)
            continue;
        PeakPair& entry = m_entries[channel][block];
        if (combine)
            Widen(entry, extremes[channel]);
        else
            entry = extremes[channel];
    }
}

void PeakCache::Enter(const int16_t* frames, uint64_t firstFrame, uint64_t count, uint32_t onlyChannel)
{
    const uint64_t end = firstFrame + count;
    assert(count == 0 || IsEmpty() || (end - 1) / BlockFrames < m_entries[0].size());
    if (IsEmpty())
        return;
    for (uint64_t frame = firstFrame; frame < end;) {
        const uint64_t block = frame / BlockFrames;
        const uint64_t next = std::min(end, (block + 1) * BlockFrames);
        EnterBlock(frames + (frame - firstFrame) * m_channels, block, next - frame, frame % BlockFrames != 0,
                   onlyChannel);
        frame = next;
    }
}

void PeakCache::FinishCoarse(uint64_t firstFrame, uint64_t endFrame)
{
    const uint64_t endBlock = (endFrame + BlockFrames - 1) / BlockFrames;
    for (uint32_t channel = 0; channel < m_channels; ++channel) {
        const std::vector<PeakPair>& entries = m_entries[channel];
        const uint64_t end = std::min<uint64_t>(endBlock, entries.size());
        for (uint64_t i = firstFrame / BlockFrames / CoarseBlocks; i * CoarseBlocks < end; ++i) {
            const uint64_t first = i * CoarseBlocks;
            m_coarse[channel][i] = ExtremesOf(entries, first, std::min<uint64_t>(first + CoarseBlocks, entries.size()));
        }
    }
}

void PeakCache::Move(uint64_t first, uint64_t end, uint64_t to)
{
    for (uint32_t channel = 0; channel < m_channels && first < end; ++channel) {
        PeakPair* const entries = m_entries[channel].data();
        std::memmove(entries + to, entries + first, (end - first) * sizeof(PeakPair));
    }
}

void PeakCache::Put(uint32_t channel, uint64_t first, std::span<const PeakPair> entries)
{
    std::ranges::copy(entries, m_entries[channel].begin() + static_cast<ptrdiff_t>(first));
}

PeakPair PeakCache::Extremes(uint32_t channel, uint64_t first, uint64_t end) const
{
    const std::vector<PeakPair>& entries = m_entries[channel];
    const uint64_t firstCoarse = (first + CoarseBlocks - 1) / CoarseBlocks;
    const uint64_t endCoarse = end / CoarseBlocks;
    if (firstCoarse >= endCoarse)
        return ExtremesOf(entries, first, end);
    PeakPair extremes = ExtremesOf(entries, first, firstCoarse * CoarseBlocks);
    Widen(extremes, ExtremesOf(m_coarse[channel], firstCoarse, endCoarse));
    Widen(extremes, ExtremesOf(entries, endCoarse * CoarseBlocks, end));
    return extremes;
}

} // namespace ek
