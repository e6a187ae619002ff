// SPDX-License-Identifier: GPL-3.0-or-later
#include "StoreTest.h"
#include "support/FaultyFileCalls.h"

#include <array>
#include <random>

namespace ek {
namespace {

constexpr uint64_t PageFrames = CWaveData::PageSize / 4;

class PeakTailsTest : public StoreTest {
protected:
    void MakeSound(uint64_t frames)
    {
        m_model = {2, MakeNoise(1, 2 * frames)};
        Fill(m_store, m_model);
    }

    void Replace(uint64_t start, uint64_t end, std::vector<int16_t> frames)
    {
        m_model.Replace(SoundModel::AllChannels, start, end, frames);
        ASSERT_EQ(m_store.ReplaceFrames(start, end, BlockOf(frames, m_store.WorkingFormat()), ChannelAll, false, ""),
                  WorkResult::Finished);
        ExpectSamePeaks(m_store, m_model);
    }

    /// How often the files are read while a range is replaced.
    uint64_t Reads(uint64_t start, uint64_t end, const std::vector<int16_t>& frames)
    {
        const uint64_t before = m_calls.CallCount();
        Replace(start, end, frames);
        return m_calls.CallCount() - before;
    }

    FaultyFileCalls m_calls{".eke", FaultyFileCalls::Reads};
    SoundModel m_model;
    CWaveData m_store;
};

TEST_F(PeakTailsTest, AnEditThatIsTakenBackOrDoneAgainFindsThePeaksBehindIt)
{
    MakeSound(8 * PageFrames);
    const std::span<const int16_t> range = m_model.Frames(1000, 11000);
    const std::vector<int16_t> old(range.begin(), range.end());
    const uint64_t all = Reads(1000, 11000, {});
    EXPECT_LT(Reads(1000, 1000, old), all / 4);
    EXPECT_LT(Reads(1000, 11000, {}), all / 4);
    // Further edits before it, taken back in their turn.
    Replace(500, 500, MakeNoise(4, 2 * 77));
    EXPECT_LT(Reads(500, 577, {}), all / 4);
    EXPECT_LT(Reads(1000, 1000, old), all / 4);
}

TEST_F(PeakTailsTest, WholeBlocksMoveTheEntriesBehindThem)
{
    MakeSound(8 * PageFrames);
    const uint64_t all = Reads(3000, 3001, {});
    EXPECT_LT(Reads(1000, 1000 + 256, {}), all / 4);
    EXPECT_LT(Reads(5000, 5001, MakeNoise(5, 2 * 1025)), all / 4);
}

TEST_F(PeakTailsTest, WhatChangedMeanwhileIsComputed)
{
    MakeSound(40000);
    const std::span<const int16_t> range = m_model.Frames(1000, 1100);
    const std::vector<int16_t> old(range.begin(), range.end());
    Replace(1000, 1100, {});
    const std::vector<int16_t> loud(200, 32000);
    m_model.Write(30000, loud);
    ASSERT_TRUE(m_store.WriteData(loud.data(), 30000 * 4, 400));
    ASSERT_TRUE(m_store.RebuildPeakCachePart(30000, 100, 100, ChannelAll));
    ASSERT_TRUE(m_store.ClearFrames(35000, 10, ChannelLeft, "", false, nullptr));
    m_model.Clear(0, 35000, 35010);
    ASSERT_TRUE(m_store.RebuildPeakCachePart(35000, 10, 10, ChannelLeft));
    Replace(1000, 1000, old);
}

TEST_F(PeakTailsTest, AnyOrderOfEditsOfFewLengthsGivesTheRightEntries)
{
    constexpr std::array<uint64_t, 6> Lengths = {0, 1, 100, 256, 356, 1000};
    std::mt19937 random(3);
    MakeSound(30000);
    for (int step = 0; step < 1500 && !HasFatalFailure(); ++step) {
        SCOPED_TRACE(step);
        const uint64_t start = random() % (m_model.FrameCount() + 1);
        const uint64_t end = std::min(m_model.FrameCount(), start + Lengths[random() % Lengths.size()]);
        Replace(start, end, MakeNoise(random(), 2 * Lengths[random() % Lengths.size()]));
    }
}

TEST_F(StoreTest, KeptEntriesTakeABoundedAmountOfMemory)
{
    constexpr uint64_t Frames = 3 * (PeakTails::LargestMemory / sizeof(PeakPair)) * PeakCache::BlockFrames / 2;
    PeakCache peaks;
    PeakTails tails;
    peaks.Alloc(Frames + 1, 1);
    const int16_t sample = 5;
    peaks.Enter(&sample, Frames, 1);
    tails.OnRenewed(Frames + 1);
    tails.OnChange(Frames);
    EXPECT_EQ(tails.Restore(peaks, Frames), Frames);
    tails.OnRenewed(Frames);
    const int16_t other = 9;
    peaks.Enter(&other, Frames, 1);
    // Only the last part of it was kept, and that is right.
    const uint64_t known = tails.Restore(peaks, Frames + 1);
    EXPECT_EQ(known, Frames + 256 - PeakTails::LargestMemory / sizeof(PeakPair) * PeakCache::BlockFrames);
    EXPECT_EQ(peaks.Entries(0)[Frames / PeakCache::BlockFrames], (PeakPair{5, 5}));
}

} // namespace
} // namespace ek
