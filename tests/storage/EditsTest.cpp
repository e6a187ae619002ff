// SPDX-License-Identifier: GPL-3.0-or-later
#include "StoreTest.h"
#include "support/FaultyFileCalls.h"

#include <cerrno>

namespace ek {
namespace {

class EditsTest : public StoreTest {
protected:
    void SetUp() override
    {
        m_model = {2, MakeNoise(1, 40000)};
        Fill(m_store, m_model);
        m_mono = MakeOneChannelFormat(m_store.WorkingFormat());
    }

    SoundModel m_model;
    CWaveData m_store;
    WAVEFORMATEXTENSIBLE m_mono;
};

TEST_F(EditsTest, DeletingInOneChannelTouchesItsPeaksOnly)
{
    const std::vector<PeakPair> left(m_store.Peaks().Entries(0).begin(), m_store.Peaks().Entries(0).end());
    ASSERT_TRUE(m_store.DeleteFrames(1000, 9000, ChannelRight, "", nullptr));
    EXPECT_EQ(m_store.FrameCount(), 20000U);
    EXPECT_TRUE(std::ranges::equal(m_store.Peaks().Entries(0), left));
    EXPECT_EQ(m_store.Peaks().Entries(1)[10], PeakPair());
}

TEST_F(EditsTest, ALongerBlockForOneChannelKeepsTheOtherInItsPlace)
{
    // Over a border of files, where room is cheapest to make inside the range that is replaced.
    ASSERT_TRUE(m_store.InsertSpace(8000, 8000, 400));
    m_model.Insert(2000, std::vector<int16_t>(200));
    std::vector<int16_t> block = MakeRamp(3000);
    uint64_t end = 4000;
    ASSERT_EQ(m_store.ReplaceFrames(1500, end, BlockOf(block, m_mono, ChannelLeft), ChannelLeft, true, ""),
              WorkResult::Finished);
    m_model.Replace(0, 1500, 4000, block);
    EXPECT_EQ(end, 4500U);
    ExpectSameSound(m_store, m_model);
}

TEST_F(EditsTest, UndoBlocksTakeWhatFitsFromTheirFillPositionOn)
{
    std::vector<int16_t> saved(10000, 5);
    SoundBuffer undo = BlockOf(saved, m_mono, ChannelRight);
    undo.FillPosition = 2000;
    ASSERT_TRUE(m_store.ClearFrames(100, 10000, ChannelRight, "", true, &undo));
    EXPECT_EQ(undo.FillPosition, 10000U);
    EXPECT_EQ(saved[1999], 5);
    EXPECT_TRUE(std::ranges::equal(std::span(saved).subspan(2000), m_model.Channel(1, 100, 8100)));
}

TEST_F(EditsTest, ABlockMixedInBeyondTheEndIsHeardAsItIs)
{
    std::vector<int16_t> block(2 * 5000, 30000);
    std::vector<int16_t> saved(2 * 1000);
    SoundBuffer undo = BlockOf(saved, m_store.WorkingFormat());
    ASSERT_EQ(m_store.MixFrames(&undo, 19000, BlockOf(block, m_store.WorkingFormat()), ChannelAll, true, ""),
              WorkResult::Finished);
    EXPECT_TRUE(std::ranges::equal(saved, m_model.Frames(19000, 20000)));
    m_model.Mix(SoundModel::AllChannels, 19000, block);
    ExpectSameSound(m_store, m_model);
    ExpectSamePeaks(m_store, m_model);
    EXPECT_EQ(m_store.SampleAt(2 * 23999), 30000);
}

TEST_F(EditsTest, AMixThatGrowsOneChannelRenewsThePeaksOfAll)
{
    CWaveData store;
    SoundModel model{2, std::vector<int16_t>(2 * 5000, 700)};
    Fill(store, model);
    ASSERT_TRUE(store.DeleteFrames(3000, 5000, ChannelAll, "", nullptr)); // entries beyond the end stay behind
    model.Remove(3000, 5000);
    std::vector<int16_t> block(2000, 100);
    ASSERT_EQ(store.MixFrames(nullptr, 2000, BlockOf(block, m_mono, ChannelLeft), ChannelLeft, true, ""),
              WorkResult::Finished);
    model.Mix(0, 2000, block);
    ExpectSameSound(store, model);
    ExpectSamePeaks(store, model);
}

TEST_F(EditsTest, AnEditWithoutRoomOnTheDiskFailsAndChangesNothing)
{
    std::vector<int16_t> block = MakeRamp(2 * 30000);
    const SoundBuffer source = BlockOf(block, m_store.WorkingFormat());
    uint64_t end = 10;
    FaultyFileCalls calls(".eke", FaultyFileCalls::Allocations);
    calls.FailFrom(1, ENOSPC);
    EXPECT_EQ(m_store.ReplaceFrames(0, end, source, ChannelAll, true, ""), WorkResult::Failed);
    EXPECT_EQ(m_store.MixFrames(nullptr, 0, source, ChannelAll, true, ""), WorkResult::Failed);
    EXPECT_EQ(end, 10U);
    ExpectSameSound(m_store, m_model);
    ExpectSamePeaks(m_store, m_model);
}

TEST_F(EditsTest, ASoundIsBuiltFromNothingByReplacing)
{
    CWaveData store;
    store.SetFormat(MakePcm16Format(48000, 2), nullptr);
    std::vector<int16_t> block = MakeNoise(2, 2000);
    uint64_t end = 0;
    ASSERT_EQ(store.ReplaceFrames(0, end, BlockOf(block, store.WorkingFormat()), ChannelAll, true, ""),
              WorkResult::Finished);
    ExpectSameSound(store, {2, block});
    ExpectSamePeaks(store, {2, block});
}

} // namespace
} // namespace ek
