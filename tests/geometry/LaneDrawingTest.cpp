// SPDX-License-Identifier: GPL-3.0-or-later
#include "waveview/LaneDrawing.h"

#include <gtest/gtest.h>

#include <cmath>

namespace ek {
namespace {

// 65536 rows for the whole range: a sample value is a number of rows.
constexpr LaneScale OneRowPerValue{1000, 65536};

ColumnRuns RunsOf(const std::vector<PeakPair>& columns)
{
    ColumnRuns runs;
    runs.Compute(columns, 0, columns.size(), OneRowPerValue, 0, 2000);
    return runs;
}

TEST(LaneScale, MapsSamplesWithAWholeDivisorRoundedTowardTheZeroLine)
{
    const LaneScale scale{205, 200}; // divisor 327
    EXPECT_EQ(scale.YOf(0), 205);
    EXPECT_EQ(scale.YOf(326), 205);
    EXPECT_EQ(scale.YOf(327), 204);
    EXPECT_EQ(scale.YOf(-326), 205);
    EXPECT_EQ(scale.YOf(32767), 205 - 100);
    EXPECT_EQ(scale.YOf(-32768), 205 + 100);
}

TEST(LaneScale, LanesTallerThanTheRangeOfSamplesAreMultiplied)
{
    const LaneScale scale{0, 3 * 65536 / 2};
    EXPECT_EQ(scale.YOf(100), -150);
    EXPECT_EQ(scale.YOf(-32768), 3 * 65536 / 4);
}

TEST(ColumnRuns, NeighboursShareTheLineBetweenThemHalfAndHalf)
{
    // From row 1000 up to row 990: rows 1000 to 996 belong to the first column, 995 to 990 to the second.
    const ColumnRuns up = RunsOf({{0, 0}, {10, 10}});
    EXPECT_EQ(up.Top(0), 996);
    EXPECT_EQ(up.Bottom(0), 1001);
    EXPECT_EQ(up.Top(1), 990);
    EXPECT_EQ(up.Bottom(1), 996);
    // Down over an odd number of rows: 1000, 1001 and 1002, 1003.
    const ColumnRuns down = RunsOf({{0, 0}, {-3, -3}});
    EXPECT_EQ(down.Bottom(0), 1002);
    EXPECT_EQ(down.Top(1), 1002);
    EXPECT_EQ(down.Bottom(1), 1004);
}

TEST(ColumnRuns, ThePenLeavesAColumnAtItsMaximumAndEntersTheNextAtItsMinimum)
{
    // The line from row 900 to row 1300 lengthens both strokes to its middle.
    const ColumnRuns runs = RunsOf({{-50, 100}, {-300, -200}});
    EXPECT_EQ(runs.Top(0), 900);
    EXPECT_EQ(runs.Bottom(0), 1100);
    EXPECT_EQ(runs.Top(1), 1100);
    EXPECT_EQ(runs.Bottom(1), 1301);
}

TEST(ColumnRuns, OfASineNeighboursAlwaysTouch)
{
    std::vector<PeakPair> columns;
    for (int i = 0; i < 400; ++i) {
        const auto value = static_cast<int16_t>(std::lround(900 * std::sin(i * 0.3)));
        columns.push_back({value, value});
    }
    const ColumnRuns runs = RunsOf(columns);
    for (size_t i = 1; i < runs.Count(); ++i) {
        ASSERT_LE(runs.Top(i), runs.Bottom(i - 1)) << i;
        ASSERT_GE(runs.Bottom(i), runs.Top(i - 1)) << i;
        ASSERT_LE(runs.Top(i), OneRowPerValue.YOf(columns[i].Max));
        ASSERT_GT(runs.Bottom(i), OneRowPerValue.YOf(columns[i].Min));
    }
}

TEST(LaneRaster, ALaneOfTwiceTheMarginShowsLinesButNoWaveform)
{
    const std::vector<PeakPair> columns(1, {-32768, 32767});
    const Rect lane{10, 0, 11, 10};
    const LaneRaster raster({.Lane = lane, .Columns = columns, .Colors = {7, 8, 9}, .Margin = 5}, lane);
    for (int y = 0; y < 10; ++y) {
        uint32_t pixel = 0;
        raster.PaintRow(y, &pixel);
        EXPECT_EQ(pixel, y == 5 ? 8u : 9u) << y;
    }
}

} // namespace
} // namespace ek
