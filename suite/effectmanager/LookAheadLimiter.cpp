// SPDX-License-Identifier: GPL-3.0-or-later
#include "effectmanager/LookAheadLimiter.h"

#include <algorithm>
#include <cmath>

namespace ek {

namespace {
constexpr double FixedPointOne = 0x1p40;
constexpr double Inaudible = 1e-4; ///< a reduction this small is let go at once: under a thousandth of a decibel

float WithoutNonsense(float value)
{
    return std::isfinite(value) ? value : 0.0F;
}
} // namespace

tEffError LookAheadLimiter::OpenFrames(const WAVEFORMATEXTENSIBLE& format)
{
    if (format.nChannels == 0 || format.nChannels > _SOUNDDATAEX_::MostChannels || format.nSamplesPerSec == 0)
        return EffectFailed;
    m_channels = format.nChannels;
    const long lookAhead = std::lround(LookAheadSeconds * format.nSamplesPerSec);
    m_lookAhead = static_cast<uint32_t>(std::clamp(lookAhead, 1L, 0xFFFFL));
    m_window = m_lookAhead + 1;
    m_releaseStep = 1.0 - std::exp(-1.0 / (ReleaseSeconds * format.nSamplesPerSec));
    m_delay.resize(size_t{m_window} * m_channels);
    m_least.resize(m_window);
    m_smoothed.resize(m_window);
    return EffectSuccess;
}

void LookAheadLimiter::RestartFrames()
{
    const auto one = static_cast<int64_t>(FixedPointOne);
    std::fill(m_delay.begin(), m_delay.end(), 0.0F);
    std::fill(m_smoothed.begin(), m_smoothed.end(), one);
    m_sum = one * m_window;
    m_frame = m_leastBegin = m_leastEnd = 0;
    m_released = 1;
}

void LookAheadLimiter::Process(float* const* channels, uint32_t frames)
{
    for (uint32_t frame = 0; frame < frames; ++frame)
        ProcessFrame(channels, frame);
}

void LookAheadLimiter::ProcessFrame(float* const* channels, uint32_t frame)
{
    float* const in = &m_delay[m_frame % m_window * m_channels];
    float peak = 0;
    for (uint32_t i = 0; i < m_channels; ++i) {
        in[i] = WithoutNonsense(channels[i][frame]);
        peak = std::max(peak, std::fabs(in[i]));
    }
    const float gain = NextGain(peak);
    const float* const out = &m_delay[(m_frame + 1) % m_window * m_channels];
    for (uint32_t i = 0; i < m_channels; ++i) // the product may round up past the ceiling
        channels[i][frame] = std::clamp(out[i] * gain, -Ceiling, Ceiling);
    ++m_frame;
}

/// Takes the peak of the newest frame; the gain of the frame that now comes out.
float LookAheadLimiter::NextGain(float peak)
{
    const double asked = peak > Ceiling ? double{Ceiling} / peak : 1.0;
    const auto gain = static_cast<int64_t>(Release(LeastGain(asked)) * FixedPointOne); // rounded down
    int64_t& oldest = m_smoothed[m_frame % m_window];
    m_sum += gain - oldest;
    oldest = gain;
    return static_cast<float>(static_cast<double>(m_sum) / (FixedPointOne * m_window));
}

/// The least gain of the last `m_window` frames: those that can never become it again are forgotten.
double LookAheadLimiter::LeastGain(double gain)
{
    while (m_leastEnd > m_leastBegin && m_least[(m_leastEnd - 1) % m_window].Gain >= gain)
        --m_leastEnd;
    if (m_leastEnd > m_leastBegin && m_least[m_leastBegin % m_window].Frame + m_window <= m_frame)
        ++m_leastBegin;
    m_least[m_leastEnd++ % m_window] = {m_frame, gain};
    return m_least[m_leastBegin % m_window].Gain;
}

double LookAheadLimiter::Release(double gain)
{
    m_released = std::min(gain, m_released + (gain - m_released) * m_releaseStep);
    if (gain - m_released < Inaudible)
        m_released = gain;
    return m_released;
}

} // namespace ek
