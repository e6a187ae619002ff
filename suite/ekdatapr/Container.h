// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "ekdatapr/FileStream.h"

#include <cstdint>
#include <optional>
#include <string>

namespace ek {

/// Bytes to be read instead of those at a position of a file.
struct HeaderPatch {
    uint64_t Position = 0;
    std::string Bytes;
};

/// What makes the sound library read all the sound of a recording that was interrupted: the sizes in its header say
/// nothing, but the sound is there. Nothing for a file whose header is whole.
std::optional<HeaderPatch> PatchUnfinished(const FileStream& file);

/// Frames of a sound that is coded in blocks, of which the last need not be full; nothing when the file does not tell.
std::optional<uint64_t> FramesInBlocks(const FileStream& file, int sfFormat);

/// The header of a new file with the length of its sound in place of what stands there.
std::string WithFactFrames(std::string header, uint64_t frames);

/// Bytes in front of the sound that hold text and pictures, where the container has a bit rate.
uint64_t TagBytes(const FileStream& file);

} // namespace ek
