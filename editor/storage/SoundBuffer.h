// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "servicefuncs/Channels.h"

#include <cstdint>
#include <functional>

namespace ek {

/// A run of frames in memory, as the processors of the store take and fill it: interleaved frames of a format,
/// or one channel of a sound held as mono. It does not own the data.
struct SoundBuffer {
    ChannelCode Code = ChannelAll;
    WAVEFORMATEXTENSIBLE Format;
    uint8_t* Data = nullptr;
    uint64_t FrameCount = 0;
    uint64_t FillPosition = 0; ///< frames already written by a processor that fills it chunk by chunk
    /// Told by FrameAt, which every use goes through, where the next frames are used; none: nobody wants to know.
    std::function<void(uint64_t index)> OnUse{};

    uint64_t ByteSize() const { return FrameCount * Format.nBlockAlign; }
    uint8_t* FrameAt(uint64_t index) const
    {
        if (OnUse)
            OnUse(index);
        return Data ? Data + index * Format.nBlockAlign : nullptr;
    }
    void Advance(uint64_t frames) { FillPosition += frames; }
};

} // namespace ek
