// SPDX-License-Identifier: GPL-3.0-or-later
#include "servicefuncs/SoundData.h"

#include "servicefuncs/Channels.h"

#include <algorithm>
#include <bit>
#include <cmath>
#include <cstring>
#include <gtest/gtest.h>
#include <limits>
#include <numeric>

namespace ek::test {
namespace {

WAVEFORMATEXTENSIBLE FormatOf(uint32_t channels, uint16_t bits, bool isFloat = false)
{
    WAVEFORMATEXTENSIBLE format = MakePcm16Format(44100, channels);
    format.wBitsPerSample = bits;
    format.nBlockAlign = static_cast<uint16_t>(channels * bits / 8);
    if (isFloat)
        format.SubFormat = KSDATAFORMAT_SUBTYPE_IEEE_FLOAT;
    return format;
}

const std::vector<WAVEFORMATEXTENSIBLE> monoFormats = {FormatOf(1, 8), FormatOf(1, 16), FormatOf(1, 24),
                                                       FormatOf(1, 32), FormatOf(1, 32, true)};

/// A value as an integer sample in the format, offset of the 8-bit ones taken away.
int64_t Encoded(float value, const WAVEFORMATEXTENSIBLE& format)
{
    SoundData sound(1, 1);
    sound.Record().Channels[0][0] = value;
    int32_t bytes = 0;
    SD2MME(sound.Record(), 0, 1, &bytes, format);
    if (format.wBitsPerSample == 8)
        return bytes - 128;
    const int unused = 32 - format.wBitsPerSample;
    return static_cast<int32_t>(static_cast<uint32_t>(bytes) << unused) >> unused;
}

TEST(SoundDataTest, IntegersAreRoundedToNearestAndCutAtTheirLimits)
{
    constexpr float Infinity = std::numeric_limits<float>::infinity();
    for (const int bits : {8, 16, 24, 32}) {
        const WAVEFORMATEXTENSIBLE format = FormatOf(1, static_cast<uint16_t>(bits));
        const int64_t full = int64_t{1} << (bits - 1);
        const auto step = static_cast<float>(std::ldexp(1.0, 1 - bits));
        for (const float value : {1.0F, 1.5F, 3e9F, Infinity})
            EXPECT_EQ(Encoded(value, format), full - 1) << bits << " " << value;
        for (const float value : {-1.0F, -1.5F, -3e9F, -Infinity})
            EXPECT_EQ(Encoded(value, format), -full) << bits << " " << value;
        EXPECT_EQ(Encoded(std::nanf(""), format), 0) << bits;
        EXPECT_EQ(Encoded(0.5F, format), full / 2) << bits;
        for (const int64_t sample : {0, 1, 2, 5, 100}) {
            const auto middle = static_cast<float>(sample) + 0.5F;
            EXPECT_EQ(Encoded(middle * step, format), sample + 1) << bits;
            EXPECT_EQ(Encoded(-middle * step, format), -sample - 1) << bits;
            EXPECT_EQ(Encoded(std::nextafter(middle, 0.0F) * step, format), sample) << bits;
            EXPECT_EQ(Encoded(-std::nextafter(middle, 0.0F) * step, format), -sample) << bits;
        }
    }
}

void Append(std::vector<uint8_t>& bytes, uint32_t sample, size_t width)
{
    const auto* first = reinterpret_cast<const uint8_t*>(&sample);
    bytes.insert(bytes.end(), first, first + width);
}

TEST(SoundDataTest, EverySampleComesBackUnchanged)
{
    constexpr uint32_t Count = 0x10000;
    for (const WAVEFORMATEXTENSIBLE& format : monoFormats) {
        const size_t width = format.nBlockAlign;
        const bool isFloat = format.SubFormat == KSDATAFORMAT_SUBTYPE_IEEE_FLOAT;
        std::vector<uint8_t> bytes;
        std::vector<uint8_t> expected;
        for (uint32_t i = 0; i < Count; ++i) { // in the highest bytes, so that a float has room for all of it
            const uint32_t sample = width == 1 ? i & 0xFF : i << (width * 8 - 16);
            const auto value = std::bit_cast<float>(sample);
            const float most = std::copysign(std::numeric_limits<float>::max(), value);
            const float cut = std::isnan(value) ? 0 : std::isinf(value) ? most : value;
            Append(bytes, sample, width);
            Append(expected, isFloat ? std::bit_cast<uint32_t>(cut) : sample, width);
        }
        SoundData sound(1, Count);
        EXPECT_EQ(MME2SD(bytes.data(), bytes.size(), sound.Record(), format), Count);
        std::vector<uint8_t> back(bytes.size());
        SD2MME(sound.Record(), 0, Count, back.data(), format);
        EXPECT_EQ(back, expected) << format.wBitsPerSample;
        if (!isFloat) {
            const float* values = sound.Record().Channels[0];
            EXPECT_EQ(*std::min_element(values, values + Count), -1.0F);
            EXPECT_EQ(*std::max_element(values, values + Count), width == 1 ? 127 / 128.0F : 32767 / 32768.0F);
        }
    }
}

TEST(SoundDataTest, ChannelsKeepTheirPlacesAtAnyCountOffsetAndAlignment)
{
    constexpr uint32_t Frames = 1037; // some of the inner blocks and a rest
    constexpr uint32_t Offset = 3;
    for (uint32_t channels = 1; channels <= MaxChannels; ++channels) {
        const WAVEFORMATEXTENSIBLE format = MakePcm16Format(44100, channels);
        std::vector<int16_t> frames(size_t{Frames} * channels);
        std::iota(frames.begin(), frames.end(), int16_t{-9});
        std::vector<uint8_t> odd(1 + frames.size() * 2 + 1);
        std::memcpy(&odd[1], frames.data(), frames.size() * 2);

        SoundData sound(channels, Offset + Frames);
        MME2SD_BYSAMPLES(&odd[1], Frames, sound.Record(), format, Offset, -1);
        SoundData one(1, Frames);
        MME2SD_BYSAMPLES(&odd[1], Frames, one.Record(), format, 0, static_cast<int32_t>(channels - 1));
        for (uint32_t i = 0; i < Frames; ++i) {
            for (uint32_t c = 0; c < channels; ++c)
                ASSERT_EQ(sound.Record().Channels[c][Offset + i] * 32768, frames[i * channels + c]) << channels;
            ASSERT_EQ(one.Record().Channels[0][i] * 32768, frames[(i + 1) * channels - 1]) << channels;
        }
        ASSERT_EQ(sound.Record().Channels[0][Offset - 1], 0);

        std::vector<uint8_t> back(odd.size(), 0);
        SD2MME(sound.Record(), Offset, Frames, &back[1], format);
        EXPECT_EQ(back, odd) << "and nothing beside them";

        --sound.Record().ChannelCount; // the last channel has no buffer now
        SD2MME(sound.Record(), Offset, Frames, &back[1], format);
        for (uint32_t i = 0; i < Frames; ++i)
            std::memset(&odd[1 + ((i + 1) * channels - 1) * 2], 0, 2);
        EXPECT_EQ(back, odd) << "silence where no buffer is";
    }
}

TEST(SoundDataTest, WhatDoesNotFitIsLeftAlone)
{
    SoundData sound(2, 4);
    const std::vector<uint8_t> ones(64, 1);
    EXPECT_EQ(MME2SD(ones.data(), 11, sound.Record(), MakePcm16Format(8000, 2)), 2u) << "a part frame";
    EXPECT_EQ(sound.Record().Channels[0][2], 0);
    sound.Resize(1, 4);
    MME2SD_BYSAMPLES(ones.data(), 4, sound.Record(), MakePcm16Format(8000, 2), 0, 2);
    EXPECT_EQ(sound.Record().Channels[0][0], 0) << "a channel that the format does not have";

    std::vector<WAVEFORMATEXTENSIBLE> unknown(7, MakePcm16Format(8000, 2));
    unknown[0].wFormatTag = 2;
    unknown[1].wBitsPerSample = 12;
    unknown[2].nBlockAlign = 6;
    unknown[3].nChannels = 0;
    unknown[4].SubFormat = {};
    unknown[5] = FormatOf(1, 16, true);
    unknown[6] = FormatOf(9, 16);
    for (const WAVEFORMATEXTENSIBLE& format : unknown) {
        std::vector<uint8_t> untouched = ones;
        EXPECT_FALSE(IsConvertible(format));
        EXPECT_EQ(MME2SD(ones.data(), ones.size(), sound.Record(), format), 0u);
        SD2MME(sound.Record(), 0, 4, untouched.data(), format);
        EXPECT_EQ(untouched, ones);
        EXPECT_EQ(sound.Record().Channels[0][0], 0);
    }
}

} // namespace
} // namespace ek::test
