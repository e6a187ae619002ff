// SPDX-License-Identifier: GPL-3.0-or-later
#include "waveview/WaveGeometry.h"

#include <gtest/gtest.h>

#include <bit>
#include <functional>
#include <random>

namespace ek {
namespace {

constexpr int Left = 28;

WaveGeometry Show(uint64_t length, int64_t width, uint64_t first = 0, uint32_t framesPerPixel = 1)
{
    WaveGeometry geometry;
    geometry.Length = length;
    geometry.WavePanelLeft = Left;
    geometry.WavePanelWidth = width;
    geometry.FirstVisibleFrame = first;
    geometry.FramesPerPixel = framesPerPixel;
    return geometry;
}

TEST(WaveGeometry, ConvertsFramesAndColumns)
{
    const WaveGeometry geometry = Show(100'000'000'000, 1000, 4096, 16);
    EXPECT_EQ(geometry.FrameToX(4096), Left);
    EXPECT_EQ(geometry.FrameToX(4096 + 31), Left + 1);
    EXPECT_EQ(geometry.FrameToX(4096 - 15), Left); // rounded toward the edge from both sides
    EXPECT_EQ(geometry.FrameToX(4096 - 16), Left - 1);
    EXPECT_EQ(geometry.FrameToX(99'999'999'999), Left + (99'999'999'999 - 4096) / 16);
    EXPECT_EQ(geometry.XToFrame(Left + 3), 4096u + 48);
    EXPECT_EQ(geometry.XToFrame(Left - 300), 0u);
}

TEST(WaveGeometry, ZoomFullTakesTheNextPowerOfTwo)
{
    const struct {
        uint64_t Length;
        uint32_t FramesPerPixel;
    } cases[] = {{1, 1}, {999, 1}, {1000, 2}, {1999, 2}, {2000, 4}, {1'587'600'000, 2'097'152}};
    for (const auto& test : cases) {
        WaveGeometry geometry = Show(test.Length, 1000, test.Length / 2);
        geometry.ZoomFull();
        EXPECT_EQ(geometry.FramesPerPixel, test.FramesPerPixel) << test.Length;
        EXPECT_EQ(geometry.FirstVisibleFrame, 0u);
    }
    WaveGeometry oneColumn = Show(uint64_t{1} << 40, 1);
    oneColumn.ZoomFull();
    EXPECT_EQ(oneColumn.FramesPerPixel, WaveGeometry::MaxFramesPerPixel);
}

TEST(WaveGeometry, ZoomingStopsAtOneFramePerPixelAndOneStepAfterTheWholeSoundFits)
{
    WaveGeometry geometry = Show(4000, 1000, 0, 2);
    geometry.ZoomBySteps(-5, std::nullopt);
    EXPECT_EQ(geometry.FramesPerPixel, 1u);
    EXPECT_FALSE(geometry.CanZoomIn());
    geometry.ZoomBySteps(10, std::nullopt);
    EXPECT_EQ(geometry.FramesPerPixel, 8u); // at 4 the span equals the length, which allows one more step
    EXPECT_FALSE(geometry.CanZoomOut());
    EXPECT_FALSE(Show(999, 1000).CanZoomOut());
}

TEST(WaveGeometry, TheFrameUnderTheAnchorStaysWhereItIs)
{
    for (const int64_t x : {Left + 0, Left + 137, Left + 500, Left + 999}) {
        WaveGeometry geometry = Show(10'000'000, 1000, 1'024'000, 256);
        const auto before = static_cast<double>(geometry.XToFrame(x));
        geometry.ZoomBySteps(-4, x);
        EXPECT_EQ(geometry.FramesPerPixel, 16u);
        EXPECT_NEAR(static_cast<double>(geometry.XToFrame(x)), before, 256.0 + 16) << x;
        geometry.ZoomBySteps(4, x);
        EXPECT_NEAR(static_cast<double>(geometry.XToFrame(x)), before, 3 * 256.0) << x;
    }
}

TEST(WaveGeometry, ZoomingWithAnAnchorStaysInsideTheSound)
{
    WaveGeometry atStart = Show(1'000'000, 1000, 0, 64);
    atStart.ZoomBySteps(1, Left + 900);
    EXPECT_EQ(atStart.FirstVisibleFrame, 0u);
    atStart.ZoomBySteps(-1, 3); // left of the panel
    EXPECT_EQ(atStart.FirstVisibleFrame, 0u);

    WaveGeometry atEnd = Show(1'000'000, 1000, 936'000, 64);
    atEnd.ZoomBySteps(-1, Left + 5000);
    EXPECT_EQ(atEnd.FirstVisibleFrame, 968'000u);
}

TEST(WaveGeometry, FitSelectionCentresTheSelection)
{
    WaveGeometry geometry = Show(1'000'000, 1000);
    geometry.SelectionStart = 500'000;
    geometry.SelectionEnd = 506'000; // 6 frames per pixel, so 8
    geometry.FitSelection();
    EXPECT_EQ(geometry.FramesPerPixel, 8u);
    EXPECT_EQ(geometry.FirstVisibleFrame, (500'000u - 1000) / 8 * 8);

    geometry.SelectionStart = 999'990; // dragged from right to left, at the end of the sound
    geometry.SelectionEnd = 999'500;
    geometry.FitSelection();
    EXPECT_EQ(geometry.FramesPerPixel, 1u);
    EXPECT_EQ(geometry.FirstVisibleFrame, 1'000'000u - 1000 - 1);
}

TEST(WaveGeometry, AShorterSoundTakesSelectionAndCursorToItsEnd)
{
    WaveGeometry geometry = Show(1000, 100);
    geometry.SelectionStart = 400;
    geometry.SelectionEnd = 900;
    geometry.SetLength(600);
    EXPECT_EQ(geometry.OrderedSelection(), std::pair(uint64_t{400}, uint64_t{600}));
    EXPECT_EQ(geometry.CursorFrame, WaveGeometry::NoFrame);
    geometry.CursorFrame = 500;
    geometry.SetLength(300);
    EXPECT_FALSE(geometry.HasSelection());
    EXPECT_EQ(geometry.CursorFrame, 300u);
}

TEST(WaveGeometry, ADraggedSelectionReachesTheLastFrameAndNoFurther)
{
    WaveGeometry geometry = Show(1001, 1000, 0, 1);
    geometry.BeginSelection(Left + 10);
    geometry.DragSelection(Left + 5000);
    EXPECT_EQ(geometry.SelectionEnd, 1000u) << "the panel's edge";
    geometry.FirstVisibleFrame = 1;
    geometry.DragSelection(Left + 5000);
    EXPECT_EQ(geometry.SelectionEnd, 1001u);
    geometry.DragSelection(-5000);
    EXPECT_EQ(geometry.SelectionEnd, 1u);
    geometry.OrderSelection();
    EXPECT_EQ(geometry.OrderedSelection(), std::pair(geometry.SelectionStart, geometry.SelectionEnd));
    EXPECT_EQ(geometry.CursorFrame, 1u);
    geometry.ExtendSelection(Left + 2);
    EXPECT_EQ(geometry.SelectionStart, 10u) << "the nearer end has moved";
    EXPECT_EQ(geometry.SelectionEnd, 3u);
}

TEST(WaveGeometry, NothingMovesWithoutSoundOrRoom)
{
    for (WaveGeometry geometry : {Show(0, 1000, 0, 4), Show(1000, 0, 0, 4)}) {
        geometry.ZoomFull();
        geometry.ZoomBySteps(-1, std::nullopt);
        geometry.SetZoomRatio(64);
        geometry.ScrollBy(10);
        EXPECT_FALSE(geometry.AutoScroll(Left - 1).has_value());
        EXPECT_EQ(geometry.FramesPerPixel, 4u);
        EXPECT_EQ(geometry.FirstVisibleFrame, 0u);
    }
}

TEST(WaveGeometry, CursorIsBroughtToTheMiddleExceptAtOneToOne)
{
    WaveGeometry coarse = Show(1'000'000, 1000, 0, 16);
    coarse.CursorFrame = 320'000;
    EXPECT_TRUE(coarse.EnsureCursorVisible(false));
    EXPECT_EQ(coarse.FirstVisibleFrame, 320'000u - 8 * 1000);
    EXPECT_FALSE(coarse.EnsureCursorVisible(false));
    coarse.CursorFrame = coarse.FirstVisibleFrame + 15'999;
    EXPECT_FALSE(coarse.EnsureCursorVisible(false)); // visible, but not in the left half
    EXPECT_TRUE(coarse.EnsureCursorVisible(true));

    WaveGeometry fine = Show(1'000'000, 1000);
    fine.CursorFrame = 70'000;
    EXPECT_TRUE(fine.EnsureCursorVisible(false));
    EXPECT_EQ(fine.FirstVisibleFrame, 70'000u);
    fine.CursorFrame = 999'999;
    EXPECT_TRUE(fine.EnsureCursorVisible(false));
    EXPECT_EQ(fine.FirstVisibleFrame, 999'000u);

    WaveGeometry fitting = Show(500, 1000);
    fitting.CursorFrame = 400;
    EXPECT_FALSE(fitting.EnsureCursorVisible(true));
}

TEST(WaveGeometry, FollowingStartsWhenTheCursorPassesTheMiddle)
{
    const struct {
        uint64_t OldCursor;
        uint64_t NewCursor;
        bool Follows;
    } cases[] = {{0, 449, false}, {440, 450, true}, {550, 560, true}, {551, 560, false}, {0, 999, true}};
    for (const auto& test : cases) {
        WaveGeometry geometry = Show(100'000, 1000);
        geometry.TrackPlayback(test.OldCursor, test.NewCursor);
        EXPECT_EQ(geometry.FollowPlayback, test.Follows) << test.OldCursor << " to " << test.NewCursor;
    }
}

class RandomWalk {
public:
    explicit RandomWalk(uint64_t seed) : m_random(seed) {}

    uint64_t Below(uint64_t end) { return m_random() % end; }

    void Step(WaveGeometry& geometry)
    {
        const int64_t x = static_cast<int64_t>(Below(5000)) - 200;
        const std::function<void()> moves[] = {
            [&] { geometry.ZoomBySteps(static_cast<int>(Below(9)) - 4, x); },
            [&] { geometry.ZoomBySteps(static_cast<int>(Below(3)) - 1, std::nullopt); },
            [&] { geometry.SetZoomRatio(uint32_t{1} << Below(20)); },
            [&] { geometry.ScrollBy(static_cast<int64_t>(Below(20'000)) - 10'000); },
            [&] { geometry.AutoScroll(x); },
            [&] { geometry.EnsureCursorVisible(Below(2) == 0); },
            [&] { geometry.FitSelection(); },
            [&] { geometry.ZoomFull(); },
            [&] {
                geometry.WavePanelWidth = static_cast<int64_t>(1 + Below(4000));
                geometry.Align();
            },
        };
        geometry.CursorFrame = Below(geometry.Length + 1);
        geometry.SelectionStart = Below(geometry.Length + 1);
        geometry.SelectionEnd = Below(geometry.Length + 1);
        moves[Below(std::size(moves))]();
    }

private:
    std::mt19937_64 m_random;
};

TEST(WaveGeometry, AfterAnyMoveThePositionIsAWholeColumnInsideTheSound)
{
    RandomWalk walk(2025);
    for (int sound = 0; sound < 50; ++sound) {
        const uint64_t length = 1 + walk.Below(uint64_t{1} << (1 + walk.Below(41)));
        WaveGeometry geometry = Show(length, static_cast<int64_t>(1 + walk.Below(4000)));
        for (int step = 0; step < 400; ++step) {
            walk.Step(geometry);
            ASSERT_TRUE(std::has_single_bit(geometry.FramesPerPixel));
            ASSERT_EQ(geometry.FirstVisibleFrame % geometry.FramesPerPixel, 0u);
            ASSERT_LE(geometry.Position(), geometry.MaxPosition());
            ASSERT_LT(geometry.FirstVisibleFrame, length);
        }
    }
}

} // namespace
} // namespace ek
