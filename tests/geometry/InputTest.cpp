// SPDX-License-Identifier: GPL-3.0-or-later
#include "waveview/OverviewStrip.h"
#include "waveview/ScrollScale.h"
#include "waveview/WheelAccumulator.h"

#include <gtest/gtest.h>

namespace ek {
namespace {

constexpr OverviewStrip Strip{{0, 0, 1028, 16}, 28};

WaveGeometry Shown(uint64_t first)
{
    WaveGeometry geometry;
    geometry.Length = 100'000;
    geometry.WavePanelLeft = 28;
    geometry.WavePanelWidth = 1000;
    geometry.FramesPerPixel = 10;
    geometry.FirstVisibleFrame = first;
    return geometry;
}

TEST(OverviewStrip, MapsTheSoundToTheStripRightOfTheInset)
{
    const WaveGeometry geometry = Shown(50'000);
    EXPECT_EQ(Strip.VisibleBox(geometry), (std::pair<int64_t, int64_t>{528, 628}));
    EXPECT_TRUE(Strip.IsInBox(geometry, 528, 3));
    EXPECT_TRUE(Strip.IsInBox(geometry, 628, 3));
    EXPECT_FALSE(Strip.IsInBox(geometry, 629, 3));
    EXPECT_FALSE(Strip.IsInBox(geometry, 600, 16));
    EXPECT_EQ(Strip.FrameAt(1028, 100'000), 100'000u);
    EXPECT_EQ(Strip.FrameAt(27, 100'000), std::nullopt); // left of the data
    EXPECT_EQ(Strip.VisibleBox(Shown(90'000)).second, 28 + 1000 * 99'999 / 100'000);
}

TEST(OverviewStrip, DraggingTheBoxScrollsWithinTheSound)
{
    WaveGeometry geometry = Shown(50'000);
    geometry.FollowPlayback = true;
    Strip.DragBox(geometry, 50'000, 600, 600 + 257); // a quarter of the strip
    EXPECT_EQ(geometry.FirstVisibleFrame, 75'000u);
    EXPECT_FALSE(geometry.FollowPlayback);
    Strip.DragBox(geometry, 50'000, 600, 5000);
    EXPECT_EQ(geometry.FirstVisibleFrame, 90'000u);
    Strip.DragBox(geometry, 50'000, 600, -5000);
    EXPECT_EQ(geometry.FirstVisibleFrame, 0u);
}

TEST(WheelAccumulator, FractionsOfANotchAddUp)
{
    WheelAccumulator wheel;
    int64_t steps = 0;
    for (int i = 0; i < 24; ++i)
        steps += wheel.Take(-15) + wheel.Take(0); // the pauses take nothing away
    EXPECT_EQ(steps, -3);
    EXPECT_EQ(wheel.Take(100), 0);
    EXPECT_EQ(wheel.Take(-30), 0); // the direction changed: the fraction is gone
    EXPECT_EQ(wheel.Take(-90), -1);
    EXPECT_EQ(wheel.Take(1, 285), 2); // 285 steps a notch
    EXPECT_EQ(wheel.Take(119, 285), 285 - 2);
}

TEST(ScrollScale, SmallRangesAreExactAndLargeOnesReachBothEnds)
{
    const ScrollScale small = ScrollScale::For(1'000'000'000);
    EXPECT_EQ(small.Shift, 0);
    EXPECT_EQ(small.FromBar(small.ToBar(123'456'789)), 123'456'789u);

    const uint64_t last = (uint64_t{1} << 45) + 12'345;
    const ScrollScale large = ScrollScale::For(last);
    EXPECT_GT(large.Maximum(), 1 << 28);
    EXPECT_EQ(large.FromBar(0), 0u);
    EXPECT_EQ(large.FromBar(large.Maximum()), last);
    EXPECT_LT(large.FromBar(large.Maximum() - 1), last);
    EXPECT_EQ(large.StepToBar(1), 1);
}

} // namespace
} // namespace ek
