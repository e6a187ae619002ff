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

/// Whether a store can hold sound that comes in this format: 1 to 8 channels of 8 or 16 bits, with the frame size
/// that follows and a rate.
bool IsStorable(const WAVEFORMATEXTENSIBLE& format);

/// The record with 16 bits and what follows from them, when it has 8; itself otherwise.
WAVEFORMATEXTENSIBLE WidenTo16Bits(WAVEFORMATEXTENSIBLE format);

} // namespace ek
