// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "dsp/BaseEffect.h"
#include "dsp/Nsp.h"

#include <array>

namespace ek {

/// H(z) = (b0 + b1 z^-1 + b2 z^-2) / (1 + a1 z^-1 + a2 z^-2)
struct LowPassTaps {
    double b0 = 0;
    double b1 = 0;
    double b2 = 0;
    double a1 = 0;
    double a2 = 0;
};

/// A second-order Butterworth low-pass: gain 1 at 0 Hz, -3 dB at the cutoff. A stream gives the same values however it
/// is cut into blocks.
class CEffectBWLowPass : public CBaseEffect {
public:
    /// In hertz, above 0 and below half the rate; counts from the next SetFormat on.
    void SetCutoff(int32_t cutoff) { m_cutoff = cutoff; }
    int32_t Cutoff() const { return m_cutoff; }
    const LowPassTaps& Taps() const { return m_taps; } ///< of the last SetFormat

    /// Designs the filter and forgets the stream so far. A cutoff out of range is taken as the nearest within. At most
    /// 8 channels.
    void SetFormat(const WAVEFORMATEXTENSIBLE& format) override;
    void FreeState() override;
    /// Filters the frames of every channel in place and sets Produced; 1. Channels that the format does not have stay
    /// as they are.
    uint32_t Process(_SOUNDDATAEX_& sound) override;

private:
    int32_t m_cutoff = 0;
    LowPassTaps m_taps;
    std::array<NspIirState, _SOUNDDATAEX_::MostChannels> m_states;
};

} // namespace ek
