// SPDX-License-Identifier: GPL-3.0-or-later
#include "ekdatapr/Tags.h"

#include "ekdatapr/Id3.h"
#include "platform/Text.h"

namespace ek {

namespace {

// The library passes over longer texts when it reads them.
constexpr size_t MaxRiffTagBytes = 2000;

// No tag of text alone comes near it.
constexpr uint32_t MaxTagChunkBytes = uint32_t{1} << 24;

int ContainerOf(SNDFILE* file)
{
    SF_INFO info{};
    sf_command(file, SFC_GET_CURRENT_SF_INFO, &info, sizeof info);
    return info.format & SF_FORMAT_TYPEMASK;
}

bool IsRiff(int container)
{
    return container == SF_FORMAT_WAV || container == SF_FORMAT_WAVEX || container == SF_FORMAT_RF64;
}

SF_CHUNK_INFO ChunkOf(std::string_view id)
{
    SF_CHUNK_INFO chunk{};
    chunk.id_size = static_cast<unsigned>(id.copy(chunk.id, 4));
    return chunk;
}

std::string ReadChunk(SNDFILE* file, std::string_view id)
{
    SF_CHUNK_INFO chunk = ChunkOf(id);
    const SF_CHUNK_ITERATOR* place = sf_get_chunk_iterator(file, &chunk);
    if (!place || sf_get_chunk_size(place, &chunk) != SF_ERR_NO_ERROR || chunk.datalen > MaxTagChunkBytes)
        return {};
    std::string text(chunk.datalen, '\0');
    chunk.data = text.data();
    return sf_get_chunk_data(place, &chunk) == SF_ERR_NO_ERROR ? text : std::string();
}

/// Containers whose own tags are few carry an ID3 tag in a chunk.
TagMap ReadId3Chunk(SNDFILE* file)
{
    const int container = ContainerOf(file);
    if (!IsRiff(container) && container != SF_FORMAT_AIFF)
        return {};
    const std::string upper = ReadChunk(file, "ID3 ");
    return ReadId3Tag(upper.empty() ? ReadChunk(file, "id3 ") : upper);
}

void WriteId3Chunk(SNDFILE* file, const TagMap& tags)
{
    std::string tag = MakeId3Tag(tags, {});
    SF_CHUNK_INFO chunk = ChunkOf("ID3 ");
    chunk.data = tag.data();
    chunk.datalen = static_cast<unsigned>(tag.size());
    if (!tag.empty())
        sf_set_chunk(file, &chunk);
}

std::string ReadTag(SNDFILE* file, int sfString)
{
    std::string text;
    if (const char* found = sf_get_string(file, sfString))
        text = found;
    if (sfString == SF_STR_COPYRIGHT && !text.empty()) {
        // The library itself gives ASCII letters only of an AIFF copyright.
        if (const std::string raw = ReadChunk(file, "(c) ").c_str(); !raw.empty())
            text = raw;
    }
    return IsUtf8(text) ? text : FromLatin1(text);
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
    tags.merge(ReadId3Chunk(file)); // the container's own come first
    return tags;
}

void WriteTags(SNDFILE* file, const TagMap& tags)
{
    const int container = ContainerOf(file);
    const size_t maxBytes = IsRiff(container) ? MaxRiffTagBytes : std::string::npos;
    for (const TagName& tag : TagNames) {
        if (const auto found = tags.find(tag.Name); found != tags.end())
            sf_set_string(file, tag.SfString, std::string(CutAtCharacter(found->second, maxBytes)).c_str());
    }
    if (container == SF_FORMAT_AIFF)
        WriteId3Chunk(file, tags);
}

} // namespace ek
