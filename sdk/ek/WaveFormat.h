// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <array>
#include <cstdint>

namespace ek {

inline constexpr uint16_t WAVE_FORMAT_PCM = 0x0001;
inline constexpr uint16_t WAVE_FORMAT_IEEE_FLOAT = 0x0003;
inline constexpr uint16_t WAVE_FORMAT_EXTENSIBLE = 0xFFFE;

/// Sub-format identifiers as they stand in files: the format tag, then the fixed tail of the family.
inline constexpr std::array<uint8_t, 16> KSDATAFORMAT_SUBTYPE_PCM = {0x01, 0x00, 0x00, 0x00, 0x00, 0x00, 0x10, 0x00,
                                                                     0x80, 0x00, 0x00, 0xAA, 0x00, 0x38, 0x9B, 0x71};
inline constexpr std::array<uint8_t, 16> KSDATAFORMAT_SUBTYPE_IEEE_FLOAT = {
    0x03, 0x00, 0x00, 0x00, 0x00, 0x00, 0x10, 0x00, 0x80, 0x00, 0x00, 0xAA, 0x00, 0x38, 0x9B, 0x71};

#pragma pack(push, 1)
/// The sample format of a stream of interleaved frames: 40 bytes, little-endian, compared byte for byte.
/// A format tag of 0 means "no format". nBlockAlign is the size of one frame in bytes.
struct WAVEFORMATEXTENSIBLE {
    uint16_t wFormatTag = 0;
    uint16_t nChannels = 0;
    uint32_t nSamplesPerSec = 0;
    uint32_t nAvgBytesPerSec = 0;
    uint16_t nBlockAlign = 0;
    uint16_t wBitsPerSample = 0;
    uint16_t cbSize = 0;
    uint16_t wValidBitsPerSample = 0;
    uint32_t dwChannelMask = 0;
    std::array<uint8_t, 16> SubFormat{};

    bool operator==(const WAVEFORMATEXTENSIBLE&) const = default;
};
#pragma pack(pop)
static_assert(sizeof(WAVEFORMATEXTENSIBLE) == 40);

} // namespace ek
