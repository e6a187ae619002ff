// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "dsp/EffectBWLowPass.h"
#include "dsp/PolyphaseFilter.h"
#include "servicefuncs/SoundData.h"

#include <array>
#include <span>
#include <vector>

namespace ek {

/// A ratio of rates: Up output frames for Down input frames.
struct RateFactors {
    uint32_t Up = 1;
    uint32_t Down = 1;

    /// The rates themselves when both are below 20; else the first fraction of numbers up to 49, counting Down within
    /// Up, that is nearer than 0.003 to the ratio of the rates, or the nearest of all. 1 / 1 for equal rates. Rates
    /// are above 0.
    static RateFactors For(uint32_t outputRate, uint32_t inputRate);
    bool operator==(const RateFactors&) const = default;
};

/// Changes the rate of a stream by a ratio: as if Up - 1 zeros followed every sample, up to three low-passes ran over
/// that, and every Down-th sample stayed. A stream gives the same values however it is cut into blocks.
class CResample : public CBaseEffect {
public:
    static constexpr uint32_t MostStages = 3;

    void SetFactors(RateFactors factors) { m_factors = factors; } ///< counts from the next SetFormat on
    /// The format of the input. A new stream; at most 8 channels.
    void SetFormat(const WAVEFORMATEXTENSIBLE& format) override;
    std::span<const CEffectBWLowPass> Stages() const { return {m_stages.data(), m_stageCount}; }

    uint64_t OutputFrames(uint64_t inputFrames) const; ///< of the next block of that many frames
    /// Replaces the block by OutputFrames() frames; sets FrameCount and Produced. The channels are those of the format.
    virtual void Resample(SoundData& sound);

private:
    void DesignStages(const WAVEFORMATEXTENSIBLE& format);
    void Append(const _SOUNDDATAEX_& sound);
    void Forget(uint32_t frames);

    RateFactors m_factors;
    std::array<CEffectBWLowPass, MostStages> m_stages;
    uint32_t m_stageCount = 0;
    uint64_t m_phase =
        0; ///< of the next sample to keep, counted in samples at Up times the rate, within the next block
    PolyphaseFilter m_filter;
    std::vector<std::vector<float>> m_input; ///< per channel, the filter's history and then the block
};

} // namespace ek
