// SPDX-License-Identifier: GPL-3.0-or-later
#include "devices/CardMixer.h"

#include "servicefuncs/Channels.h"

#include <algorithm>
#include <cmath>
#include <numbers>

namespace ek {

namespace {

struct StereoShare {
    float Left;
    float Right;
};

StereoShare ShareOf(ChannelCode code)
{
    constexpr float Minus3dB = std::numbers::sqrt2_v<float> / 2;
    switch (code) {
    case ChannelLeft:
    case ChannelFrontLeft:
    case ChannelFrontLeftOfCentre:
        return {1, 0};
    case ChannelRight:
    case ChannelFrontRight:
    case ChannelFrontRightOfCentre:
        return {0, 1};
    case ChannelBackLeft:
    case ChannelSideLeft:
        return {Minus3dB, 0};
    case ChannelBackRight:
    case ChannelSideRight:
        return {0, Minus3dB};
    case ChannelLowFrequency:
        return {0, 0};
    case ChannelBackCentre:
        return {0.5F, 0.5F}; // twice -3 dB: a surround channel that both sides share
    default:
        return {Minus3dB, Minus3dB};
    }
}

float FiniteOrSilence(float value)
{
    return std::isfinite(value) ? value : 0.0F;
}

} // namespace

CardMixer::CardMixer(const WAVEFORMATEXTENSIBLE& sound, uint32_t cardChannels)
    : m_cardChannels(std::clamp(cardChannels, 1U, _SOUNDDATAEX_::MostChannels)), m_soundChannels(sound.nChannels)
{
    if (m_soundChannels > m_cardChannels) {
        MixDown(sound);
        return;
    }
    for (uint32_t channel = 0; channel < m_soundChannels; ++channel)
        m_gain[channel][channel] = 1;
    if (m_soundChannels == 1 && m_cardChannels > 1)
        m_gain[1][0] = 1;
}

void CardMixer::MixDown(const WAVEFORMATEXTENSIBLE& sound)
{
    for (uint32_t channel = 0; channel < m_soundChannels; ++channel) {
        const StereoShare share = ShareOf(GetChannelByIndex(sound, channel));
        m_gain[0][channel] = m_cardChannels == 1 ? (share.Left + share.Right) / 2 : share.Left;
        m_gain[1][channel] = share.Right;
    }
    float loudest = 1;
    for (uint32_t side = 0; side < std::min(m_cardChannels, 2U); ++side) {
        float sum = 0;
        for (const float gain : m_gain[side])
            sum += gain;
        loudest = std::max(loudest, sum);
    }
    for (auto& side : m_gain)
        for (float& gain : side)
            gain /= loudest;
}

const float* CardMixer::Mix(const _SOUNDDATAEX_& sound, uint32_t frames)
{
    m_frames.assign(static_cast<size_t>(frames) * m_cardChannels, 0.0F);
    for (uint32_t out = 0; out < m_cardChannels; ++out) {
        for (uint32_t in = 0; in < m_soundChannels; ++in) {
            const float gain = m_gain[out][in];
            if (gain == 0)
                continue;
            float* to = m_frames.data() + out;
            for (uint32_t i = 0; i < frames; ++i, to += m_cardChannels)
                *to += gain * FiniteOrSilence(sound.Channels[in][i]);
        }
    }
    return m_frames.data();
}

} // namespace ek
