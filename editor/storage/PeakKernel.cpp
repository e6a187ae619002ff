// SPDX-License-Identifier: GPL-3.0-or-later
#include "storage/PeakKernel.h"

#include <cassert>
#include <cstring>
#include <iterator>

namespace ek {

namespace {

constexpr size_t Lanes = 8;

/// In values. The processor's own prefetching ends at every page of memory; this reaches into the next one. What lies
/// behind the frames is not touched by it.
constexpr size_t PrefetchDistance = 2048;

using Vector = int16_t __attribute__((vector_size(2 * Lanes)));

Vector LoadVector(const int16_t* values)
{
    Vector vector;
    std::memcpy(&vector, values, sizeof vector);
    return vector;
}

/// Eight frames at a time: they fill `Channels` vectors, in which every lane belongs to one channel.
template <uint32_t Channels>
void ExtremesOf(const int16_t* frames, uint64_t count, PeakPair* extremes)
{
    Vector low[Channels];
    Vector high[Channels];
    for (uint32_t i = 0; i < Channels; ++i)
        low[i] = high[i] = LoadVector(frames + i * Lanes);
    const uint64_t groups = count / Lanes;
    for (uint64_t group = 1; group < groups; ++group) {
        const int16_t* values = frames + group * Lanes * Channels;
        __builtin_prefetch(values + PrefetchDistance, 0, 2);
        for (uint32_t i = 0; i < Channels; ++i) {
            const Vector vector = LoadVector(values + i * Lanes);
            low[i] = vector < low[i] ? vector : low[i];
            high[i] = vector > high[i] ? vector : high[i];
        }
    }
    // Where every vector has the same channel in the same lane they are brought together first.
    constexpr uint32_t kinds = Lanes % Channels == 0 ? 1 : Channels;
    for (uint32_t i = kinds; i < Channels; ++i) {
        low[0] = low[i] < low[0] ? low[i] : low[0];
        high[0] = high[i] > high[0] ? high[i] : high[0];
    }
    for (size_t value = 0; value < Lanes * kinds; ++value)
        Widen(extremes[value % Channels], {low[value / Lanes][value % Lanes], high[value / Lanes][value % Lanes]});
}

using Kernel = void (*)(const int16_t* frames, uint64_t count, PeakPair* extremes);
constexpr Kernel Kernels[] = {ExtremesOf<1>, ExtremesOf<2>, ExtremesOf<3>, ExtremesOf<4>,
                              ExtremesOf<5>, ExtremesOf<6>, ExtremesOf<7>, ExtremesOf<8>};

} // namespace

void InterleavedExtremes(const int16_t* frames, uint64_t count, uint32_t channels, PeakPair* extremes)
{
    assert(channels >= 1 && channels <= std::size(Kernels));
    for (uint32_t channel = 0; channel < channels; ++channel)
        extremes[channel] = NoPeak;
    if (count >= Lanes)
        Kernels[channels - 1](frames, count, extremes);
    for (uint64_t frame = count / Lanes * Lanes; frame < count; ++frame) {
        for (uint32_t channel = 0; channel < channels; ++channel) {
            const int16_t value = frames[frame * channels + channel];
            Widen(extremes[channel], {value, value});
        }
    }
}

} // namespace ek
