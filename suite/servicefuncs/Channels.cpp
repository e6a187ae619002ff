// SPDX-License-Identifier: GPL-3.0-or-later
#include "servicefuncs/Channels.h"

#include <array>
#include <bit>

namespace ek {

namespace {

struct Speaker {
    uint32_t MaskBit;
    ChannelCode Code;
    const char* Name;
};

// In the order of the mask bits, which is the order of the channels within a frame.
constexpr std::array<Speaker, 11> Speakers = {{
    {0x001, ChannelFrontLeft, "Front Left"},
    {0x002, ChannelFrontRight, "Front Right"},
    {0x004, ChannelFrontCentre, "Front Centre"},
    {0x008, ChannelLowFrequency, "Low Frequency"},
    {0x010, ChannelBackLeft, "Back Left"},
    {0x020, ChannelBackRight, "Back Right"},
    {0x040, ChannelFrontLeftOfCentre, "Front Left of Centre"},
    {0x080, ChannelFrontRightOfCentre, "Front Right of Centre"},
    {0x100, ChannelBackCentre, "Back Centre"},
    {0x200, ChannelSideLeft, "Side Left"},
    {0x400, ChannelSideRight, "Side Right"},
}};
constexpr uint32_t KnownMask = 0x7FF;
constexpr uint32_t OneChannelMask = 0x4;
constexpr uint16_t ExtensionBytes = 22;

uint32_t MaskInForce(const WAVEFORMATEXTENSIBLE& format)
{
    const uint32_t mask = format.dwChannelMask;
    const bool fits = (mask & ~KnownMask) == 0 && std::popcount(mask) == format.nChannels;
    return fits ? mask : DefaultChannelMask(format.nChannels);
}

} // namespace

uint32_t GetIndexByChannel(const WAVEFORMATEXTENSIBLE& format, ChannelCode code)
{
    for (uint32_t position = 0; code != ChannelAll && position < format.nChannels; ++position) {
        if (GetChannelByIndex(format, position) == code)
            return position;
    }
    return NoChannel;
}

ChannelCode GetChannelByIndex(const WAVEFORMATEXTENSIBLE& format, uint32_t position)
{
    if (position >= format.nChannels)
        return ChannelAll;
    if (format.nChannels <= 2)
        return position == 0 ? ChannelLeft : ChannelRight;
    const uint32_t mask = MaskInForce(format);
    uint32_t speakersBefore = 0;
    for (const Speaker& speaker : Speakers) {
        if ((mask & speaker.MaskBit) && speakersBefore++ == position)
            return speaker.Code;
    }
    return ChannelAll;
}

std::string GetChannelName(ChannelCode code)
{
    if (code == ChannelLeft)
        return "Left";
    if (code == ChannelRight)
        return "Right";
    for (const Speaker& speaker : Speakers) {
        if (speaker.Code == code)
            return speaker.Name;
    }
    return "All Channels";
}

uint32_t DefaultChannelMask(uint32_t channels)
{
    constexpr std::array<uint32_t, MaxChannels + 1> masks = {0,     OneChannelMask, 0x3,   0xB,  0x33,
                                                             0x10F, 0x3F,           0x70F, 0x63F};
    return channels < masks.size() ? masks[channels] : 0;
}

WAVEFORMATEXTENSIBLE MakePcm16Format(uint32_t rate, uint32_t channels, uint32_t mask)
{
    WAVEFORMATEXTENSIBLE format;
    format.wFormatTag = WAVE_FORMAT_EXTENSIBLE;
    format.nChannels = static_cast<uint16_t>(channels);
    format.nSamplesPerSec = rate;
    format.nBlockAlign = static_cast<uint16_t>(channels * sizeof(int16_t));
    format.nAvgBytesPerSec = rate * format.nBlockAlign;
    format.wBitsPerSample = 16;
    format.cbSize = ExtensionBytes;
    format.dwChannelMask = mask != 0 ? mask : DefaultChannelMask(channels);
    format.SubFormat = KSDATAFORMAT_SUBTYPE_PCM;
    return format;
}

WAVEFORMATEXTENSIBLE MakeOneChannelFormat(const WAVEFORMATEXTENSIBLE& format)
{
    if (format.nChannels == 0)
        return format;
    WAVEFORMATEXTENSIBLE one = format;
    one.nChannels = 1;
    one.nBlockAlign = static_cast<uint16_t>(format.nBlockAlign / format.nChannels);
    one.nAvgBytesPerSec = format.nAvgBytesPerSec / format.nChannels;
    one.dwChannelMask = OneChannelMask;
    return one;
}

} // namespace ek
