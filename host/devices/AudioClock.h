// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <cstdint>
#include <memory>

namespace ek {

int64_t MonotonicMicroseconds(); ///< CLOCK_MONOTONIC, which stands behind all stamps

/// What a device that has no card goes by: CLOCK_MONOTONIC, or a test's own.
class AudioClock {
public:
    virtual ~AudioClock() = default;
    virtual int64_t NowMicroseconds() = 0;
    /// Waits until the time has come (true) or Interrupt was called (false).
    virtual bool WaitUntil(int64_t microseconds) = 0;
    virtual void Interrupt() = 0; ///< the one who waits now, or else the next one, returns at once
};

std::shared_ptr<AudioClock> MakeSystemClock(); ///< for one waiting thread

} // namespace ek
