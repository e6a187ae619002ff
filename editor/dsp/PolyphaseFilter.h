// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "dsp/EffectBWLowPass.h"

#include <cstdint>
#include <span>
#include <vector>

namespace ek {

/// What a cascade of low-passes makes of a signal whose every `up`-th sample is an input sample times `up` and whose
/// others are 0, computed only where it is wanted.
///
/// The cascade is linear, so its output is the sum of the inputs so far, each weighted by the impulse response at its
/// distance. The response falls so fast that a dozen inputs matter, and at each of the `up` positions between two
/// inputs other values of it stand beside them: the polyphase form (Crochiere and Rabiner, Multirate Digital Signal
/// Processing, section 3.3). Against running the cascade over all the zeros this saves nine tenths of the work, has no
/// state that could decay into denormal numbers, and is made of multiplications that can be done at once.
class PolyphaseFilter {
public:
    /// `slowest` is the longer one of the periods of input and output, in samples of the cascade.
    void Design(std::span<const CEffectBWLowPass> cascade, uint32_t up, uint32_t slowest);

    /// The output takes the inputs from History() before the newest one to that one.
    size_t History() const { return m_taps - 1; }
    /// `frames` outputs: the first `position` samples of the cascade after the input that lies History() after
    /// `*input`, each further one `step` samples later.
    void Run(const float* input, uint64_t position, uint32_t step, float* output, uint32_t frames) const;

private:
    uint32_t m_up = 1;
    size_t m_taps = 1;
    std::vector<float> m_weights; ///< m_taps of them for each of the `up` positions, for the oldest input first
};

} // namespace ek
