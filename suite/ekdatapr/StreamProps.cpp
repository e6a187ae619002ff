// SPDX-License-Identifier: GPL-3.0-or-later
#include "ekdatapr/StreamProps.h"

#include "platform/Text.h"

#include <algorithm>
#include <cmath>
#include <string_view>

namespace ek {

namespace {

constexpr std::string_view Magic = "EkSP";
constexpr uint32_t Version = 1;
constexpr uint32_t NoQuality = 0xFFFFFFFF;
constexpr double QualityUnit = 1e6;
constexpr size_t HeaderBytes = 20;
constexpr size_t TagHeaderBytes = 3;

using Block = std::array<uint8_t, sizeof(StreamProperties)>;

void PutNumber(uint8_t* place, uint32_t value, size_t bytes)
{
    for (size_t i = 0; i < bytes; ++i)
        place[i] = static_cast<uint8_t>(value >> (8 * i));
}

uint32_t GetNumber(const uint8_t* place, size_t bytes)
{
    uint32_t value = 0;
    for (size_t i = 0; i < bytes; ++i)
        value |= static_cast<uint32_t>(place[i]) << (8 * i);
    return value;
}

void PackTags(const TagMap& tags, Block& block)
{
    size_t place = HeaderBytes;
    for (size_t i = 0; i < TagNames.size(); ++i) {
        const auto found = tags.find(TagNames[i].Name);
        if (found == tags.end() || block.size() - place <= TagHeaderBytes)
            continue;
        const std::string_view text = CutAtCharacter(found->second, block.size() - place - TagHeaderBytes);
        block[place] = static_cast<uint8_t>(i + 1);
        PutNumber(&block[place + 1], static_cast<uint32_t>(text.size()), 2);
        std::ranges::copy(text, block.begin() + static_cast<ptrdiff_t>(place + TagHeaderBytes));
        place += TagHeaderBytes + text.size();
    }
}

TagMap UnpackTags(const Block& block)
{
    TagMap tags;
    size_t place = HeaderBytes;
    while (block.size() - place > TagHeaderBytes && block[place] != 0) {
        const size_t index = block[place] - 1u;
        const size_t length = GetNumber(&block[place + 1], 2);
        place += TagHeaderBytes;
        if (index >= TagNames.size() || length > block.size() - place)
            break;
        const std::string text(reinterpret_cast<const char*>(&block[place]), length);
        if (!text.empty() && IsUtf8(text))
            tags[TagNames[index].Name] = text;
        place += length;
    }
    return tags;
}

} // namespace

StreamProperties Pack(const StreamFacts& facts)
{
    StreamProperties properties;
    Block& block = properties.Bytes;
    std::ranges::copy(Magic, block.begin());
    PutNumber(&block[4], Version, 4);
    PutNumber(&block[8], static_cast<uint32_t>(facts.SfFormat), 4);
    const bool hasQuality = facts.Quality >= 0;
    PutNumber(&block[12], hasQuality ? static_cast<uint32_t>(std::lround(facts.Quality * QualityUnit)) : NoQuality, 4);
    PutNumber(&block[16], facts.BitRate, 2);
    PutNumber(&block[18], facts.Channels, 2);
    PackTags(facts.Tags, block);
    return properties;
}

std::optional<StreamFacts> Unpack(const StreamProperties& properties)
{
    const Block& block = properties.Bytes;
    if (!std::equal(Magic.begin(), Magic.end(), block.begin()) || GetNumber(&block[4], 4) != Version)
        return {};
    StreamFacts facts;
    facts.SfFormat = static_cast<int>(GetNumber(&block[8], 4));
    const uint32_t quality = GetNumber(&block[12], 4);
    facts.Quality = quality == NoQuality ? -1 : std::min(quality / QualityUnit, 1.0);
    facts.BitRate = GetNumber(&block[16], 2);
    facts.Channels = GetNumber(&block[18], 2);
    facts.Tags = UnpackTags(block);
    return facts;
}

std::map<std::string, std::string> EkGetTags(const StreamProperties& properties)
{
    const std::optional<StreamFacts> facts = Unpack(properties);
    return facts ? facts->Tags : TagMap{};
}

} // namespace ek
