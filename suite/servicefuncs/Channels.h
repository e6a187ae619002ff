// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "ek/WaveFormat.h"

#include <cstdint>
#include <string>

namespace ek {

/// One channel position, or all of them.
enum ChannelCode : uint32_t {
    ChannelLeft = 0,
    ChannelRight = 1,
    ChannelAll = 2,
    ChannelLowFrequency = 3,
    ChannelFrontLeft = 4,
    ChannelFrontRight = 5,
    ChannelFrontCentre = 6,
    ChannelBackLeft = 7,
    ChannelBackRight = 8,
    ChannelBackCentre = 9,
    ChannelSideLeft = 10,
    ChannelSideRight = 11,
    ChannelFrontLeftOfCentre = 12,
    ChannelFrontRightOfCentre = 13,
};

inline constexpr uint32_t MaxChannels = 8;
inline constexpr uint32_t NoChannel = 0xFFFFFFFF;

/// Position (0-based) of the channel within a frame of the format, and back: inverse to each other for every
/// position of a format with 1 to 8 channels. Mono is ChannelLeft, stereo left and right; with more channels
/// the positions follow the channel mask, or the usual layout of that count where the mask does not fit it.
/// A code that the format does not hold gives NoChannel; a position out of range gives ChannelAll.
uint32_t GetIndexByChannel(const WAVEFORMATEXTENSIBLE& format, ChannelCode code);
ChannelCode GetChannelByIndex(const WAVEFORMATEXTENSIBLE& format, uint32_t position);

std::string GetChannelName(ChannelCode code); ///< "Front Left"; for a person

/// Speaker mask of the usual layout of 1 to 8 channels: mono, stereo, 2.1, 4.0, 4.1, 5.1, 6.1, 7.1.
uint32_t DefaultChannelMask(uint32_t channels);

/// A 16-bit PCM format in its extensible form, with the derived fields filled in and valid bits 0 (all
/// are valid). The mask 0 asks for the default one.
WAVEFORMATEXTENSIBLE MakePcm16Format(uint32_t rate, uint32_t channels, uint32_t mask = 0);

/// The format of one channel of `format` taken out: mono, mask 4, block alignment and bytes per second divided.
WAVEFORMATEXTENSIBLE MakeOneChannelFormat(const WAVEFORMATEXTENSIBLE& format);

} // namespace ek
