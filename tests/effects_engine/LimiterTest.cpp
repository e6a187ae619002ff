// SPDX-License-Identifier: GPL-3.0-or-later
#include "TestEffects.h"
#include "effectmanager/LookAheadLimiter.h"

#include <gtest/gtest.h>

#include <cmath>
#include <limits>

namespace ek::test {
namespace {

Sound Limited(const Sound& sound, uint32_t rate, uint32_t seed = 1)
{
    LookAheadLimiter limiter;
    const auto channels = static_cast<uint32_t>(sound.size());
    EXPECT_EQ(limiter.Open(FloatFormat(channels, rate)), EffectSuccess);
    class Stage final : public CAudioAbstract {
    public:
        Stage(LookAheadLimiter& limiter, CAudioAbstract& source) : m_limiter(limiter), m_source(source) {}
        uint32_t GetData(_SOUNDDATAEX_* record) override { return m_limiter.Produce(m_source, *record); }

    private:
        LookAheadLimiter& m_limiter;
        CAudioAbstract& m_source;
    };
    SoundSource source(sound);
    Stage stage(limiter, source);
    return PullAll(stage, channels, seed);
}

/// A tone on which gains can be read off anywhere: 0.5, with peaks and stretches above full scale in one channel.
Sound TooLoud(uint32_t rate)
{
    Sound sound(2, std::vector(rate * 4, 0.5F));
    for (size_t i = rate; i < sound[0].size() / 2; ++i)
        sound[0][i] = 1.7F * std::sin(static_cast<float>(i) * 0.05F);
    for (const uint32_t at : {0U, 1U, rate / 2, rate / 2 + 3, 3 * rate})
        sound[0][at] = -4.0F;
    return sound;
}

TEST(LimiterTest, NothingEverComesOutAboveTheCeilingAndAllOfItIsTheSoundTimesASmoothGain)
{
    for (const uint32_t rate : {8000U, 44100U, 192000U}) {
        const Sound sound = TooLoud(rate);
        const Sound heard = Limited(sound, rate);
        ASSERT_EQ(heard[0].size(), sound[0].size());
        const auto lookAhead = static_cast<double>(std::lround(rate * LookAheadLimiter::LookAheadSeconds));
        double before = heard[1][0] / 0.5;
        for (size_t i = 0; i < heard[0].size(); ++i) {
            ASSERT_LE(std::fabs(heard[0][i]), LookAheadLimiter::Ceiling) << rate << " " << i;
            const double gain = heard[1][i] / 0.5; // the other channel has the same one
            ASSERT_LE(gain, 1.0);
            ASSERT_NEAR(heard[0][i], sound[0][i] * gain, 1e-6) << rate << " " << i;
            ASSERT_LE(std::fabs(gain - before), 1.0 / (lookAhead + 1) + 1e-6) << rate << " " << i;
            before = gain;
        }
        EXPECT_GT(std::fabs(heard[0][rate / 2]), 0.99F) << "no more is taken away than must be";
    }
}

TEST(LimiterTest, BeforeAPeakIsNearAndAfterTheReleaseTheSoundIsTheSameToTheBit)
{
    constexpr uint32_t rate = 44100;
    constexpr uint32_t lookAhead = 66;
    constexpr size_t peak = 5000;
    Sound sound = Noise(21, 2, 2 * rate);
    sound[1][peak] = 2.0F;
    const Sound heard = Limited(sound, rate);
    const auto isSame = [&](size_t from, size_t to) {
        return std::equal(heard[0].begin() + from, heard[0].begin() + to, sound[0].begin() + from) &&
               std::equal(heard[1].begin() + from, heard[1].begin() + to, sound[1].begin() + from);
    };
    EXPECT_TRUE(isSame(0, peak - 2 * lookAhead));
    EXPECT_FALSE(isSame(peak - lookAhead, peak));
    EXPECT_NEAR(heard[1][peak], 1.0F, 1e-6);
    const size_t tenth = peak + lookAhead + rate / 10; // the reduction, 1/2 at first, is 1/e of that
    EXPECT_NEAR(1.0 - heard[0][tenth] / sound[0][tenth], 0.5 / std::exp(1.0), 0.01);
    EXPECT_TRUE(isSame(peak + rate, sound[0].size()));
}

TEST(LimiterTest, FullScaleOfEveryIntegerFormatIsStillThatAfterRounding)
{
    for (const float scale : {0x1p7F, 0x1p15F, 0x1p23F}) {
        Sound sound = Noise(22, 1, 20000, 1.0F);
        for (float& value : sound[0])
            value = std::round(value * scale) / scale;
        for (const size_t at : {size_t{0}, size_t{7000}, size_t{7001}, size_t{19999}})
            sound[0][at] = -1.0F;
        const Sound heard = Limited(sound, 44100);
        EXPECT_NE(heard, sound);
        for (size_t i = 0; i < sound[0].size(); ++i)
            ASSERT_EQ(std::round(double{heard[0][i]} * scale), double{sound[0][i]} * scale) << scale << " " << i;
    }
}

TEST(LimiterTest, WhatIsNoNumberIsSilenceAndSpoilsNothingElse)
{
    Sound sound = Noise(23, 1, 3000);
    Sound expected = sound;
    const float infinity = std::numeric_limits<float>::infinity();
    sound[0][100] = infinity;
    sound[0][101] = -infinity;
    sound[0][1500] = std::numeric_limits<float>::quiet_NaN();
    expected[0][100] = expected[0][101] = expected[0][1500] = 0;
    EXPECT_EQ(Limited(sound, 44100), expected);
    sound[0][2000] = std::numeric_limits<float>::max();
    const Sound heard = Limited(sound, 44100);
    for (const float value : heard[0])
        ASSERT_LE(std::fabs(value), LookAheadLimiter::Ceiling);
}

TEST(LimiterTest, TheSizeOfBlocksDoesNotMatter)
{
    const Sound sound = Scaled(Noise(24, 3, 10000, 1.0F), 2.5F);
    EXPECT_EQ(Limited(sound, 48000, 1), Limited(sound, 48000, 2));
}

} // namespace
} // namespace ek::test
