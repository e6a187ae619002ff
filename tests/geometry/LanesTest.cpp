// SPDX-License-Identifier: GPL-3.0-or-later
#include "waveview/Lanes.h"

#include <gtest/gtest.h>

namespace ek {
namespace {

constexpr int Top = 40;

Lanes Shown(uint32_t count, int height, uint32_t first = 0)
{
    return {{28, Top, 828, Top + height}, first, count};
}

TEST(Lanes, ShareTheHeightWithASeparatorAboveEachButTheFirst)
{
    const Lanes lanes = Shown(3, 302);
    EXPECT_EQ(lanes.Height(), 100);
    EXPECT_EQ(lanes.Lane(0), (Rect{28, Top, 828, Top + 100}));
    EXPECT_EQ(lanes.SeparatorAbove(1), Top + 100);
    EXPECT_EQ(lanes.Lane(1), (Rect{28, Top + 101, 828, Top + 200}));
    EXPECT_EQ(lanes.Lane(2), (Rect{28, Top + 201, 828, Top + 300}));
}

TEST(Lanes, OfTwoChannelsTheOuterQuartersDesignateOneChannel)
{
    const auto stereo = MakePcm16Format(44100, 2);
    const Lanes lanes = Shown(2, 400);
    EXPECT_EQ(lanes.ChannelAt(stereo, Top), ChannelLeft);
    EXPECT_EQ(lanes.ChannelAt(stereo, Top + 99), ChannelLeft);
    EXPECT_EQ(lanes.ChannelAt(stereo, Top + 100), ChannelAll);
    EXPECT_EQ(lanes.ChannelAt(stereo, Top + 300), ChannelAll);
    EXPECT_EQ(lanes.ChannelAt(stereo, Top + 301), ChannelRight);
}

TEST(Lanes, OfManyChannelsTheMiddleHalvesDesignateOneChannel)
{
    const auto format = MakePcm16Format(48000, 6);
    const Lanes lanes = Shown(4, 400, 1); // quarters of 25 rows; the second to the fifth channel
    const int expected[16] = {0, 0, 0, -1, -1, 1, 1, -1, -1, 2, 2, -1, -1, 3, 3, 3};
    for (int quarter = 0; quarter < 16; ++quarter) {
        const ChannelCode code = expected[quarter] < 0
                                     ? ChannelAll
                                     : GetChannelByIndex(format, 1 + static_cast<uint32_t>(expected[quarter]));
        EXPECT_EQ(lanes.ChannelAt(format, Top + quarter * 25), code) << quarter;
        EXPECT_EQ(lanes.ChannelAt(format, Top + quarter * 25 + 24), code) << quarter;
    }
    EXPECT_EQ(lanes.ChannelAt(format, Top - 10), GetChannelByIndex(format, 1));
    EXPECT_EQ(lanes.ChannelAt(format, Top + 410), GetChannelByIndex(format, 4));
}

TEST(Lanes, AreFoundByChannelAndAHiddenChannelHasNoRows)
{
    const auto stereo = MakePcm16Format(44100, 2);
    const Lanes right = Shown(1, 400, 1);
    EXPECT_EQ(right.ChannelAt(stereo, Top + 200), ChannelRight);
    EXPECT_TRUE(right.RowsOf(stereo, ChannelLeft).IsEmpty());
    EXPECT_EQ(right.RowsOf(stereo, ChannelRight), right.Lane(0));
    EXPECT_EQ(right.RowsOf(stereo, ChannelAll), right.Panel);
    EXPECT_EQ(Shown(0, 400).ChannelAt(stereo, Top + 200), ChannelAll);
}

TEST(AmplitudeScale, WalksAllStepsInBothDirections)
{
    uint32_t scale = LargestAmplitudeScale;
    for (const uint32_t next : {80u, 60u, 40u, 30u, 20u, 15u, 10u, 8u, 6u, 4u, 3u, 3u}) {
        const uint32_t before = scale;
        scale = ScaledIn(scale);
        EXPECT_EQ(scale, next);
        EXPECT_EQ(ScaledOut(next), next == before ? 4 : before);
    }
    EXPECT_EQ(ScaledOut(100), 100u);
    EXPECT_EQ(ScaledIn(77), 77u);
    EXPECT_EQ(ScaledOut(77), 3u); // an unknown scale counts as smaller than all
}

} // namespace
} // namespace ek
