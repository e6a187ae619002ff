// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "ekdatapr/Tags.h"

#include <string>
#include <string_view>

namespace ek {

/// An ID3 tag (version 2.4) with the tags and the name of the encoder. Empty when there is nothing to say.
std::string MakeId3Tag(const TagMap& tags, std::string_view encoder);

/// The texts of a tag of version 2.3 or 2.4; none of bytes that are no such tag. What is compressed or encrypted is
/// passed over.
TagMap ReadId3Tag(std::string_view tag);

/// Bytes that the tag takes at the start of a file that begins with `header`, its first ten bytes; 0 for no tag.
uint64_t Id3TagLength(std::string_view header);

/// Text that is not UTF-8 is nearly always from a program that knew one byte a character only.
std::string FromLatin1(std::string_view bytes);

} // namespace ek
