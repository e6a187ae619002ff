// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <array>
#include <map>
#include <sndfile.h>
#include <string>
#include <string_view>

namespace ek {

/// Text tags of a sound by name: "title", "artist", "album", "track", "date", "genre", "comment", "copyright". UTF-8,
/// no empty ones.
using TagMap = std::map<std::string, std::string>;

/// A tag's names in the places that know it.
struct TagName {
    const char* Name;
    int SfString;
    const char* Id3Frame;
};

/// The most dispensable last.
inline constexpr std::array<TagName, 8> TagNames = {{
    {"title", SF_STR_TITLE, "TIT2"},
    {"artist", SF_STR_ARTIST, "TPE1"},
    {"album", SF_STR_ALBUM, "TALB"},
    {"track", SF_STR_TRACKNUMBER, "TRCK"},
    {"date", SF_STR_DATE, "TDRC"},
    {"genre", SF_STR_GENRE, "TCON"},
    {"copyright", SF_STR_COPYRIGHT, "TCOP"},
    {"comment", SF_STR_COMMENT, "COMM"},
}};

/// The longest part of `text`, from its start, of at most `maxBytes` that does not split a character.
std::string_view CutAtCharacter(std::string_view text, size_t maxBytes);

TagMap ReadTags(SNDFILE* file);
/// Before any sound; what the container cannot hold is cut or left out.
void WriteTags(SNDFILE* file, const TagMap& tags);

} // namespace ek
