// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <cstdint>
#include <memory>
#include <vector>

struct soxr;

namespace ek {

/// Brings interleaved frames to the rate of a card, where it differs; else they pass unchanged.
class RateStage {
public:
    RateStage(uint32_t fromRate, uint32_t toRate, uint32_t channels);

    bool IsUsable() const { return m_converter || m_fromRate == m_toRate; } ///< false: rates too far apart
    /// Frames at the new rate; they hold until the next call. A null `frames` says that the sound is over and gives
    /// what is left.
    struct Result {
        const float* Frames;
        uint32_t Count;
    };
    Result Convert(const float* frames, uint32_t count);
    /// Frames of the new rate that have gone in and are not out yet.
    uint32_t DelayFrames() const;

private:
    struct Delete {
        void operator()(soxr* converter) const;
    };

    uint32_t m_fromRate;
    uint32_t m_toRate;
    uint32_t m_channels;
    std::unique_ptr<soxr, Delete> m_converter;
    std::vector<float> m_out;
};

} // namespace ek
