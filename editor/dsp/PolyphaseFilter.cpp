// SPDX-License-Identifier: GPL-3.0-or-later
#include "dsp/PolyphaseFilter.h"

#include <array>
#include <cmath>

namespace ek {

namespace {

/// Sums that are kept apart, so that as many products can be added at once; the number of inputs is a multiple of it.
constexpr size_t Sums = 8;

/// In this many periods of the slower rate a low-pass just below half of that rate has died out beyond all precision,
/// also where that is half the rate of the cascade, at which it rings longest: by a tenth less with every sample.
constexpr size_t Periods = 256;

/// All that is cut off the response weighs less than this against full scale: 1/32 of the last bit of a float.
constexpr double Negligible = 0x1p-30;

/// Filters in place, from silence. The feedback is that of the single-precision filter.
void Filter(std::vector<double>& signal, const LowPassTaps& taps)
{
    const double b0 = static_cast<float>(taps.b0);
    const double b1 = static_cast<float>(taps.b1);
    const double b2 = static_cast<float>(taps.b2);
    const double a1 = static_cast<float>(taps.a1);
    const double a2 = static_cast<float>(taps.a2);
    double d1 = 0;
    double d2 = 0;
    for (double& value : signal) {
        const double x = value;
        value = b0 * x + d1;
        d1 = b1 * x - a1 * value + d2;
        d2 = b2 * x - a2 * value;
    }
}

std::vector<double> ImpulseResponse(std::span<const CEffectBWLowPass> cascade, uint32_t up, uint32_t slowest)
{
    std::vector<double> response(Periods * slowest);
    response[0] = up;
    for (const CEffectBWLowPass& stage : cascade)
        Filter(response, stage.Taps());
    double cut = 0;
    while (response.size() > 1 && (cut += std::fabs(response.back())) < Negligible)
        response.pop_back();
    return response;
}

float WeightedSum(const float* weights, const float* values, size_t count)
{
    std::array<float, Sums> sums{};
    for (size_t i = 0; i < count; i += Sums) {
        for (size_t k = 0; k < Sums; ++k)
            sums[k] += weights[i + k] * values[i + k];
    }
    return ((sums[0] + sums[4]) + (sums[2] + sums[6])) + ((sums[1] + sums[5]) + (sums[3] + sums[7]));
}

} // namespace

void PolyphaseFilter::Design(std::span<const CEffectBWLowPass> cascade, uint32_t up, uint32_t slowest)
{
    const std::vector<double> response = ImpulseResponse(cascade, up, slowest);
    m_up = up;
    m_taps = (response.size() + up * Sums - 1) / (up * Sums) * Sums;
    m_weights.assign(m_taps * up, 0.0F);
    for (size_t i = 0; i < response.size(); ++i)
        m_weights[i % up * m_taps + m_taps - 1 - i / up] = static_cast<float>(response[i]);
}

void PolyphaseFilter::Run(const float* input, uint64_t position, uint32_t step, float* output, uint32_t frames) const
{
    const uint32_t wholeStep = step / m_up;
    const uint32_t partStep = step % m_up;
    input += position / m_up;
    auto part = static_cast<uint32_t>(position % m_up);
    for (uint32_t i = 0; i < frames; ++i) {
        output[i] = WeightedSum(&m_weights[part * m_taps], input, m_taps);
        input += wholeStep;
        part += partStep;
        if (part >= m_up) {
            part -= m_up;
            ++input;
        }
    }
}

} // namespace ek
