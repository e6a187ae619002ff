// SPDX-License-Identifier: GPL-3.0-or-later
#include "waveview/LaneDrawing.h"

#include <gtest/gtest.h>

#include <cmath>

namespace ek {
namespace {

// 65536 rows for the whole range: a sample value is a number of rows.
constexpr LaneScale OneRowPerValue{1000, 65536};

ColumnRuns RunsOf(const std::vector<PeakPair>& columns, int clipTop = 0, int clipBottom = 2000)
{
    ColumnRuns runs;
    runs.Compute(columns, 0, columns.size(), OneRowPerValue, clipTop, clipBottom);
    return runs;
}

TEST(LaneScale, FullScaleLiesTheMarginInsideTheLane)
{
    const LaneScale scale = LaneScale::Of({0, 100, 50, 310}, 5, 0, 100);
    EXPECT_EQ(scale, (LaneScale{205, 200}));
    EXPECT_EQ(scale.UpperFullScaleY(), 105);
    EXPECT_EQ(scale.LowerFullScaleY(), 305);
    EXPECT_EQ(LaneScale::Of({0, 100, 50, 310}, 5, -7, 40), (LaneScale{198, 500}));
    EXPECT_EQ(LaneScale::Of({0, 0, 50, 9}, 5, 0, 3).Span, 0);
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

TEST(ColumnRuns, AColumnCoversItsValuesFromMinimumToMaximum)
{
    const ColumnRuns runs = RunsOf({{-20, 30}});
    EXPECT_EQ(runs.Top(0), 970);
    EXPECT_EQ(runs.Bottom(0), 1021);
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
    // The first stroke ends at row 900, the second begins at row 1100: the line between them lengthens both, even
    // though the columns overlap already.
    const ColumnRuns runs = RunsOf({{-50, 100}, {-100, 50}});
    EXPECT_EQ(runs.Top(0), 900);
    EXPECT_EQ(runs.Bottom(0), 1051);
    EXPECT_EQ(runs.Top(1), 950);
    EXPECT_EQ(runs.Bottom(1), 1101);
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

TEST(ColumnRuns, APartOfTheColumnsIsDrawnLikeTheWhole)
{
    std::vector<PeakPair> columns;
    for (int i = 0; i < 60; ++i)
        columns.push_back({static_cast<int16_t>(-7 * i % 50), static_cast<int16_t>(13 * i % 70)});
    const ColumnRuns whole = RunsOf(columns);
    ColumnRuns part;
    part.Compute(columns, 20, 41, OneRowPerValue, 0, 2000);
    ASSERT_EQ(part.Count(), 21u);
    for (size_t i = 0; i < part.Count(); ++i) {
        EXPECT_EQ(part.Top(i), whole.Top(20 + i));
        EXPECT_EQ(part.Bottom(i), whole.Bottom(20 + i));
    }
}

TEST(ColumnRuns, AreClippedToTheRowsAskedFor)
{
    const ColumnRuns runs = RunsOf({{-500, 500}, {300, 300}}, 990, 1010);
    EXPECT_EQ(runs.Top(0), 990);
    EXPECT_EQ(runs.Bottom(0), 1010);
    EXPECT_EQ(runs.Top(1), runs.Bottom(1));
}

// A lane of 30 rows: full scale spans 20, so that the lines lie in rows 5, 15 and 25.
constexpr Rect SmallLane{10, 0, 14, 30};

std::vector<uint32_t> ColumnOf(const LanePicture& picture, const Rect& area, int column)
{
    const LaneRaster raster(picture, area);
    std::vector<uint32_t> row(static_cast<size_t>(area.Width()));
    std::vector<uint32_t> result;
    for (int y = area.Top; y < area.Bottom; ++y) {
        raster.PaintRow(y, row.data());
        result.push_back(row[static_cast<size_t>(column)]);
    }
    return result;
}

TEST(LaneRaster, PaintsLinesOverTheWaveformOverTheBackground)
{
    const std::vector<PeakPair> columns(4, {-16384, 32767});
    const LanePicture picture{.Lane = SmallLane, .Columns = columns, .Colors = {7, 8, 9}, .Margin = 5};
    const auto pixels = ColumnOf(picture, SmallLane, 1);
    for (int y = 0; y < 30; ++y) {
        const bool isLine = y == 5 || y == 15 || y == 25;
        const uint32_t expected = isLine ? 8 : y > 5 && y <= 20 ? 7 : 9;
        EXPECT_EQ(pixels[static_cast<size_t>(y)], expected) << y;
    }
}

TEST(LaneRaster, InvertsTheSelectedColumns)
{
    const std::vector<PeakPair> columns(4);
    LanePicture picture{.Lane = SmallLane,
                        .Columns = columns,
                        .Colors = {0xFF000007, 0xFF123456, 0xFFFFFF00},
                        .Margin = 5,
                        .SelectionLeft = -1000,
                        .SelectionRight = 12};
    const Rect area{11, 0, 14, 30};
    EXPECT_EQ(ColumnOf(picture, area, 0)[0], 0xFF0000FFu);
    EXPECT_EQ(ColumnOf(picture, area, 0)[15], 0xFFEDCBA9u);
    EXPECT_EQ(ColumnOf(picture, area, 1)[0], 0xFFFFFF00u);
    picture.SelectionLeft = picture.SelectionRight = 12;
    EXPECT_EQ(ColumnOf(picture, area, 1)[0], 0xFFFFFF00u);
}

TEST(LaneRaster, ALaneOfTwiceTheMarginShowsLinesButNoWaveform)
{
    const std::vector<PeakPair> columns(4, {-32768, 32767});
    const Rect low{10, 0, 14, 10};
    const auto pixels = ColumnOf({.Lane = low, .Columns = columns, .Colors = {7, 8, 9}, .Margin = 5}, low, 0);
    EXPECT_EQ(pixels, (std::vector<uint32_t>{9, 9, 9, 9, 9, 8, 9, 9, 9, 9}));
}

} // namespace
} // namespace ek
