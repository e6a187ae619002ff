// SPDX-License-Identifier: GPL-3.0-or-later
#include "ekdatapr/Dither.h"

#include <algorithm>
#include <cmath>

namespace ek {

namespace {

/// Well mixed bits of a counter (the finaliser of splitmix64).
uint64_t Scramble(uint64_t index)
{
    uint64_t bits = (index + 1) * 0x9E3779B97F4A7C15u;
    bits = (bits ^ (bits >> 30)) * 0xBF58476D1CE4E5B9u;
    bits = (bits ^ (bits >> 27)) * 0x94D049BB133111EBu;
    return bits ^ (bits >> 31);
}

/// The difference of two even distributions over [0, 1).
double TriangularNoise(uint64_t index)
{
    constexpr double unit = 1.0 / 4294967296.0;
    const uint64_t bits = Scramble(index);
    const auto first = static_cast<uint32_t>(bits);
    const auto second = static_cast<uint32_t>(bits >> 32);
    return (static_cast<double>(first) - static_cast<double>(second)) * unit;
}

double Clamped(double sample)
{
    return std::isnan(sample) ? 0.0 : std::clamp(sample, -1.0, 1.0);
}

template <int Levels>
int Dithered(double sample, uint64_t index)
{
    double value = Clamped(sample) * Levels;
    const double nearest = std::floor(value + 0.5);
    if (nearest != value)
        value = std::floor(value + TriangularNoise(index) + 0.5);
    return static_cast<int>(std::clamp(value, -1.0 * Levels, Levels - 1.0));
}

int64_t Rounded(double sample, double levels)
{
    return static_cast<int64_t>(std::min(std::floor(Clamped(sample) * levels + 0.5), levels - 1));
}

} // namespace

void DitherTo16(const double* samples, size_t count, uint64_t firstIndex, int16_t* out)
{
    for (size_t i = 0; i < count; ++i)
        out[i] = static_cast<int16_t>(Dithered<32768>(samples[i], firstIndex + i));
}

void DitherTo8(const double* samples, size_t count, uint64_t firstIndex, int16_t* out)
{
    for (size_t i = 0; i < count; ++i)
        out[i] = static_cast<int16_t>(Dithered<128>(samples[i], firstIndex + i) * 256);
}

void RoundTo24(const double* samples, size_t count, int32_t* out)
{
    for (size_t i = 0; i < count; ++i)
        out[i] = static_cast<int32_t>(Rounded(samples[i], 8388608.0) * 256);
}

void RoundTo32(const double* samples, size_t count, int32_t* out)
{
    for (size_t i = 0; i < count; ++i)
        out[i] = static_cast<int32_t>(Rounded(samples[i], 2147483648.0));
}

void ClampToFullScale(double* samples, size_t count)
{
    std::transform(samples, samples + count, samples, Clamped);
}

} // namespace ek
