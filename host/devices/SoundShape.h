// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "ek/WaveFormat.h"

#include <cstdint>
#include <string>

namespace ek {

/// What a module has set on a device: the format and the buffers, as they were set. What cannot be is brought into
/// bounds only where it is used.
class SoundShape {
public:
    uint32_t BufferCount = 5;
    uint32_t BufferBytes = 4096;

    SoundShape(); ///< 44.1 kHz stereo, 16 bits
    const WAVEFORMATEXTENSIBLE& Format() const { return m_format; }
    void SetFormat(const WAVEFORMATEXTENSIBLE& format) { m_format = format; }

    std::string Fault() const;    ///< why the format cannot be used, for a person; else empty
    uint32_t BlockFrames() const; ///< of one buffer; for a format without fault
    uint32_t BlockCount() const;

private:
    WAVEFORMATEXTENSIBLE m_format;
};

} // namespace ek
