// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "ekdatapr/EkDataPr.h"
#include "ekdatapr/Tags.h"

#include <cstdint>
#include <optional>

namespace ek {

/// How a file was encoded and what its tags say.
struct StreamFacts {
    int SfFormat = 0;      ///< format word of the sound library
    double Quality = -1;   ///< 0 to 1; negative when it is unknown or has no meaning
    uint32_t BitRate = 0;  ///< kbit/s; 0 when it is unknown or has no meaning
    uint32_t Channels = 0; ///< 0 when it is unknown
    TagMap Tags;
    bool operator==(const StreamFacts&) const = default;
};

// The block, little-endian, unused bytes zero. Sessions keep it, so its layout stays:
//   0  4 bytes  "EkSP"
//   4  u32      version, 1
//   8  u32      format word
//  12  u32      quality in millionths, 0xFFFFFFFF for none
//  16  u16      bit rate
//  18  u16      channels; 0 in blocks that are older than this field
//  20  tags, each: u8 index in TagNames plus 1, u16 length, text; a zero index ends them

/// Tags that do not fit are cut at a character, the last of TagNames first.
StreamProperties Pack(const StreamFacts& facts);
/// Nothing for a block that does not hold facts, whatever its bytes.
std::optional<StreamFacts> Unpack(const StreamProperties& properties);

} // namespace ek
