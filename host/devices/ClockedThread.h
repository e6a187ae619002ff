// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "devices/AudioClock.h"
#include "devices/OutputDevice.h"

#include <algorithm>
#include <atomic>
#include <cstdint>
#include <functional>
#include <memory>
#include <thread>
#include <utility>

namespace ek {

/// The shape of a device that goes by a clock: as the sound, ten milliseconds at a time.
inline StreamShape ClockedShape(const WAVEFORMATEXTENSIBLE& sound)
{
    return {sound.nSamplesPerSec, sound.nChannels, std::max(1U, sound.nSamplesPerSec / 100)};
}

/// The thread of a device that goes by a clock: one step at the beginning of each period.
class ClockedThread {
public:
    using Step = std::function<bool(int64_t dueMicroseconds)>; ///< false: it was the last one

    explicit ClockedThread(std::shared_ptr<AudioClock> clock) : m_clock(std::move(clock)) {}
    ~ClockedThread() { Stop(); }
    ClockedThread(const ClockedThread&) = delete;
    ClockedThread& operator=(const ClockedThread&) = delete;

    void Start(const StreamShape& shape, Step step)
    {
        m_quit = false;
        m_thread = std::thread([this, shape, step = std::move(step)] { Run(shape, step); });
    }

    void Stop()
    {
        if (!m_thread.joinable())
            return;
        m_quit = true;
        m_clock->Interrupt();
        m_thread.join();
    }

private:
    void Run(const StreamShape& shape, const Step& step)
    {
        const int64_t start = m_clock->NowMicroseconds();
        uint64_t frames = 0;
        while (!m_quit) {
            // From the start each time: what one period is off by would add up.
            const int64_t due = start + static_cast<int64_t>(frames * 1000000 / shape.Rate);
            if (!m_clock->WaitUntil(due))
                continue;
            if (!step(due))
                return;
            frames += shape.PeriodFrames;
        }
    }

    std::shared_ptr<AudioClock> m_clock;
    std::atomic<bool> m_quit = false;
    std::thread m_thread;
};

} // namespace ek
