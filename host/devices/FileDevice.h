// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "devices/AudioClock.h"
#include "devices/InputDevice.h"
#include "devices/OutputDevice.h"

#include <filesystem>
#include <memory>
#include <string>

namespace ek {

/// A device that writes the frames into a WAV file of the sound's format, as fast as they come. What is played until
/// Finish is one file; without Finish there is none. Null: `trouble` says why.
std::unique_ptr<OutputDevice> MakeFileOutput(const StreamWish& wish, const std::filesystem::path& path,
                                             std::string& trouble);
/// A device that gives the frames of a WAV file in step with a clock, and then nothing more. Null: `trouble` says why.
std::unique_ptr<InputDevice> MakeFileInput(const std::filesystem::path& path, std::shared_ptr<AudioClock> clock,
                                           std::string& trouble);

} // namespace ek
