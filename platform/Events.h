// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <chrono>
#include <condition_variable>
#include <cstdint>
#include <mutex>

namespace ek {

/// Milliseconds of a clock that never goes back; its zero is arbitrary.
uint64_t TickMilliseconds();

/// An event that stays set until it is reset; any number of threads may wait.
class ManualResetEvent {
public:
    void Set();
    void Reset();
    bool IsSet() const;
    void Wait();
    bool WaitFor(std::chrono::milliseconds limit); ///< false when the limit passed first

private:
    mutable std::mutex m_mutex;
    std::condition_variable m_changed;
    bool m_set = false;
};

} // namespace ek
