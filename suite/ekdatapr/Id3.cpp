// SPDX-License-Identifier: GPL-3.0-or-later
#include "ekdatapr/Id3.h"

#include "platform/Text.h"

#include <algorithm>

namespace ek {

namespace {

constexpr size_t HeaderBytes = 10; // of the tag and of each frame
constexpr uint8_t Unsynchronised = 0x80;
constexpr uint8_t ExtendedHeader = 0x40;
constexpr uint8_t FooterPresent = 0x10;

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

uint8_t ByteAt(std::string_view bytes, size_t place)
{
    return static_cast<uint8_t>(bytes[place]);
}

uint32_t SizeAt(std::string_view bytes, size_t place, int bitsPerByte)
{
    uint32_t size = 0;
    for (size_t i = 0; i < 4; ++i)
        size = (size << bitsPerByte) | (ByteAt(bytes, place + i) & ((1u << bitsPerByte) - 1));
    return size;
}

/// A zero byte was put behind each FF.
std::string Resynchronise(std::string_view bytes)
{
    std::string result;
    for (size_t i = 0; i < bytes.size(); ++i) {
        if (bytes[i] != 0 || i == 0 || ByteAt(bytes, i - 1) != 0xFF)
            result += bytes[i];
    }
    return result;
}

std::string FromUtf16(std::string_view bytes, bool bigEndian)
{
    std::u16string text;
    for (size_t i = 0; i + 1 < bytes.size(); i += 2) {
        const auto unit = static_cast<char16_t>(ByteAt(bytes, i + bigEndian) | ByteAt(bytes, i + !bigEndian) << 8);
        if (text.empty() && unit == 0xFFFE)
            bigEndian = !bigEndian;
        else if (unit != 0xFEFF)
            text += unit;
    }
    return ToUtf8(text);
}

std::string Decode(uint8_t encoding, std::string_view bytes)
{
    if (encoding == 1 || encoding == 2)
        return FromUtf16(bytes, encoding == 2);
    return encoding == 3 && IsUtf8(bytes) ? std::string(bytes) : FromLatin1(bytes);
}

/// The text of a frame's content, of several the first. A comment has its language and a description in front.
std::string TextOf(std::string_view id, std::string_view content)
{
    if (content.empty())
        return {};
    const bool isComment = id == "COMM";
    std::string text = Decode(ByteAt(content, 0), content.substr(std::min<size_t>(content.size(), isComment ? 4 : 1)));
    if (isComment)
        text.erase(0, text.find('\0') + 1);
    return text.c_str();
}

void AddFrame(TagMap& tags, std::string_view id, std::string_view content)
{
    if (id == "TYER")
        id = "TDRC"; // the date of version 2.3
    const auto name = std::ranges::find(TagNames, id, &TagName::Id3Frame);
    if (name == TagNames.end())
        return;
    if (std::string text = TextOf(id, content); !text.empty())
        tags.try_emplace(name->Name, std::move(text));
}

TagMap ReadFrames(std::string_view frames, int bitsPerSizeByte)
{
    TagMap tags;
    while (frames.size() > HeaderBytes && frames[0] != 0) {
        const size_t size = SizeAt(frames, 4, bitsPerSizeByte);
        if (size > frames.size() - HeaderBytes)
            break;
        if (frames[9] == 0)
            AddFrame(tags, frames.substr(0, 4), frames.substr(HeaderBytes, size));
        frames.remove_prefix(HeaderBytes + size);
    }
    return tags;
}

} // namespace

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

TagMap ReadId3Tag(std::string_view tag)
{
    const uint64_t length = Id3TagLength(tag);
    const uint8_t version = length > 0 ? ByteAt(tag, 3) : 0;
    if (length > tag.size() || (version != 3 && version != 4))
        return {};
    const uint8_t flags = ByteAt(tag, 5);
    const std::string_view stored = tag.substr(HeaderBytes, length - HeaderBytes);
    // Version 2.4 marks each frame of its own.
    const std::string body = (flags & Unsynchronised) && version == 3 ? Resynchronise(stored) : std::string(stored);
    std::string_view frames = body;
    if ((flags & ExtendedHeader) && frames.size() >= 4)
        frames.remove_prefix(
            std::min<size_t>(frames.size(), version == 3 ? SizeAt(frames, 0, 8) + size_t{4} : SizeAt(frames, 0, 7)));
    return ReadFrames(frames, version == 3 ? 8 : 7);
}

uint64_t Id3TagLength(std::string_view header)
{
    if (header.size() < HeaderBytes || !header.starts_with("ID3"))
        return 0;
    const bool footer = ByteAt(header, 5) & FooterPresent;
    return HeaderBytes + uint64_t{SizeAt(header, 6, 7)} + (footer ? HeaderBytes : 0);
}

std::string FromLatin1(std::string_view bytes)
{
    std::u16string characters;
    for (const char byte : bytes)
        characters += static_cast<unsigned char>(byte);
    return ToUtf8(characters);
}

} // namespace ek
