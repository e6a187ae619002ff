// SPDX-License-Identifier: GPL-3.0-or-later
#include "dsp/Resample.h"

#include <algorithm>
#include <cmath>
#include <limits>

namespace ek {

RateFactors RateFactors::For(uint32_t outputRate, uint32_t inputRate)
{
    constexpr uint32_t LowRate = 20;
    constexpr uint32_t MostFactor = 49;
    constexpr double NearEnough = 0.003;
    if (outputRate < LowRate && inputRate < LowRate)
        return {outputRate, inputRate};
    if (outputRate == inputRate)
        return {};
    const double target = static_cast<double>(outputRate) / inputRate;
    RateFactors best;
    double bestError = std::numeric_limits<double>::max();
    for (uint32_t up = 1; up <= MostFactor; ++up) {
        for (uint32_t down = 1; down <= MostFactor; ++down) {
            const double error = std::fabs(target - static_cast<double>(up) / down);
            if (error < bestError) {
                best = {up, down};
                bestError = error;
            }
            if (error < NearEnough)
                return best;
        }
    }
    return best;
}

void CResample::SetFormat(const WAVEFORMATEXTENSIBLE& format)
{
    CBaseEffect::SetFormat(format);
    DesignStages(format);
    m_phase = 0;
    m_filter.Design(Stages(), m_factors.Up, std::max(m_factors.Up, m_factors.Down));
    const size_t channels = std::min<size_t>(Channels(), _SOUNDDATAEX_::MostChannels);
    m_input.assign(channels, std::vector<float>(m_filter.History()));
}

/// The cutoffs lie below half of the lower rate and are spread, so that the response falls off less abruptly.
void CResample::DesignStages(const WAVEFORMATEXTENSIBLE& format)
{
    constexpr double MostHertz = std::numeric_limits<int32_t>::max();
    const double rate = format.nSamplesPerSec;
    const double stageRate = rate * m_factors.Up;
    WAVEFORMATEXTENSIBLE stageFormat = format;
    stageFormat.nSamplesPerSec =
        static_cast<uint32_t>(std::min<double>(stageRate, std::numeric_limits<uint32_t>::max()));
    double cutoff = std::min(rate, rate * (static_cast<double>(m_factors.Up) / m_factors.Down)) / 2.1;
    m_stageCount = std::min(m_factors.Up, MostStages);
    for (uint32_t i = 0; i < m_stageCount; ++i) {
        m_stages[i].SetCutoff(static_cast<int32_t>(std::min(cutoff, MostHertz)));
        m_stages[i].SetFormat(stageFormat);
        if (cutoff < stageRate / 2.31)
            cutoff *= 1.1;
    }
}

uint64_t CResample::OutputFrames(uint64_t inputFrames) const
{
    const uint64_t length = inputFrames * m_factors.Up;
    return length <= m_phase ? 0 : (length - m_phase + m_factors.Down - 1) / m_factors.Down;
}

void CResample::Resample(SoundData& sound)
{
    const uint32_t inputFrames = sound.Record().FrameCount;
    const auto frames = static_cast<uint32_t>(OutputFrames(inputFrames));
    Append(sound.Record());
    sound.Resize(static_cast<uint32_t>(m_input.size()), frames);
    for (size_t channel = 0; channel < m_input.size(); ++channel)
        m_filter.Run(m_input[channel].data(), m_phase, m_factors.Down, sound.Record().Channels[channel], frames);
    m_phase += uint64_t{frames} * m_factors.Down - uint64_t{inputFrames} * m_factors.Up;
    Forget(inputFrames);
    sound.Record().Produced = frames;
}

void CResample::Append(const _SOUNDDATAEX_& sound)
{
    for (size_t i = 0; i < m_input.size(); ++i)
        m_input[i].insert(m_input[i].end(), sound.Channels[i], sound.Channels[i] + sound.FrameCount);
}

void CResample::Forget(uint32_t frames)
{
    for (std::vector<float>& input : m_input)
        input.erase(input.begin(), input.begin() + frames);
}

} // namespace ek
