// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "ekdatapr/EkDataPr.h"

#include <cstdint>

namespace ek {

/// What a store knows of its sound besides the bytes.
struct SoundRecord {
    WAVEFORMATEXTENSIBLE SourceFormat;  ///< of the file that the sound came from
    WAVEFORMATEXTENSIBLE WorkingFormat; ///< of the stored bytes; 16-bit
    StreamProperties StreamProps;
    uint64_t FrameCount = 0;

    uint64_t ByteLength() const { return FrameCount * WorkingFormat.nBlockAlign; }
};

} // namespace ek
