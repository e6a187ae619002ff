// SPDX-License-Identifier: GPL-3.0-or-later
#include "support/SoundModel.h"

#include "storage/WaveData.h"

#include <gtest/gtest.h>

#include <algorithm>

namespace ek {

std::span<const int16_t> SoundModel::Frames(uint64_t start, uint64_t end) const
{
    return std::span(Values).subspan(start * Channels, (end - start) * Channels);
}

std::vector<int16_t> SoundModel::Channel(uint32_t position, uint64_t start, uint64_t end) const
{
    std::vector<int16_t> samples;
    for (uint64_t frame = start; frame < end; ++frame)
        samples.push_back(Values[frame * Channels + position]);
    return samples;
}

void SoundModel::Insert(uint64_t frame, std::span<const int16_t> values)
{
    Values.insert(Values.begin() + static_cast<ptrdiff_t>(frame * Channels), values.begin(), values.end());
}

void SoundModel::Remove(uint64_t start, uint64_t end)
{
    Values.erase(Values.begin() + static_cast<ptrdiff_t>(start * Channels),
                 Values.begin() + static_cast<ptrdiff_t>(end * Channels));
}

void SoundModel::Write(uint64_t frame, std::span<const int16_t> values)
{
    std::ranges::copy(values, Values.begin() + static_cast<ptrdiff_t>(frame * Channels));
}

void SoundModel::Clear(uint32_t position, uint64_t start, uint64_t end)
{
    for (uint64_t value = start * Channels; value < end * Channels; ++value) {
        if (position == AllChannels || value % Channels == position)
            Values[value] = 0;
    }
}

void SoundModel::Replace(uint32_t position, uint64_t start, uint64_t end, std::span<const int16_t> values)
{
    if (position == AllChannels) {
        Remove(start, end);
        Insert(start, values);
        return;
    }
    if (values.size() > end - start)
        Insert(end, std::vector<int16_t>((values.size() - (end - start)) * Channels));
    Clear(position, start, end);
    for (uint64_t i = 0; i < values.size(); ++i)
        Values[(start + i) * Channels + position] = values[i];
}

void SoundModel::Mix(uint32_t position, uint64_t start, std::span<const int16_t> values)
{
    const bool all = position == AllChannels;
    const uint64_t end = start + values.size() / (all ? Channels : 1);
    Values.resize(std::max<uint64_t>(Values.size(), end * Channels));
    for (uint64_t i = 0; i < values.size(); ++i) {
        int16_t& value = Values[all ? start * Channels + i : (start + i) * Channels + position];
        value = static_cast<int16_t>(std::clamp(value + values[i], -32768, 32767));
    }
}

PeakPair SoundModel::Extremes(uint32_t channel, uint64_t start, uint64_t end) const
{
    PeakPair extremes{32767, -32768};
    for (uint64_t value = start * Channels + channel; value < end * Channels; value += Channels) {
        extremes.Min = std::min(extremes.Min, Values[value]);
        extremes.Max = std::max(extremes.Max, Values[value]);
    }
    return extremes;
}

std::vector<int16_t> ReadFrames(CWaveData& store, uint64_t start, uint64_t end)
{
    std::vector<int16_t> values((end - start) * store.BlockAlign() / 2);
    if (!store.ReadData(values.data(), start * store.BlockAlign(), values.size() * 2))
        values.clear();
    return values;
}

std::vector<int16_t> ReadAll(CWaveData& store)
{
    return ReadFrames(store, 0, store.FrameCount());
}

void ExpectSameSound(CWaveData& store, const SoundModel& model)
{
    ASSERT_EQ(store.FrameCount(), model.FrameCount());
    ASSERT_TRUE(ReadAll(store) == model.Values);
    uint64_t end = 0;
    for (const TempFileEntry& entry : store.TempFiles()) {
        ASSERT_EQ(entry.Start, end);
        end += entry.Length;
    }
    ASSERT_EQ(end, store.ByteLength());
}

void ExpectSamePeaks(const CWaveData& store, const SoundModel& model)
{
    constexpr uint64_t Block = PeakCache::BlockFrames;
    const uint64_t blocks = (model.FrameCount() + Block - 1) / Block;
    for (uint32_t channel = 0; channel < model.Channels; ++channel) {
        const std::span<const PeakPair> entries = store.Peaks().Entries(channel);
        ASSERT_GE(entries.size(), blocks);
        for (uint64_t block = 0; block < blocks; ++block)
            ASSERT_EQ(entries[block],
                      model.Extremes(channel, block * Block, std::min((block + 1) * Block, model.FrameCount())))
                << "block " << block << " of channel " << channel;
        const PeakPair all = model.Extremes(channel, 0, model.FrameCount());
        ASSERT_EQ(store.Peaks().Extremes(channel, 0, blocks), all);
    }
}

} // namespace ek
