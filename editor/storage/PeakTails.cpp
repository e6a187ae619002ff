// SPDX-License-Identifier: GPL-3.0-or-later
#include "storage/PeakTails.h"

#include <algorithm>

namespace ek {

namespace {

constexpr uint64_t BlockFrames = PeakCache::BlockFrames;

bool AreCongruent(uint64_t frames, uint64_t otherFrames)
{
    return frames % BlockFrames == otherFrames % BlockFrames;
}

uint64_t BlocksIn(uint64_t frames)
{
    return (frames + BlockFrames - 1) / BlockFrames;
}

} // namespace

uint64_t PeakTails::Origin::FirstBlock() const
{
    return BlocksIn(Frames - Unchanged);
}

uint64_t PeakTails::Origin::EndBlock() const
{
    return std::max(BlocksIn(Frames), FirstBlock());
}

uint64_t PeakTails::Tail::ByteSize() const
{
    uint64_t bytes = 0;
    for (const std::vector<PeakPair>& entries : Entries)
        bytes += entries.size() * sizeof(PeakPair);
    return bytes;
}

void PeakTails::OnChange(uint64_t unchanged)
{
    m_current.Unchanged = std::min(m_current.Unchanged, unchanged);
    for (Tail& tail : m_tails)
        tail.From.Unchanged = std::min(tail.From.Unchanged, unchanged);
}

void PeakTails::Clear()
{
    m_current = {};
    m_tails.clear();
}

uint64_t PeakTails::Restore(PeakCache& peaks, uint64_t frames)
{
    const uint64_t endBlock = BlocksIn(frames);
    const auto placeOf = [&](const Origin& from, uint64_t block) { return endBlock - (from.EndBlock() - block); };
    if (AreCongruent(m_current.Frames, frames)) {
        const uint64_t place = placeOf(m_current, m_current.FirstBlock());
        peaks.Move(m_current.FirstBlock(), m_current.EndBlock(), place);
        return std::min(place * BlockFrames, frames);
    }
    const auto known =
        std::ranges::find_if(m_tails, [&](const Tail& tail) { return AreCongruent(tail.From.Frames, frames); });
    Tail tail;
    if (known != m_tails.end()) {
        tail = std::move(*known);
        m_tails.erase(known); // the cache is to hold them now
    }
    Keep(peaks);
    const uint64_t first = std::max(tail.From.FirstBlock(), tail.FirstBlock);
    if (first >= tail.From.EndBlock())
        return frames;
    const uint64_t place = placeOf(tail.From, first);
    for (uint32_t channel = 0; channel < peaks.ChannelCount(); ++channel)
        peaks.Put(channel, place, std::span(tail.Entries[channel]).subspan(first - tail.FirstBlock));
    return std::min(place * BlockFrames, frames);
}

/// Of a very long end only the last part is kept, as far as memory allows; of the others the newest.
void PeakTails::Keep(const PeakCache& peaks)
{
    Tail kept;
    kept.From = m_current;
    const uint64_t most = LargestMemory / sizeof(PeakPair) / peaks.ChannelCount();
    const uint64_t end = m_current.EndBlock();
    kept.FirstBlock = std::max(m_current.FirstBlock(), end - std::min(end, most));
    for (uint32_t channel = 0; channel < peaks.ChannelCount(); ++channel) {
        const std::span<const PeakPair> entries = peaks.Entries(channel).subspan(0, end).subspan(kept.FirstBlock);
        kept.Entries[channel].assign(entries.begin(), entries.end());
    }
    std::erase_if(m_tails, [this](const Tail& tail) { return AreCongruent(tail.From.Frames, m_current.Frames); });
    uint64_t bytes = kept.ByteSize();
    m_tails.push_back(std::move(kept));
    auto oldest = m_tails.end() - 1;
    while (oldest != m_tails.begin() && bytes + (oldest - 1)->ByteSize() <= LargestMemory)
        bytes += (--oldest)->ByteSize();
    m_tails.erase(m_tails.begin(), oldest);
}

} // namespace ek
