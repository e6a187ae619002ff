// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "ek/SoundData.h"

#include <cstddef>
#include <cstdint>
#include <vector>

namespace ek {

// Between interleaved samples of a format (8-bit unsigned; 16-, 24- and 32-bit signed; 32-bit float, by the format's
// tag or sub-format) and one float buffer per channel. A value v of b bits is v / 2^(b-1): a full-scale negative value
// is -1.0, and 16-bit values come back unchanged. On the way back values are rounded to nearest, ties away from zero,
// and cut at the limits of the format; what is no number becomes 0. No other format is converted: nothing is written.

/// Whether the format is one of those: 1 to 8 channels whose samples fill the frame.
bool IsConvertible(const WAVEFORMATEXTENSIBLE& format);

/// Frames of `source` into the buffers of `sound`, from their frame `offset` on. `channel` is a position (0-based) of
/// the source that goes into the first buffer alone, or -1: every channel into the buffer of its position, as far as
/// there are both.
void MME2SD_BYSAMPLES(const void* source, uint64_t frames, _SOUNDDATAEX_& sound, const WAVEFORMATEXTENSIBLE& format,
                      uint32_t offset, int32_t channel);
/// All of a block of bytes; its last part frame is left out. Returns the frames.
uint64_t MME2SD(const void* source, uint64_t bytes, _SOUNDDATAEX_& sound, const WAVEFORMATEXTENSIBLE& format);
/// Frames from frame `offset` of the buffers on. Channels of the format without a buffer become silence.
void SD2MME(const _SOUNDDATAEX_& sound, uint32_t offset, uint64_t frames, void* destination,
            const WAVEFORMATEXTENSIBLE& format);

/// A record with buffers of its own, zeroed, of one capacity.
class SoundData {
public:
    SoundData() = default;
    SoundData(uint32_t channels, uint32_t frames) { Resize(channels, frames); }
    SoundData(const SoundData&) = delete;
    SoundData& operator=(const SoundData&) = delete;

    /// FrameCount becomes `frames`; all values 0. Allocates only when it has never been that large.
    void Resize(uint32_t channels, uint32_t frames);
    _SOUNDDATAEX_& Record() { return m_record; }
    const _SOUNDDATAEX_& Record() const { return m_record; }

private:
    _SOUNDDATAEX_ m_record;
    std::vector<float> m_values;
};

} // namespace ek
