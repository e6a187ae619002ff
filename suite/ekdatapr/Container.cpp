// SPDX-License-Identifier: GPL-3.0-or-later
#include "ekdatapr/Container.h"

#include "ekdatapr/Id3.h"

#include <algorithm>
#include <bit>
#include <numeric>
#include <sndfile.h>

namespace ek {

namespace {

constexpr int MaxChunks = 1000; // a file of garbage can have many
constexpr int MaxTagPages = 1000;

/// How the chunks of a container follow each other.
struct ChunkLayout {
    uint64_t First;
    uint64_t IdBytes; ///< the first four are letters
    size_t SizeBytes;
    bool BigEndian;
    bool CountsHeader; ///< the size is that of the whole chunk
    uint64_t Alignment;
};

constexpr ChunkLayout Riff{12, 4, 4, false, false, 2};
constexpr ChunkLayout Wave64{40, 16, 8, false, true, 8};
constexpr ChunkLayout Caf{8, 4, 8, true, false, 1};

struct Chunk {
    uint64_t SizePosition = 0;
    uint64_t Start = 0; ///< of its content
    uint64_t Size = 0;
};

std::string PeekBytes(const FileStream& file, uint64_t position, size_t count)
{
    std::string bytes(count, '\0');
    return file.Peek(bytes.data(), count, position) ? bytes : std::string();
}

/// 0 also where the file has no such number.
uint64_t PeekNumber(const FileStream& file, uint64_t position, size_t count, bool bigEndian = false)
{
    std::string bytes = PeekBytes(file, position, count);
    if (!bigEndian)
        std::ranges::reverse(bytes);
    return std::accumulate(bytes.begin(), bytes.end(), uint64_t{0},
                           [](uint64_t number, char byte) { return number << 8 | static_cast<uint8_t>(byte); });
}

std::string NumberBytes(uint64_t number, size_t count, bool bigEndian)
{
    std::string bytes;
    for (size_t i = 0; i < count; ++i)
        bytes += static_cast<char>(number >> (8 * (bigEndian ? count - 1 - i : i)));
    return bytes;
}

std::optional<Chunk> FindChunk(const FileStream& file, const ChunkLayout& layout, std::string_view id)
{
    uint64_t place = layout.First;
    for (int i = 0; i < MaxChunks; ++i) {
        const std::string found = PeekBytes(file, place, 4);
        if (found.empty())
            break;
        Chunk chunk{.SizePosition = place + layout.IdBytes};
        chunk.Start = chunk.SizePosition + layout.SizeBytes;
        chunk.Size = PeekNumber(file, chunk.SizePosition, layout.SizeBytes, layout.BigEndian);
        if (layout.CountsHeader)
            chunk.Size -= std::min(chunk.Size, chunk.Start - place);
        if (found == id)
            return chunk;
        if (chunk.Size > file.Length())
            break;
        place = (chunk.Start + chunk.Size + layout.Alignment - 1) / layout.Alignment * layout.Alignment;
    }
    return {};
}

std::optional<HeaderPatch> PatchRiff(const FileStream& file)
{
    constexpr uint64_t sizePosition = 4;
    constexpr uint64_t unfinishedSize = 8; // as the library knows it
    const uint64_t told = PeekNumber(file, sizePosition, 4) + sizePosition + 4;
    if (told == file.Length() || told == file.Length() + 1) // the last byte is padding
        return {};
    return HeaderPatch{sizePosition, NumberBytes(unfinishedSize, 4, false)};
}

std::optional<HeaderPatch> PatchRf64(const FileStream& file)
{
    constexpr uint64_t sizesPosition = 20; // of the file and of the sound
    const std::optional<Chunk> data = FindChunk(file, Riff, "data");
    if (!data || data->Start >= file.Length() || PeekNumber(file, sizesPosition + 8, 8) != 0)
        return {};
    return HeaderPatch{sizesPosition,
                       NumberBytes(file.Length() - 8, 8, false) + NumberBytes(file.Length() - data->Start, 8, false)};
}

std::optional<HeaderPatch> PatchAu(const FileStream& file)
{
    constexpr uint64_t sizePosition = 8;
    if (PeekNumber(file, sizePosition, 4) != 0)
        return {};
    return HeaderPatch{sizePosition, NumberBytes(0xFFFFFFFF, 4, true)}; // unknown
}

std::optional<HeaderPatch> PatchCaf(const FileStream& file)
{
    constexpr uint64_t unknown = ~uint64_t{0};
    const std::optional<Chunk> data = FindChunk(file, Caf, "data");
    if (!data || data->Start >= file.Length() || data->Size != unknown)
        return {};
    return HeaderPatch{data->SizePosition, NumberBytes(file.Length() - data->Start, 8, true)};
}

} // namespace

std::optional<HeaderPatch> PatchUnfinished(const FileStream& file)
{
    const std::string mark = PeekBytes(file, 0, 4);
    if (mark == "RIFF" && PeekBytes(file, 8, 4) == "WAVE")
        return PatchRiff(file);
    if (mark == "RF64")
        return PatchRf64(file);
    if (mark == ".snd" || mark == "dns.")
        return PatchAu(file);
    return mark == "caff" ? PatchCaf(file) : std::nullopt;
}

std::optional<uint64_t> FramesInBlocks(const FileStream& file, int sfFormat)
{
    const int coding = sfFormat & SF_FORMAT_SUBMASK;
    if (coding != SF_FORMAT_IMA_ADPCM && coding != SF_FORMAT_MS_ADPCM && coding != SF_FORMAT_GSM610)
        return {};
    const std::string mark = PeekBytes(file, 0, 4);
    if (mark != "RIFF" && mark != "riff")
        return {};
    const ChunkLayout& layout = mark == "RIFF" ? Riff : Wave64;
    const std::optional<Chunk> fact = FindChunk(file, layout, "fact");
    const uint64_t frames =
        fact && fact->Size >= layout.SizeBytes ? PeekNumber(file, fact->Start, layout.SizeBytes) : 0;
    return frames > 0 ? std::optional(frames) : std::nullopt;
}

std::string WithFactFrames(std::string header, uint64_t frames)
{
    const ChunkLayout& layout = header.starts_with("RIFF") ? Riff : Wave64;
    const size_t id = header.find("fact");
    const size_t place = id + layout.IdBytes + layout.SizeBytes;
    if (id != std::string::npos && place + layout.SizeBytes <= header.size())
        header.replace(place, layout.SizeBytes, NumberBytes(frames, layout.SizeBytes, false));
    return header;
}

uint64_t TagBytes(const FileStream& file)
{
    const uint64_t id3Bytes = Id3TagLength(PeekBytes(file, 0, 10));
    if (id3Bytes > 0)
        return std::min(id3Bytes, file.Length());
    // Pages of an Ogg stream without sound end at the position 0, or in the middle of a packet.
    constexpr uint64_t headerBytes = 27;
    uint64_t place = 0;
    for (int i = 0; i < MaxTagPages; ++i) {
        const std::string header = PeekBytes(file, place, headerBytes);
        const uint64_t position = PeekNumber(file, place + 6, 8);
        if (!header.starts_with("OggS") || (position != 0 && position != ~uint64_t{0}))
            break;
        const auto segments = static_cast<uint8_t>(header[headerBytes - 1]);
        const std::string lengths = PeekBytes(file, place + headerBytes, segments);
        place = std::accumulate(lengths.begin(), lengths.end(), place + headerBytes + segments,
                                [](uint64_t sum, char length) { return sum + static_cast<uint8_t>(length); });
    }
    return std::min(place, file.Length());
}

} // namespace ek
