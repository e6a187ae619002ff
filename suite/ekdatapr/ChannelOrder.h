// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <cstddef>
#include <cstdint>
#include <sndfile.h>
#include <string>
#include <vector>

namespace ek {

/// How the channels of a file become the channels of a frame, which stand in the order of their mask bits.
struct ChannelOrder {
    uint32_t Mask = 0;         ///< speakers of the sound; 0 when the file does not tell
    std::vector<uint8_t> From; ///< for each channel of a frame its place in the file; empty when they are the same
    bool operator==(const ChannelOrder&) const = default;
};

ChannelOrder ReadChannelOrder(SNDFILE* file, const SF_INFO& info);

/// The order that the container prescribes for a count of channels.
ChannelOrder FixedChannelOrder(int sfFormat, uint32_t channels);

/// Tells a new file which speakers its channels are for. False when the container cannot keep that.
bool WriteChannelMap(SNDFILE* file, uint32_t mask);

/// The encoder's name for a file whose container prescribes other speakers than those of `mask`, although any order of
/// samples fits in: ReadChannelOrder finds the mask in it. Empty where none is needed.
std::string MakeSpeakersName(int sfFormat, uint32_t channels, uint32_t mask);

enum class OrderDirection { FileToFrame, FrameToFile };

template <typename Sample>
void Reorder(Sample* samples, size_t frames, const std::vector<uint8_t>& from, OrderDirection direction)
{
    Sample frame[8];
    for (size_t done = 0; done < frames && !from.empty(); ++done, samples += from.size()) {
        for (size_t i = 0; i < from.size(); ++i) {
            if (direction == OrderDirection::FileToFrame)
                frame[i] = samples[from[i]];
            else
                frame[from[i]] = samples[i];
        }
        for (size_t i = 0; i < from.size(); ++i)
            samples[i] = frame[i];
    }
}

} // namespace ek
