// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "ek/WaveFormat.h"

#include <cstdint>

namespace ek {

/// One block of sound in work: 32-bit float samples, one buffer per channel, full scale -1 .. +1. Whoever makes the
/// record owns the buffers; each holds at least FrameCount values.
struct _SOUNDDATAEX_ {
    static constexpr uint32_t MostChannels = 8;

    uint8_t Flags = 0;
    uint32_t ChannelCount = 0;
    float* Channels[MostChannels] = {};
    uint32_t FrameCount = 0; ///< frames wanted; who fills fewer has come to the end
    uint32_t Request = 0;    ///< in what a player asks for: nonzero wants frames, 0 is a notice. Elsewhere 0
    uint32_t Produced = 0;   ///< frames that an effect has produced
};

/// What a player hands to its callback; the callback returns the frames that it filled in. Fewer than wanted: there are
/// no more. A notice (Sound->Request is 0) wants nothing: with FrameCount 0 it is empty, with 1 the last frame has
/// been heard and the player has stopped.
struct PlayRequest {
    _SOUNDDATAEX_* Sound = nullptr;
    uint32_t Stamp = 0; ///< when the block's first frame is heard: milliseconds of CLOCK_MONOTONIC, modulo 2^32
};

/// What a recorder hands to its callback; the callback returns 1 when it took the bytes, else 0.
struct CaptureRequest {
    const uint8_t* Data = nullptr; ///< interleaved frames of the recorder's format
    uint32_t ByteCount = 0;
    uint32_t Stamp = 0; ///< when the block's first frame was captured, as in PlayRequest
};

} // namespace ek
