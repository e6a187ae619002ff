// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <cstddef>
#include <cstdint>
#include <memory>

struct soxr;

namespace ek {

/// Converts a stream of interleaved frames to another rate: linear phase, no delay, very high quality.
class RateConverter {
public:
    /// Null when the rates are too far apart for a conversion in bounded memory.
    static std::unique_ptr<RateConverter> Create(uint32_t fromRate, uint32_t toRate, uint32_t channels);
    ~RateConverter();
    RateConverter(const RateConverter&) = delete;
    RateConverter& operator=(const RateConverter&) = delete;

    struct Step {
        size_t Used = 0; ///< frames taken from `in`
        size_t Made = 0; ///< frames written to `out`
    };
    /// A null `in` says that the stream has ended; repeat then until nothing is made any more.
    Step Convert(const double* in, size_t inFrames, double* out, size_t outFrames);
    void Restart(); ///< for a new stream

private:
    explicit RateConverter(soxr* converter) : m_converter(converter) {}

    soxr* m_converter;
};

/// The length at `toRate` of a sound of `frames` at `fromRate`, rounded to nearest.
uint64_t ConvertedFrames(uint64_t frames, uint32_t fromRate, uint32_t toRate);

} // namespace ek
