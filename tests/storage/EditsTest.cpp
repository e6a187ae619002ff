// SPDX-License-Identifier: GPL-3.0-or-later
#include "StoreTest.h"

#include <algorithm>

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
    LoggedTexts();
    ASSERT_EQ(m_store.MixFrames(&undo, 19000, BlockOf(block, m_store.WorkingFormat()), ChannelAll, true, ""),
              WorkResult::Finished);
    EXPECT_TRUE(std::ranges::equal(saved, m_model.Frames(19000, 20000)));
    m_model.Mix(SoundModel::AllChannels, 19000, block);
    ExpectSameSound(m_store, m_model);
    ExpectSamePeaks(m_store, m_model);
    EXPECT_EQ(m_store.SampleAt(2 * 23999), 30000);
    const std::vector<std::string> texts = LoggedTexts();
    EXPECT_TRUE(std::ranges::none_of(texts, [](const std::string& text) { return text.starts_with("Error"); }));
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

} // namespace
} // namespace ek
