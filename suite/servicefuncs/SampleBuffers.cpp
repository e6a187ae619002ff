// SPDX-License-Identifier: GPL-3.0-or-later
#include "servicefuncs/SampleBuffers.h"

#include <algorithm>
#include <limits>

namespace ek {

namespace {

int16_t SaturatedSum(int16_t a, int16_t b)
{
    constexpr int lowest = std::numeric_limits<int16_t>::min();
    constexpr int highest = std::numeric_limits<int16_t>::max();
    return static_cast<int16_t>(std::clamp(a + b, lowest, highest));
}

void CopyFrames(int16_t* destination, const int16_t* source, uint64_t samples)
{
    if (destination != source)
        std::copy_n(source, samples, destination);
}

} // namespace

void SplitChannel(int16_t* destination, const int16_t* source, const WAVEFORMATEXTENSIBLE& format, uint64_t frames,
                  uint32_t position)
{
    const uint64_t channels = format.nChannels;
    if (position >= channels)
        return;
    for (uint64_t frame = 0; frame < frames; ++frame)
        destination[frame] = source[frame * channels + position];
}

void ClearWaveData(int16_t* buffer, const WAVEFORMATEXTENSIBLE& format, uint64_t frames, ChannelCode code)
{
    const uint64_t channels = format.nChannels;
    if (code == ChannelAll) {
        std::fill_n(buffer, frames * channels, int16_t{0});
        return;
    }
    const uint32_t position = GetIndexByChannel(format, code);
    if (position == NoChannel)
        return;
    for (uint64_t frame = 0; frame < frames; ++frame)
        buffer[frame * channels + position] = 0;
}

void MixWaveData(int16_t* destination, const int16_t* first, uint64_t frames, const int16_t* second,
                 uint64_t secondFrames, const WAVEFORMATEXTENSIBLE& format, ChannelCode code)
{
    const uint64_t channels = format.nChannels;
    const uint64_t mixedFrames = std::min(frames, secondFrames);
    if (code == ChannelAll) {
        const uint64_t mixed = mixedFrames * channels;
        for (uint64_t i = 0; i < mixed; ++i)
            destination[i] = SaturatedSum(first[i], second[i]);
        CopyFrames(destination + mixed, first + mixed, frames * channels - mixed);
        return;
    }
    const uint32_t position = GetIndexByChannel(format, code);
    if (position == NoChannel)
        return;
    CopyFrames(destination, first, frames * channels);
    for (uint64_t frame = 0; frame < mixedFrames; ++frame) {
        int16_t& sample = destination[frame * channels + position];
        sample = SaturatedSum(sample, second[frame]);
    }
}

void CopyWaveData(int16_t* destination, const int16_t* source, const WAVEFORMATEXTENSIBLE& format, uint64_t frames,
                  ChannelCode code)
{
    const uint64_t channels = format.nChannels;
    const uint32_t position = GetIndexByChannel(format, code);
    if (position == NoChannel)
        return;
    for (uint64_t frame = 0; frame < frames; ++frame)
        destination[frame * channels + position] = source[frame];
}

} // namespace ek
