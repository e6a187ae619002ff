// SPDX-License-Identifier: GPL-3.0-or-later
#include "StoreTest.h"

#include <algorithm>
#include <random>

namespace ek {
namespace {

class PeaksOfChannels : public testing::TestWithParam<uint32_t> {};
INSTANTIATE_TEST_SUITE_P(All, PeaksOfChannels, testing::Range(1U, MaxChannels + 1));

TEST_P(PeaksOfChannels, RunsOfAnyLengthGiveTheExtremesOfEveryBlock)
{
    const SoundModel model{GetParam(), MakeNoise(GetParam(), 40000 * GetParam())};
    PeakCache peaks;
    peaks.Alloc(model.FrameCount(), model.Channels);
    std::mt19937 random(5);
    for (uint64_t frame = 0; frame < model.FrameCount();) {
        const uint64_t count = std::min<uint64_t>(1 + random() % 1000, model.FrameCount() - frame);
        peaks.Enter(model.Frames(frame, frame + count).data(), frame, count);
        frame += count;
    }
    peaks.FinishCoarse(0, model.FrameCount());
    for (uint32_t channel = 0; channel < model.Channels; ++channel) {
        for (uint64_t first = 0; first < 156; first += 13) {
            for (uint64_t end = first + 1; end <= 157; end += 5)
                ASSERT_EQ(peaks.Extremes(channel, first, end),
                          model.Extremes(channel, first * 256, std::min<uint64_t>(end * 256, model.FrameCount())));
        }
    }
}

TEST(PeakCache, HasOneEntryForEveryStartedBlockAndOneMore)
{
    PeakCache peaks;
    peaks.Alloc(255, 2);
    EXPECT_EQ(peaks.ByteSize(), 4U);
    peaks.Grow(256);
    EXPECT_EQ(peaks.ByteSize(), 8U);
    peaks.Grow(1);
    EXPECT_EQ(peaks.ByteSize(), 8U);
    peaks.Alloc(0, 2);
    EXPECT_TRUE(peaks.IsEmpty());
    EXPECT_EQ(peaks.ByteSize(), 0U);
}

TEST(PeakCache, OneChannelIsEnteredWithoutTheOthers)
{
    const SoundModel model{3, MakeNoise(6, 3 * 700)};
    PeakCache peaks;
    peaks.Alloc(700, 3);
    peaks.Enter(model.Values.data(), 0, 700, 1);
    EXPECT_EQ(peaks.Entries(0)[1], PeakPair());
    EXPECT_EQ(peaks.Entries(1)[1], model.Extremes(1, 256, 512));
    EXPECT_EQ(peaks.Entries(2)[2], PeakPair());
    EXPECT_EQ(peaks.Extremes(1, 2, 2), (PeakPair{32767, -32768}));
}

TEST_F(StoreTest, AllPeaksOfALongSoundAreComputedAfterChangesThatAreStillInMemory)
{
    CWaveData store;
    SoundModel model{2, MakeNoise(7, 5 * CWaveData::PageSize / 4)};
    Fill(store, model);
    const int16_t loud[] = {32767, -32768};
    model.Write(12345, loud);
    ASSERT_TRUE(store.WriteData(loud, 12345 * 4, 4));
    ASSERT_TRUE(store.BuildPeakCache());
    ExpectSamePeaks(store, model);
    EXPECT_EQ(LoggedTexts().back(), "Creating cache256 for file \"\".");
}

} // namespace
} // namespace ek
