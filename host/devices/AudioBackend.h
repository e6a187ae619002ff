// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "devices/AudioDevices.h"
#include "devices/InputDevice.h"
#include "devices/OutputDevice.h"

#include <cstdint>
#include <memory>
#include <string>

namespace ek {

/// Opens devices. The program has one, tests have their own.
class AudioBackend {
public:
    virtual ~AudioBackend() = default;

    virtual int64_t NowMicroseconds() = 0; ///< any thread; on the scale of the clock that devices are given
    /// Null: `trouble` says why, for a person. "auto" gives null where no system has a device.
    virtual std::unique_ptr<OutputDevice> OpenOutput(const AudioDeviceChoice& choice, const StreamWish& wish,
                                                     std::string& trouble) = 0;
    /// Makes no sound; takes its frames in step with the clock. Never fails.
    virtual std::unique_ptr<OutputDevice> OpenNullOutput(const StreamWish& wish) = 0;
    virtual std::unique_ptr<InputDevice> OpenInput(const AudioDeviceChoice& choice, const StreamWish& wish,
                                                   std::string& trouble) = 0;
    /// What the choice stands for is another device now than `name`, which was opened for it. At most once a second;
    /// does not wait for an answer of the sound system, but gives the one to an earlier call.
    virtual bool HasMoved(const AudioDeviceChoice& choice, const std::string& name) = 0;
};

/// The sound systems of this machine. Made at the first call.
AudioBackend& SystemAudioBackend();

} // namespace ek
