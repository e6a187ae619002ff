// SPDX-License-Identifier: GPL-3.0-or-later
#include "dsp/EffectBWLowPass.h"

#include <algorithm>
#include <cmath>
#include <numbers>

namespace ek {

namespace {

/// The bilinear transform of 1 / (s^2 + sqrt(2) s + 1), prewarped to meet the cutoff (Oppenheim and Schafer,
/// Discrete-Time Signal Processing, section 7.1). `cutoff` is a part of the sample rate.
LowPassTaps Design(double cutoff)
{
    const double c = 1 / std::tan(std::numbers::pi * cutoff);
    const double d = 1 + std::numbers::sqrt2 * c + c * c;
    return {1 / d, 2 / d, 1 / d, 2 * (1 - c * c) / d, (1 - std::numbers::sqrt2 * c + c * c) / d};
}

} // namespace

void CEffectBWLowPass::SetFormat(const WAVEFORMATEXTENSIBLE& format)
{
    constexpr double Margin = 1e-9;
    CBaseEffect::SetFormat(format);
    const double rate = std::max(format.nSamplesPerSec, 1U);
    m_taps = Design(std::clamp(m_cutoff / rate, Margin, 0.5 - Margin));
    FreeState();
    const std::array<float, 6> taps = {static_cast<float>(m_taps.b0), static_cast<float>(m_taps.b1),
                                       static_cast<float>(m_taps.b2), 1.0F,
                                       static_cast<float>(m_taps.a1), static_cast<float>(m_taps.a2)};
    const size_t channels = std::min<size_t>(Channels(), m_states.size());
    for (size_t i = 0; i < channels; ++i)
        nspsIirInit(1, taps.data(), 2, &m_states[i]);
}

void CEffectBWLowPass::FreeState()
{
    for (NspIirState& state : m_states) {
        if (state.Mark == NspIirState::InitialisedMark)
            nspIirFree(&state);
    }
}

uint32_t CEffectBWLowPass::Process(_SOUNDDATAEX_& sound)
{
    const auto frames = static_cast<int32_t>(sound.FrameCount);
    for (uint32_t i = 0; i < sound.ChannelCount; ++i)
        nspsbIir(&m_states[i], sound.Channels[i], sound.Channels[i], frames);
    sound.Produced = sound.FrameCount;
    return 1;
}

} // namespace ek
