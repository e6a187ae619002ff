// SPDX-License-Identifier: GPL-3.0-or-later
#include "ekdatapr/Tags.h"

#include "platform/Text.h"

namespace ek {

namespace {

// The library passes over longer texts when it reads them.
constexpr size_t MaxRiffTagBytes = 2000;

bool IsRiff(SNDFILE* file)
{
    SF_INFO info{};
    sf_command(file, SFC_GET_CURRENT_SF_INFO, &info, sizeof info);
    const int container = info.format & SF_FORMAT_TYPEMASK;
    return container == SF_FORMAT_WAV || container == SF_FORMAT_WAVEX || container == SF_FORMAT_RF64;
}

/// Text that is not UTF-8 is nearly always from a program that knew one byte a character only.
std::string FromLatin1(std::string_view bytes)
{
    std::u16string characters;
    for (const char byte : bytes)
        characters += static_cast<unsigned char>(byte);
    return ToUtf8(characters);
}

/// The text of an AIFF copyright chunk, of which the library itself gives ASCII letters only.
std::string ReadCopyrightChunk(SNDFILE* file)
{
    SF_CHUNK_INFO chunk{};
    chunk.id_size = 4;
    std::string_view("(c) ").copy(chunk.id, chunk.id_size);
    const SF_CHUNK_ITERATOR* place = sf_get_chunk_iterator(file, &chunk);
    if (!place || sf_get_chunk_size(place, &chunk) != SF_ERR_NO_ERROR || chunk.datalen > 0xFFFF)
        return {};
    std::string text(chunk.datalen, '\0');
    chunk.data = text.data();
    if (sf_get_chunk_data(place, &chunk) != SF_ERR_NO_ERROR)
        return {};
    return text.c_str();
}

std::string ReadTag(SNDFILE* file, int sfString)
{
    std::string text;
    if (const char* found = sf_get_string(file, sfString))
        text = found;
    if (sfString == SF_STR_COPYRIGHT && !text.empty()) {
        if (std::string raw = ReadCopyrightChunk(file); !raw.empty())
            text = raw;
    }
    return IsUtf8(text) ? text : FromLatin1(text);
}

/// ID3 sizes have seven bits a byte, so that no byte of them looks like the start of sound.
std::string Id3Size(size_t size)
{
    std::string bytes;
    for (int shift = 21; shift >= 0; shift -= 7)
        bytes += static_cast<char>((size >> shift) & 0x7F);
    return bytes;
}

std::string Id3Frame(std::string_view id, std::string_view text)
{
    constexpr char utf8Encoding = 3;
    std::string content(1, utf8Encoding);
    if (id == "COMM")
        content += std::string_view("und\0", 4); // language unknown, no description
    content += text;
    return std::string(id) + Id3Size(content.size()) + std::string(2, '\0') + content;
}

} // namespace

std::string_view CutAtCharacter(std::string_view text, size_t maxBytes)
{
    if (text.size() <= maxBytes)
        return text;
    const auto continues = [&](size_t at) { return (static_cast<uint8_t>(text[at]) & 0xC0) == 0x80; };
    while (maxBytes > 0 && continues(maxBytes))
        --maxBytes;
    return text.substr(0, maxBytes);
}

TagMap ReadTags(SNDFILE* file)
{
    TagMap tags;
    for (const TagName& tag : TagNames) {
        if (std::string text = ReadTag(file, tag.SfString); !text.empty())
            tags[tag.Name] = std::move(text);
    }
    return tags;
}

void WriteTags(SNDFILE* file, const TagMap& tags)
{
    const size_t maxBytes = IsRiff(file) ? MaxRiffTagBytes : std::string::npos;
    for (const TagName& tag : TagNames) {
        if (const auto found = tags.find(tag.Name); found != tags.end())
            sf_set_string(file, tag.SfString, std::string(CutAtCharacter(found->second, maxBytes)).c_str());
    }
}

std::string MakeId3Tag(const TagMap& tags, std::string_view encoder)
{
    std::string frames;
    for (const TagName& tag : TagNames) {
        if (const auto found = tags.find(tag.Name); found != tags.end())
            frames += Id3Frame(tag.Id3Frame, found->second);
    }
    if (!encoder.empty())
        frames += Id3Frame("TSSE", encoder);
    if (frames.empty())
        return {};
    return std::string("ID3\x04\0\0", 6) + Id3Size(frames.size()) + frames;
}

} // namespace ek
