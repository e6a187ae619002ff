// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <atomic>
#include <chrono>
#include <ctime>
#include <semaphore.h>

namespace ek {

/// Wakes one waiting thread. A signal that comes before the wait is not lost; several of them are one.
class WakeUp {
public:
    WakeUp() { sem_init(&m_semaphore, 0, 0); }
    ~WakeUp() { sem_destroy(&m_semaphore); }
    WakeUp(const WakeUp&) = delete;
    WakeUp& operator=(const WakeUp&) = delete;

    /// Any thread, the sound card's too: it never waits, and asks the system only when nobody has signalled yet.
    void Signal()
    {
        if (!m_signalled.exchange(true, std::memory_order_acq_rel))
            sem_post(&m_semaphore);
    }

    void Wait()
    {
        while (sem_wait(&m_semaphore) != 0) {
        }
        m_signalled.exchange(false, std::memory_order_acq_rel);
    }

    void WaitFor(std::chrono::milliseconds limit) ///< or until then
    {
        timespec end{};
        clock_gettime(CLOCK_MONOTONIC, &end);
        const auto nanoseconds = end.tv_nsec + std::chrono::nanoseconds(limit).count();
        end.tv_sec += static_cast<time_t>(nanoseconds / 1000000000);
        end.tv_nsec = static_cast<long>(nanoseconds % 1000000000);
        if (sem_clockwait(&m_semaphore, CLOCK_MONOTONIC, &end) == 0)
            m_signalled.exchange(false, std::memory_order_acq_rel);
    }

private:
    sem_t m_semaphore;
    std::atomic<bool> m_signalled = false;
};

} // namespace ek
