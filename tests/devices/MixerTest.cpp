// SPDX-License-Identifier: GPL-3.0-or-later
#include "devices/CardMixer.h"

#include "servicefuncs/Channels.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <array>
#include <cmath>
#include <limits>
#include <vector>

namespace ek {
namespace {

/// The one frame of a card, of a sound with these values in its channels.
std::vector<float> Mixed(std::vector<float> sound, uint32_t cardChannels)
{
    CardMixer mixer(MakePcm16Format(44100, static_cast<uint32_t>(sound.size())), cardChannels);
    _SOUNDDATAEX_ record;
    for (size_t channel = 0; channel < sound.size(); ++channel)
        record.Channels[channel] = &sound[channel];
    const float* const frame = mixer.Mix(record, 1);
    return {frame, frame + cardChannels};
}

TEST(MixerTest, ChannelsThatTheCardHasPassUnchanged)
{
    using testing::ElementsAre;
    EXPECT_THAT(Mixed({0.3F, -0.7F}, 2), ElementsAre(0.3F, -0.7F));
    EXPECT_THAT(Mixed({0.3F, -0.7F}, 4), ElementsAre(0.3F, -0.7F, 0, 0));
    EXPECT_THAT(Mixed({1.5F}, 2), ElementsAre(1.5F, 1.5F));
    EXPECT_THAT(Mixed({0.5F}, 1), ElementsAre(0.5F));
    EXPECT_THAT(Mixed({0.5F, -0.25F}, 1), ElementsAre(0.125F));
    EXPECT_THAT(Mixed({NAN, INFINITY}, 2), ElementsAre(0, 0));
}

TEST(MixerTest, SurroundBecomesAStereoMixThatDoesNotClip)
{
    // Front left and right, centre, low frequency, back left and right.
    const float full = 1 + std::sqrt(0.5F) * 2;
    EXPECT_THAT(Mixed({1, 0, 0, 0, 0, 0}, 2), testing::ElementsAre(testing::FloatEq(1 / full), 0));
    EXPECT_THAT(Mixed({0, 0, 1, 0, 0, 0}, 2), testing::Each(testing::FloatEq(std::sqrt(0.5F) / full)));
    EXPECT_THAT(Mixed({0, 0, 0, 1, 0, 0}, 2), testing::Each(0.0F));
    EXPECT_THAT(Mixed({0, 0, 0, 0, 0, 1}, 2), testing::ElementsAre(0, testing::FloatEq(std::sqrt(0.5F) / full)));
    for (uint32_t channels = 3; channels <= 8; ++channels)
        EXPECT_THAT(Mixed(std::vector<float>(channels, 1.0F), 2), testing::Each(testing::FloatNear(0.9F, 0.101F)));
}

} // namespace
} // namespace ek
