// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <cstdint>
#include <filesystem>
#include <string>
#include <vector>

namespace ek {

/// Where sound goes to, or comes from.
struct AudioDeviceChoice {
    /// "auto": the first of pulse, jack and alsa that has a device, else null. "null": a device that takes its time and
    /// makes no sound. "file": sound goes into File as fast as it comes.
    std::string System = "auto";
    std::string Device = {};          ///< a name from ListAudioDevices; empty: the system's default, which is followed
    uint32_t LatencyMilliseconds = 0; ///< what the sound card is asked to hold; 0: what the system prefers
    std::filesystem::path File = {};

    bool operator==(const AudioDeviceChoice&) const = default;
};

struct AudioDeviceInfo {
    std::string System; ///< as in AudioDeviceChoice
    std::string Name;
    uint32_t Channels = 0;
    bool IsDefault = false;
};

/// The systems that this build knows, as for AudioDeviceChoice, "auto" first, "null" last.
std::vector<std::string> ListAudioSystems();
std::vector<AudioDeviceInfo> ListAudioDevices(const std::string& system, bool forCapture);

} // namespace ek
