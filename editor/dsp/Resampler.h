// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "ek/WaveFormat.h"

#include <cstdint>

namespace ek {

using StatusCode = uint32_t;
inline constexpr StatusCode StatusOk = 0;
inline constexpr StatusCode StatusFailed = 0x80004005;

/// Converts a stream of interleaved PCM blocks into another format: rate, mono and stereo, sample width. The state
/// carries over from block to block. One thread at a time.
class IResampler {
public:
    /// Fails, and changes nothing, when a format is missing (null) or cannot be converted (see IsConvertible; a rate of
    /// 0). `outputBytes` becomes the size that no output block of an input block of `inputBytes` exceeds. The first
    /// call of a stream.
    virtual StatusCode Init(const WAVEFORMATEXTENSIBLE* input, uint32_t inputBytes, const WAVEFORMATEXTENSIBLE* output,
                            uint32_t* outputBytes) = 0;
    /// Converts the whole frames of one block. `written` becomes the bytes written, never more than `capacity`. Fails
    /// before Init, for an empty input, and for a change of channels other than 2 to 1, 1 to 2, or mono to any at equal
    /// rate and width; also when the output does not fit, and then the block has not been taken and may come again. Of
    /// two equal formats a block that does not fit succeeds, with nothing written.
    virtual StatusCode Process(const void* input, uint32_t inputBytes, void* output, uint32_t capacity,
                               uint32_t* written) = 0;
    virtual StatusCode Reset() = 0; ///< a new stream of the same formats
    virtual StatusCode Uninit() = 0;
    virtual StatusCode Release() = 0; ///< destroys the object
    virtual StatusCode GetInputFormat(WAVEFORMATEXTENSIBLE* format) = 0;
    virtual StatusCode GetOutputFormat(WAVEFORMATEXTENSIBLE* format) = 0;

protected:
    virtual ~IResampler() = default;
};

/// Always returns 0; `resampler` is null when there was no memory.
StatusCode CreateResampler(IResampler** resampler);

} // namespace ek
