// SPDX-License-Identifier: GPL-3.0-or-later
#include "platform/Events.h"

namespace ek {

uint64_t TickMilliseconds()
{
    const auto sinceStart = std::chrono::steady_clock::now().time_since_epoch();
    return static_cast<uint64_t>(std::chrono::duration_cast<std::chrono::milliseconds>(sinceStart).count());
}

void ManualResetEvent::Set()
{
    // Under the lock to the end: a waiter may destroy the event as soon as it sees the flag.
    const std::lock_guard lock(m_mutex);
    m_set = true;
    m_changed.notify_all();
}

void ManualResetEvent::Reset()
{
    const std::lock_guard lock(m_mutex);
    m_set = false;
}

bool ManualResetEvent::IsSet() const
{
    const std::lock_guard lock(m_mutex);
    return m_set;
}

void ManualResetEvent::Wait()
{
    std::unique_lock lock(m_mutex);
    m_changed.wait(lock, [this] { return m_set; });
}

bool ManualResetEvent::WaitFor(std::chrono::milliseconds limit)
{
    std::unique_lock lock(m_mutex);
    return m_changed.wait_for(lock, limit, [this] { return m_set; });
}

} // namespace ek
