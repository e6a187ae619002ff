// SPDX-License-Identifier: GPL-3.0-or-later
#include "storage/ColumnCache.h"
#include "StoreTest.h"

#include <algorithm>
#include <functional>
#include <random>

namespace ek {
namespace {

constexpr uint64_t Frames = 70000;

class ColumnsTest : public StoreTest {
protected:
    void SetUp() override
    {
        m_model = {2, MakeNoise(9, 2 * Frames)};
        Fill(m_store, m_model);
        m_columns.SetChannelCount(2);
    }

    void ExpectColumns(uint64_t firstFrame, uint32_t framesPerColumn, uint32_t width)
    {
        const uint64_t start = (firstFrame + framesPerColumn / 2) / framesPerColumn * framesPerColumn;
        // Coarse columns know whole blocks only.
        const uint64_t length = framesPerColumn >= 256 ? Frames / 256 * 256 : Frames;
        const uint64_t end = std::min(length, start + uint64_t{framesPerColumn} * width);
        for (uint32_t channel = 0; channel < 2; ++channel) {
            std::vector<PeakPair> expected;
            for (uint64_t frame = start; frame < end; frame += framesPerColumn)
                expected.push_back(m_model.Extremes(channel, frame, std::min(frame + framesPerColumn, end)));
            ASSERT_TRUE(std::ranges::equal(m_columns.Columns(channel), expected))
                << firstFrame << " x " << framesPerColumn << ", " << width << " wide";
        }
    }

    SoundModel m_model;
    CWaveData m_store;
    ColumnCache m_columns;
};

TEST_F(ColumnsTest, AnyWalkOfScrollsZoomsAndWidthsShowsTheSound)
{
    std::mt19937 random(3);
    uint64_t frame = 0;
    uint32_t zoom = 4;
    uint32_t width = 300;
    for (int step = 0; step < 3000; ++step) {
        switch (random() % 8) {
        case 0:
            zoom = random() % 15;
            break;
        case 1:
            width = 1 + random() % 500;
            break;
        case 2:
            frame = random() % (Frames + 1000);
            break;
        default:
            const uint64_t distance = (random() % 400) << zoom;
            frame = random() % 2 != 0 ? std::min(frame + distance, Frames) : frame - std::min(frame, distance);
        }
        m_columns.Refresh(m_store, frame, 1U << zoom, width);
        ASSERT_NO_FATAL_FAILURE(ExpectColumns(frame, 1U << zoom, width));
    }
}

TEST_F(ColumnsTest, ScrollingReadsOnlyWhatComesIntoView)
{
    m_columns.Refresh(m_store, 1000, 1, 100);
    // From now on the store is silent, so every column that is read again would be, too.
    ASSERT_TRUE(m_store.ClearFrames(0, Frames, ChannelAll, "", false, nullptr));
    const auto kept = [this](size_t first, size_t count, uint64_t frame) {
        const auto columns = m_columns.Columns(0);
        for (size_t i = 0; i < columns.size(); ++i) {
            const bool old = i >= first && i < first + count;
            const int16_t value = old ? m_model.Values[(frame + i) * 2] : int16_t{0};
            ASSERT_EQ(columns[i], (PeakPair{value, value})) << i;
        }
    };
    m_columns.Refresh(m_store, 1010, 1, 100);
    kept(0, 90, 1010);
    m_columns.Refresh(m_store, 990, 1, 100);
    kept(20, 80, 990);
    m_columns.Invalidate();
    m_columns.Refresh(m_store, 990, 1, 100);
    kept(0, 0, 990);
}

TEST_F(ColumnsTest, AStoreWithoutSoundOrWithOtherChannelsHasNoColumns)
{
    CWaveData empty;
    empty.SetFormat(MakePcm16Format(44100, 2), nullptr);
    m_columns.Refresh(empty, 0, 1, 100);
    EXPECT_EQ(m_columns.ColumnCount(), 0U);
    m_columns.Refresh(empty, 0, 1024, 100);
    EXPECT_EQ(m_columns.ColumnCount(), 0U);
    m_columns.QueryPeaks(empty, 0, 100, 100, 0);
    EXPECT_EQ(m_columns.ColumnCount(), 0U);
    m_columns.SetChannelCount(9);
    m_columns.Refresh(m_store, 0, 1, 100);
    EXPECT_EQ(m_columns.ColumnCount(), 0U);
    m_columns.SetChannelCount(1);
    m_columns.Refresh(m_store, 0, 1, 100);
    EXPECT_EQ(m_columns.ColumnCount(), 0U);
}

/// Draws anew while a long operation goes on, as a window does that is resized.
class ResizedWindow final : public ProgressPresenter {
public:
    explicit ResizedWindow(std::function<void()> draw) : m_draw(std::move(draw)) { SetProgressPresenter(this); }
    ~ResizedWindow() { SetProgressPresenter(nullptr); }
    WorkResult Show(CProgressDlg& progress) override
    {
        m_draw();
        progress.Begin();
        const WorkResult result = progress.WaitResult();
        progress.End();
        return result;
    }

private:
    std::function<void()> m_draw;
};

TEST_F(ColumnsTest, CoarseColumnsStayAsTheyAreWhilePeaksAreComputed)
{
    m_columns.Refresh(m_store, 0, 512, 100);
    int drawn = 0;
    const ResizedWindow window([&] {
        m_columns.Refresh(m_store, 0, 512, 50);
        m_columns.QueryPeaks(m_store, 0, 512, 20, 0);
        ++drawn;
    });
    ASSERT_TRUE(m_store.BuildPeakCache());
    EXPECT_EQ(drawn, 1);
    EXPECT_EQ(m_columns.ColumnCount(), 100U);
    ExpectColumns(0, 512, 100);
    m_columns.Refresh(m_store, 0, 512, 50);
    ExpectColumns(0, 512, 50);
}

class LoopsTest : public StoreTest, public testing::WithParamInterface<uint32_t> {};

/// Points of a clip that repeats its sound, sample by sample.
TEST_P(LoopsTest, RepeatTheSoundFromTheOffsetOn)
{
    const uint32_t framesPerPoint = GetParam();
    SoundModel model{2, MakeNoise(4, 2 * 5 * 256)};
    CWaveData store;
    Fill(store, model);
    ColumnCache columns;
    columns.SetChannelCount(2);
    columns.QueryPeaks(store, 12345, framesPerPoint, 40, framesPerPoint + framesPerPoint / 2);
    ASSERT_EQ(columns.ColumnCount(), 40U);
    for (uint32_t point = 0; point < 40; ++point) {
        PeakPair expected{32767, -32768};
        for (uint32_t i = 0; i < framesPerPoint; ++i) {
            const uint64_t frame = (uint64_t{point + 1} * framesPerPoint + i) % model.FrameCount();
            Widen(expected, model.Extremes(1, frame, frame + 1));
        }
        ASSERT_EQ(columns.Columns(1)[point], expected) << point;
    }
}
INSTANTIATE_TEST_SUITE_P(Zooms, LoopsTest, testing::Values(1, 64, 100, 256, 512, 1024, 2048, 16384));

TEST_F(StoreTest, ALoopShorterThanOneBlockIsDrawnFromItsOneEntry)
{
    CWaveData store;
    Fill(store, {1, MakeRamp(100, -50)});
    ColumnCache columns;
    columns.SetChannelCount(1);
    columns.QueryPeaks(store, 0, 512, 3, 0);
    ASSERT_EQ(columns.ColumnCount(), 3U);
    EXPECT_EQ(columns.Columns(0)[2], (PeakPair{-50, 49}));
}

} // namespace
} // namespace ek
