// SPDX-License-Identifier: GPL-3.0-or-later
#include "waveview/ViewLayout.h"

#include <gtest/gtest.h>

namespace ek {

namespace {

LayoutInput StereoWindow()
{
    return {.Client = {0, 0, 800, 600}, .ScrollBarWidth = 14, .ScrollBarHeight = 15, .ChannelCount = 2};
}

TEST(Layout, ExpandedOverviewAndStatusBarTakeTheirRowsFromTheLanes)
{
    EXPECT_EQ(ViewLayout::Compute(StereoWindow()).Wave, (Rect{28, 40, 786, 585}));
    LayoutInput input = StereoWindow();
    input.ChannelCount = 6;
    input.OverviewExpanded = true;
    input.StatusBarHeight = 20;
    const ViewLayout layout = ViewLayout::Compute(input);
    EXPECT_EQ(layout.Overview.Height(), 12 * 6 + 2);
    EXPECT_EQ(layout.Wave, (Rect{28, 74 + 24, 786, 565}));
    EXPECT_EQ(layout.HorizontalBar, (Rect{0, 565, 725, 580}));
    EXPECT_EQ(layout.ZoomLabel, (Rect{725, 565, 800, 580}));
    EXPECT_EQ(layout.VerticalBar, (Rect{786, 0, 800, 566}));
    EXPECT_EQ(layout.StatusBar, (Rect{0, 580, 800, 600}));
}

class LayoutAtScale : public testing::TestWithParam<double> {};

TEST_P(LayoutAtScale, TilesTheWindowWithoutGapOrOverlap)
{
    LayoutInput input = StereoWindow();
    input.Scale = GetParam();
    const ViewLayout layout = ViewLayout::Compute(input);
    EXPECT_EQ(layout.Overview.Height(), ScaledLength(16, input.Scale));
    EXPECT_EQ(layout.Tool.Width(), ScaledLength(28, input.Scale));
    EXPECT_EQ(layout.OverviewInset, layout.Wave.Left);
    const Rect parts[] = {layout.Overview, layout.Tool, layout.Time, layout.Marker, layout.Amplitude, layout.Wave};
    for (int y = 0; y < 585; ++y) {
        for (int x = 0; x < 786; x += 7)
            ASSERT_EQ(std::ranges::count_if(parts, [&](const Rect& part) { return part.Contains(x, y); }), 1)
                << x << ", " << y;
    }
}

INSTANTIATE_TEST_SUITE_P(Scales, LayoutAtScale, testing::Values(1.0, 1.25, 1.5, 1.75, 2.0, 3.0));

} // namespace
} // namespace ek
