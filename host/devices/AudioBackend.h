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
    /// Null: `trouble` says why, for a person. "auto" always gives a device: where no card can be used that makes no
    /// sound, and then `trouble` says why there is a system that refused, else nothing.
    virtual std::unique_ptr<OutputDevice> OpenOutput(const AudioDeviceChoice& choice, const StreamWish& wish,
                                                     std::string& trouble) = 0;
    /// Makes no sound; takes its frames in step with the clock. Never fails.
    virtual std::unique_ptr<OutputDevice> OpenNullOutput(const StreamWish& wish) = 0;
    virtual std::unique_ptr<InputDevice> OpenInput(const AudioDeviceChoice& choice, const StreamWish& wish,
                                                   std::string& trouble) = 0;
};

/// The sound systems of this machine. Made at the first call.
AudioBackend& SystemAudioBackend();

} // namespace ek
