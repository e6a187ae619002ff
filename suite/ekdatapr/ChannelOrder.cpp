// SPDX-License-Identifier: GPL-3.0-or-later
#include "ekdatapr/ChannelOrder.h"

#include "platform/Text.h"
#include "servicefuncs/Channels.h"

#include <algorithm>
#include <array>
#include <bit>
#include <charconv>
#include <numeric>
#include <string_view>

namespace ek {

namespace {

struct MapEntry {
    int Position;
    uint32_t MaskBit;
};

// The first name of a speaker is the one that is written: containers look their layouts up by it.
constexpr std::array<MapEntry, 21> Positions = {{
    {SF_CHANNEL_MAP_LEFT, 0x1},
    {SF_CHANNEL_MAP_RIGHT, 0x2},
    {SF_CHANNEL_MAP_CENTER, 0x4},
    {SF_CHANNEL_MAP_LFE, 0x8},
    {SF_CHANNEL_MAP_REAR_LEFT, 0x10},
    {SF_CHANNEL_MAP_REAR_RIGHT, 0x20},
    {SF_CHANNEL_MAP_FRONT_LEFT_OF_CENTER, 0x40},
    {SF_CHANNEL_MAP_FRONT_RIGHT_OF_CENTER, 0x80},
    {SF_CHANNEL_MAP_REAR_CENTER, 0x100},
    {SF_CHANNEL_MAP_SIDE_LEFT, 0x200},
    {SF_CHANNEL_MAP_SIDE_RIGHT, 0x400},
    {SF_CHANNEL_MAP_TOP_CENTER, 0x800},
    {SF_CHANNEL_MAP_TOP_FRONT_LEFT, 0x1000},
    {SF_CHANNEL_MAP_TOP_FRONT_CENTER, 0x2000},
    {SF_CHANNEL_MAP_TOP_FRONT_RIGHT, 0x4000},
    {SF_CHANNEL_MAP_TOP_REAR_LEFT, 0x8000},
    {SF_CHANNEL_MAP_TOP_REAR_CENTER, 0x10000},
    {SF_CHANNEL_MAP_TOP_REAR_RIGHT, 0x20000},
    {SF_CHANNEL_MAP_FRONT_LEFT, 0x1},
    {SF_CHANNEL_MAP_FRONT_RIGHT, 0x2},
    {SF_CHANNEL_MAP_FRONT_CENTER, 0x4},
}};

uint32_t MaskBitOf(int position)
{
    if (position == SF_CHANNEL_MAP_MONO)
        return 0x4;
    const auto entry = std::ranges::find(Positions, position, &MapEntry::Position);
    return entry == Positions.end() ? 0 : entry->MaskBit;
}

// Channels of Ogg files are left, centre, right, then the rear and the low frequency.
const std::array<ChannelOrder, 9> OggOrders = {{
    {},
    {},
    {},
    {0x7, {0, 2, 1}},
    {0x33, {}},
    {0x37, {0, 2, 1, 3, 4}},
    {0x3F, {0, 2, 1, 5, 3, 4}},
    {0x70F, {0, 2, 1, 6, 5, 3, 4}},
    {0x63F, {0, 2, 1, 7, 5, 6, 3, 4}},
}};

constexpr std::string_view SpeakersName = "Ek Wave Editor (speakers ";

bool IsFlac(int sfFormat)
{
    return (sfFormat & SF_FORMAT_TYPEMASK) == SF_FORMAT_FLAC;
}

/// The mask in the name of the encoder; 0 when there is none.
uint32_t MaskByName(SNDFILE* file, int channels)
{
    const char* software = sf_get_string(file, SF_STR_SOFTWARE);
    const std::string_view name = software ? software : "";
    const size_t place = name.find(SpeakersName);
    uint32_t mask = 0;
    if (place != std::string_view::npos)
        std::from_chars(name.data() + place + SpeakersName.size(), name.data() + name.size(), mask, 16);
    return std::popcount(mask) == channels ? mask : 0;
}

ChannelOrder OrderByMaskBits(const std::vector<uint32_t>& bits)
{
    ChannelOrder order;
    for (const uint32_t bit : bits)
        order.Mask |= bit;
    if (static_cast<size_t>(std::popcount(order.Mask)) != bits.size())
        return {}; // a speaker twice, or one without a name
    if (std::ranges::is_sorted(bits))
        return order;
    order.From.resize(bits.size());
    std::iota(order.From.begin(), order.From.end(), uint8_t{0});
    std::ranges::sort(order.From, {}, [&](uint8_t place) { return bits[place]; });
    return order;
}

} // namespace

ChannelOrder FixedChannelOrder(int sfFormat, uint32_t channels)
{
    const int container = sfFormat & SF_FORMAT_TYPEMASK;
    if (channels >= OggOrders.size() || (container != SF_FORMAT_OGG && container != SF_FORMAT_FLAC))
        return {};
    ChannelOrder order = OggOrders[channels];
    if (IsFlac(sfFormat))
        order.From.clear(); // the same speakers in the order of their mask bits
    return order;
}

ChannelOrder ReadChannelOrder(SNDFILE* file, const SF_INFO& info)
{
    if (const uint32_t mask = IsFlac(info.format) ? MaskByName(file, info.channels) : 0)
        return {mask, {}};
    std::vector<int> map(static_cast<size_t>(info.channels));
    const auto mapBytes = static_cast<int>(map.size() * sizeof(int));
    if (!sf_command(file, SFC_GET_CHANNEL_MAP_INFO, map.data(), mapBytes))
        return FixedChannelOrder(info.format, static_cast<uint32_t>(info.channels));
    std::vector<uint32_t> bits(map.size());
    std::ranges::transform(map, bits.begin(), MaskBitOf);
    return OrderByMaskBits(bits);
}

std::string MakeSpeakersName(int sfFormat, uint32_t channels, uint32_t mask)
{
    uint32_t usual = FixedChannelOrder(sfFormat, channels).Mask;
    if (usual == 0)
        usual = DefaultChannelMask(channels);
    if (!IsFlac(sfFormat) || mask == usual)
        return {};
    return Format("%s%x)", SpeakersName.data(), mask);
}

bool WriteChannelMap(SNDFILE* file, uint32_t mask)
{
    std::vector<int> map;
    for (const MapEntry& entry : Positions) {
        if (mask & entry.MaskBit) {
            map.push_back(entry.Position);
            mask &= ~entry.MaskBit;
        }
    }
    return sf_command(file, SFC_SET_CHANNEL_MAP_INFO, map.data(), static_cast<int>(map.size() * sizeof(int))) != 0;
}

} // namespace ek
