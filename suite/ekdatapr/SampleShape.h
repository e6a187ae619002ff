// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "ek/WaveFormat.h"

#include <cstdint>
#include <string>

namespace ek {

/// What one sample of a file is, by the format word of the sound library.
struct SampleShape {
    uint16_t Bits = 16;    ///< as told to others; lossy coders count as 16
    bool IsFloat = false;  ///< floating point in the file
    bool FitsShort = true; ///< every value of the file is a 16-bit value
    bool operator==(const SampleShape&) const = default;
};

SampleShape ShapeOf(int sfFormat);

/// The format record of a file with such samples. The mask 0 asks for the default one.
WAVEFORMATEXTENSIBLE MakeFileFormat(SampleShape shape, uint32_t rate, uint32_t channels, uint32_t mask);

/// For a person: "WAV (Microsoft), signed 16 bit PCM".
std::string FormatName(int sfFormat);

} // namespace ek
