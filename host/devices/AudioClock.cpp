// SPDX-License-Identifier: GPL-3.0-or-later
#include "devices/AudioClock.h"

#include <chrono>
#include <condition_variable>
#include <mutex>

namespace ek {

namespace {

class SystemClock final : public AudioClock {
public:
    int64_t NowMicroseconds() override { return MonotonicMicroseconds(); }

    bool WaitUntil(int64_t microseconds) override
    {
        std::unique_lock lock(m_mutex);
        const auto left = std::chrono::microseconds(microseconds - NowMicroseconds());
        const bool interrupted = m_changed.wait_for(lock, left, [this] { return m_interrupted; });
        m_interrupted = false;
        return !interrupted;
    }

    void Interrupt() override
    {
        const std::lock_guard lock(m_mutex);
        m_interrupted = true;
        m_changed.notify_all();
    }

private:
    std::mutex m_mutex;
    std::condition_variable m_changed;
    bool m_interrupted = false;
};

} // namespace

int64_t MonotonicMicroseconds()
{
    const auto sinceStart = std::chrono::steady_clock::now().time_since_epoch();
    return std::chrono::duration_cast<std::chrono::microseconds>(sinceStart).count();
}

std::shared_ptr<AudioClock> MakeSystemClock()
{
    return std::make_shared<SystemClock>();
}

} // namespace ek
