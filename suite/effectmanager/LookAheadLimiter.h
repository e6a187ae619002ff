// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "effectmanager/EffectProcessor.h"

#include <array>
#include <vector>

namespace ek {

/// Holds peaks below full scale. Each frame asks for the gain c / peak where its largest sample of all channels
/// exceeds the ceiling c, else for 1. The gain in use is the least one asked for within the look-ahead, let rise again
/// exponentially and then smoothed by a mean over the look-ahead; sound is delayed by it, so that the gain is down
/// when the peak arrives. The method is that of P. Hämäläinen, "Smoothing of the control signal without clipped output
/// in digital peak limiters" (DAFx-02), the running minimum that of D. Lemire, "Streaming maximum-minimum filter
/// using no more than three comparisons per element" (2006).
///
/// Sound that never exceeds the ceiling comes out unchanged to the bit; no sample ever comes out above it. What is no
/// finite number comes out as 0. From one frame to the next the gain changes by 1 / (Latency() + 1) at most.
class LookAheadLimiter final : public FrameProcessor {
public:
    /// The largest value below 1: one of full scale, -1, still rounds to it in every integer format.
    static constexpr float Ceiling = 0x1.fffffep-1F;
    static constexpr double LookAheadSeconds = 0.0015;
    static constexpr double ReleaseSeconds = 0.1; ///< in which a reduction shrinks to 1/e of it

    uint32_t Latency() const override { return m_lookAhead; }
    void SetSettings(const EffectSettings&) override {}

protected:
    tEffError OpenFrames(const WAVEFORMATEXTENSIBLE& format) override;
    void RestartFrames() override;
    void Process(float* const* channels, uint32_t frames) override;

private:
    struct GainAt {
        uint64_t Frame;
        double Gain;
    };

    float NextGain(float peak);
    double LeastGain(double gain);
    double Release(double gain);
    void ProcessFrame(float* const* channels, uint32_t frame);

    uint32_t m_channels = 0;
    uint32_t m_lookAhead = 0;
    uint32_t m_window = 0; ///< frames that the minimum and the mean run over: those ahead and the present one
    double m_releaseStep = 0;
    uint64_t m_frame = 0;        ///< frames since the start
    std::vector<float> m_delay;  ///< frames that are still to come out, interleaved, in a ring
    std::vector<GainAt> m_least; ///< gains that are or may become the least one, rising, in a ring
    uint64_t m_leastBegin = 0;
    uint64_t m_leastEnd = 0;
    double m_released = 1;
    std::vector<int64_t> m_smoothed; ///< gains that the mean runs over, in a ring; whole numbers, so that it is exact
    int64_t m_sum = 0;
};

} // namespace ek
