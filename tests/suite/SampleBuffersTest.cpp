// SPDX-License-Identifier: GPL-3.0-or-later
#include "servicefuncs/SampleBuffers.h"

#include <bit>
#include <gtest/gtest.h>
#include <random>
#include <set>
#include <vector>

namespace ek::test {
namespace {

TEST(ChannelsTest, CodesAndPositionsAreInverseForEveryMaskAndCount)
{
    for (uint32_t channels = 1; channels <= MaxChannels; ++channels) {
        for (uint32_t mask = 0; mask < 0x1000; ++mask) {
            WAVEFORMATEXTENSIBLE format = MakePcm16Format(44100, channels);
            format.dwChannelMask = mask;
            std::set<ChannelCode> codes;
            for (uint32_t position = 0; position < channels; ++position) {
                const ChannelCode code = GetChannelByIndex(format, position);
                codes.insert(code);
                ASSERT_EQ(GetIndexByChannel(format, code), position) << channels << " " << mask;
            }
            ASSERT_EQ(codes.size(), channels);
            ASSERT_FALSE(codes.contains(ChannelAll));
            ASSERT_EQ(GetChannelByIndex(format, channels), ChannelAll);
        }
    }
}

std::vector<ChannelCode> CodesOf(uint32_t channels, uint32_t mask)
{
    std::vector<ChannelCode> codes;
    const WAVEFORMATEXTENSIBLE format = MakePcm16Format(48000, channels, mask);
    for (uint32_t position = 0; position < channels; ++position)
        codes.push_back(GetChannelByIndex(format, position));
    return codes;
}

TEST(ChannelsTest, PositionsFollowTheMaskOrTheUsualLayout)
{
    using Codes = std::vector<ChannelCode>;
    const Codes surround = {ChannelFrontLeft,    ChannelFrontRight, ChannelFrontCentre,
                            ChannelLowFrequency, ChannelBackLeft,   ChannelBackRight};
    EXPECT_EQ(CodesOf(1, 0x8), Codes({ChannelLeft}));
    EXPECT_EQ(CodesOf(2, 0x600), Codes({ChannelLeft, ChannelRight}));
    EXPECT_EQ(CodesOf(6, 0), surround);
    EXPECT_EQ(CodesOf(6, 0x7), surround) << "too few speakers in the mask";
    EXPECT_EQ(CodesOf(6, 0x8000001F), surround) << "an unknown speaker in the mask";
    EXPECT_EQ(CodesOf(3, 0x704), Codes({ChannelFrontLeft, ChannelFrontRight, ChannelLowFrequency}));
    EXPECT_EQ(CodesOf(3, 0x304), Codes({ChannelFrontCentre, ChannelBackCentre, ChannelSideLeft}));
    EXPECT_EQ(GetIndexByChannel(MakePcm16Format(48000, 6), ChannelLeft), NoChannel);
    EXPECT_EQ(GetIndexByChannel(MakePcm16Format(48000, 2), ChannelAll), NoChannel);
    for (uint32_t channels = 1; channels <= MaxChannels; ++channels)
        EXPECT_EQ(static_cast<uint32_t>(std::popcount(DefaultChannelMask(channels))), channels);
    EXPECT_EQ(DefaultChannelMask(9), 0u);
}

TEST(ChannelsTest, AOneChannelFormatHasTheRateAndTheWidthOfTheWhole)
{
    const WAVEFORMATEXTENSIBLE one = MakeOneChannelFormat(MakePcm16Format(48000, 6));
    EXPECT_EQ(one, MakePcm16Format(48000, 1));
    EXPECT_EQ(one.nAvgBytesPerSec, 96000u);
    EXPECT_EQ(one.dwChannelMask, 4u);
    EXPECT_EQ(MakeOneChannelFormat({}), WAVEFORMATEXTENSIBLE());
}

class SampleBuffersTest : public testing::TestWithParam<uint32_t> {
protected:
    static constexpr uint64_t Frames = 1000;

    std::vector<int16_t> Noise(uint64_t samples)
    {
        std::vector<int16_t> noise(samples);
        for (int16_t& sample : noise)
            sample = static_cast<int16_t>(m_random());
        return noise;
    }
    /// The frames of `samples` with one channel's samples put through `change`(frame, sample).
    template <typename Change>
    std::vector<int16_t> Changed(std::vector<int16_t> samples, uint32_t position, Change change)
    {
        for (uint64_t frame = 0; frame < Frames; ++frame) {
            int16_t& sample = samples[frame * GetParam() + position];
            sample = static_cast<int16_t>(change(frame, sample));
        }
        return samples;
    }

    std::mt19937 m_random{GetParam()};
    WAVEFORMATEXTENSIBLE m_format = MakePcm16Format(44100, GetParam());
    std::vector<int16_t> m_frames = Noise(Frames * GetParam());
};

TEST_P(SampleBuffersTest, OneChannelIsTakenOutPutBackSilencedAndMixedAlone)
{
    for (uint32_t position = 0; position < GetParam(); ++position) {
        const ChannelCode code = GetChannelByIndex(m_format, position);
        std::vector<int16_t> mono(Frames);
        SplitChannel(mono.data(), m_frames.data(), m_format, Frames, position);
        std::vector<int16_t> buffer = m_frames;
        ClearWaveData(buffer.data(), m_format, Frames, code);
        EXPECT_EQ(buffer, Changed(m_frames, position, [](uint64_t, int) { return 0; }));
        CopyWaveData(buffer.data(), mono.data(), m_format, Frames, code);
        EXPECT_EQ(buffer, m_frames);

        const std::vector<int16_t> second = Noise(600);
        const auto mixed = Changed(m_frames, position, [&](uint64_t frame, int sample) {
            return frame < 600 ? std::clamp(sample + second[frame], -32768, 32767) : sample;
        });
        std::vector<int16_t> apart(m_frames.size());
        MixWaveData(apart.data(), m_frames.data(), Frames, second.data(), 600, m_format, code);
        EXPECT_EQ(apart, mixed);
        MixWaveData(buffer.data(), buffer.data(), Frames, second.data(), 600, m_format, code);
        EXPECT_EQ(buffer, mixed) << "in place";
    }
}

TEST_P(SampleBuffersTest, AllChannelsAreMixedWithSaturationAndSilenced)
{
    const std::vector<int16_t> second = Noise(600 * GetParam());
    std::vector<int16_t> expected = m_frames;
    for (size_t i = 0; i < second.size(); ++i)
        expected[i] = static_cast<int16_t>(std::clamp(expected[i] + second[i], -32768, 32767));
    std::vector<int16_t> apart(m_frames.size());
    MixWaveData(apart.data(), m_frames.data(), Frames, second.data(), 600, m_format, ChannelAll);
    EXPECT_EQ(apart, expected);
    MixWaveData(m_frames.data(), m_frames.data(), Frames, second.data(), 600, m_format, ChannelAll);
    EXPECT_EQ(m_frames, expected) << "in place";
    ClearWaveData(m_frames.data(), m_format, Frames - 1, ChannelAll);
    EXPECT_EQ(std::count(m_frames.begin(), m_frames.end() - GetParam(), 0), (Frames - 1) * GetParam());
    EXPECT_TRUE(std::equal(m_frames.end() - GetParam(), m_frames.end(), expected.end() - GetParam()));
}

TEST_P(SampleBuffersTest, AChannelThatTheFormatDoesNotHoldChangesNothing)
{
    const ChannelCode missing = GetParam() <= 2 ? ChannelFrontCentre : ChannelLeft;
    const std::vector<int16_t> before = m_frames;
    const std::vector<int16_t> source = Noise(Frames);
    ClearWaveData(m_frames.data(), m_format, Frames, missing);
    CopyWaveData(m_frames.data(), source.data(), m_format, Frames, missing);
    MixWaveData(m_frames.data(), source.data(), Frames / GetParam(), source.data(), 1, m_format, missing);
    SplitChannel(m_frames.data(), source.data(), m_format, Frames / GetParam(), GetParam());
    EXPECT_EQ(m_frames, before);
}

INSTANTIATE_TEST_SUITE_P(Channels, SampleBuffersTest, testing::Values(1, 2, 6, 8));

} // namespace
} // namespace ek::test
