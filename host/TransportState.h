// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "ek/HostAudioDevice.h"

#include <cstdint>

namespace ek {

/// The commands that a module gets from the host's transport.
enum TransportCommand : uint32_t {
    TransportSeek = 1035, ///< its parameter: percent of the play range
    TransportToStart = 13000,
    TransportBack = 13005,
    TransportPlay = 13010,
    TransportPause = 13015, ///< and on again
    TransportStop = 13020,
    TransportForward = 13025,
    TransportToEnd = 13030,
    TransportRecord = 13090,
};

/// Whether it moves the cursor, from where what plays goes on.
constexpr bool IsJump(TransportCommand command)
{
    return command == TransportToStart || command == TransportBack || command == TransportForward ||
           command == TransportToEnd;
}

/// What the transport shows: playing as it is at one moment.
struct TransportState {
    int Device = CHostAudioDevice::Stopped; ///< a CHostAudioDevice::State
    bool CanPlay = false;
    bool CanRecord = false;
    bool IsLoop = false;
    uint32_t Progress = 0; ///< 0 .. ProgressRange
    uint32_t ProgressRange = 0;
    uint64_t HeardMilliseconds = 0; ///< since playing was started

    bool IsStopped() const { return Device == CHostAudioDevice::Stopped; }
    bool IsRunning() const { return Device == CHostAudioDevice::Running; }
    bool operator==(const TransportState&) const = default;
};

} // namespace ek
