// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "devices/AudioDevices.h"

#include <string>

namespace ek {

class HostServices;

/// The devices that a person chose. Both directions have one system.
struct AudioChoice {
    AudioDeviceChoice Output;
    std::string InputDevice;

    AudioDeviceChoice Input() const; ///< a file takes no sound: there the silent device is the input
    bool operator==(const AudioChoice&) const = default;
};

/// What is not stored, or makes no sense, is as in a new AudioChoice.
AudioChoice LoadAudioChoice(const HostServices& services);
void StoreAudioChoice(HostServices& services, const AudioChoice& choice);

} // namespace ek
