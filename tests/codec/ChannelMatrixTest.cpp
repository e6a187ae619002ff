// SPDX-License-Identifier: GPL-3.0-or-later
#include "ekdatapr/ChannelMatrix.h"

#include <gtest/gtest.h>
#include <numbers>
#include <numeric>
#include <vector>

namespace ek {

namespace {

constexpr double R = std::numbers::sqrt2 / 2;

std::vector<double> Row(const ChannelMatrix& matrix, uint32_t output)
{
    return {matrix.Gain[output].begin(), matrix.Gain[output].begin() + matrix.Inputs};
}

void ExpectRow(const ChannelMatrix& matrix, uint32_t output, const std::vector<double>& gains, double scale = 1)
{
    const std::vector<double> row = Row(matrix, output);
    ASSERT_EQ(row.size(), gains.size());
    for (size_t i = 0; i < row.size(); ++i)
        EXPECT_NEAR(row[i], gains[i] * scale, 1e-12) << output << ' ' << i;
}

TEST(ChannelMatrix, MonoFillsTheFrontPairOrTheCentre)
{
    ExpectRow(MakeChannelMatrix(1, 0x4, 2, 0x3), 0, {1});
    ExpectRow(MakeChannelMatrix(1, 0x4, 2, 0x3), 1, {1});
    const ChannelMatrix toSurround = MakeChannelMatrix(1, 0x4, 6, 0x3F);
    for (uint32_t output = 0; output < 6; ++output)
        ExpectRow(toSurround, output, {output == 2 ? 1.0 : 0.0});
    const ChannelMatrix toQuad = MakeChannelMatrix(1, 0x4, 4, 0x33);
    for (uint32_t output = 0; output < 4; ++output)
        ExpectRow(toQuad, output, {output < 2 ? 1.0 : 0.0});
}

TEST(ChannelMatrix, SurroundFoldsIntoStereoWithCentreAndRearThreeDecibelsDown)
{
    const ChannelMatrix matrix = MakeChannelMatrix(6, 0x3F, 2, 0x3);
    ExpectRow(matrix, 0, {1, 0, R, 0, R, 0}, 1 / (1 + 2 * R));
    ExpectRow(matrix, 1, {0, 1, R, 0, 0, R}, 1 / (1 + 2 * R));
    ExpectRow(MakeChannelMatrix(6, 0x3F, 1, 0x4), 0, {0.5, 0.5, R, 0, R / 2, R / 2}, 1 / (1 + 2 * R));
    const ChannelMatrix sixOne = MakeChannelMatrix(7, 0x70F, 2, 0x3);
    ExpectRow(sixOne, 0, {1, 0, R, 0, 0.5, R, 0}, 1 / (1.5 + 2 * R));
}

TEST(ChannelMatrix, SpeakersThatBothLayoutsHaveGoThroughUnchanged)
{
    const ChannelMatrix up = MakeChannelMatrix(2, 0x3, 6, 0x3F);
    for (uint32_t output = 0; output < 6; ++output)
        ExpectRow(up, output, {output == 0 ? 1.0 : 0.0, output == 1 ? 1.0 : 0.0});
    EXPECT_TRUE(MakeChannelMatrix(6, 0x3F, 6, 0x60F).IsIdentity()); // side for back
    EXPECT_FALSE(MakeChannelMatrix(3, 0x7, 3, 0xB).IsIdentity());
}

TEST(ChannelMatrix, NoPairOfLayoutsCanClipAndNoneLosesAFullRangeSpeaker)
{
    for (uint32_t from = 1; from <= MaxChannels; ++from) {
        for (uint32_t to = 1; to <= MaxChannels; ++to) {
            const ChannelMatrix matrix = MakeChannelMatrix(from, 0, to, 0);
            EXPECT_EQ(matrix.IsIdentity(), from == to);
            for (uint32_t output = 0; output < to; ++output) {
                const std::vector<double> row = Row(matrix, output);
                EXPECT_LE(std::accumulate(row.begin(), row.end(), 0.0), 1 + 1e-12) << from << ' ' << to;
            }
            for (uint32_t input = 0; input < from; ++input) {
                double heard = 0;
                for (uint32_t output = 0; output < to; ++output)
                    heard += matrix.Gain[output][input];
                const WAVEFORMATEXTENSIBLE format = MakePcm16Format(44100, from);
                EXPECT_TRUE(heard > 0 || GetChannelByIndex(format, input) == ChannelLowFrequency) << from << ' ' << to;
            }
        }
    }
}

TEST(ChannelMatrix, MasksThatDoNotFitStandForTheUsualLayout)
{
    for (const uint32_t mask : {0u, 0x1u, 0xFFFFFFFFu})
        EXPECT_EQ(MakeChannelMatrix(6, mask, 2, mask), MakeChannelMatrix(6, 0x3F, 2, 0x3));
    // Speakers without a front: as many channels go through, in their order.
    EXPECT_TRUE(MakeChannelMatrix(2, 0x3, 2, 0x600).IsIdentity());
}

} // namespace

} // namespace ek
