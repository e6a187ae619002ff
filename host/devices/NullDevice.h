// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "devices/AudioClock.h"
#include "devices/InputDevice.h"
#include "devices/OutputDevice.h"

#include <memory>

namespace ek {

/// A device that takes frames in step with a clock and makes no sound. It keeps the sound's rate and channels.
std::unique_ptr<OutputDevice> MakeNullOutput(const StreamWish& wish, std::shared_ptr<AudioClock> clock);

/// A device that gives silence in step with a clock.
std::unique_ptr<InputDevice> MakeNullInput(const StreamWish& wish, std::shared_ptr<AudioClock> clock);

} // namespace ek
