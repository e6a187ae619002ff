// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "devices/FrameRing.h"
#include "devices/WakeUp.h"

#include <atomic>
#include <cstdint>

namespace ek {

/// What lies between a capture device's thread, which fills it, and the pump, which empties it. The device's side never
/// waits, allocates or calls anybody.
class CaptureQueue {
public:
    /// The pump is signalled when `wakeFrames` are there.
    CaptureQueue(uint32_t rate, uint32_t channels, uint32_t wakeFrames, uint32_t capacity);

    uint32_t Rate() const { return m_rate; }
    uint32_t Channels() const { return m_ring.Channels(); }

    /// The device's thread. The last of the frames was captured at the time given. Frames without room are lost.
    void Put(const float* frames, uint32_t count, int64_t lastMicroseconds);

    void CountLost(uint32_t frames); ///< before the next Put

    // The pump's thread.
    uint32_t Take(float* frames, uint32_t count) { return m_ring.Read(frames, count); }
    int64_t NextMicroseconds() const; ///< when the next frame to be taken was captured
    WakeUp& Pump() { return m_pump; }

    // Any thread.
    void SetPaused(bool paused) { m_paused.store(paused, std::memory_order_release); } ///< frames are then let go
    uint64_t Lost() const { return m_lost.load(std::memory_order_relaxed); }

private:
    FrameRing m_ring;
    uint32_t m_rate;
    uint32_t m_wakeFrames;
    std::atomic<bool> m_paused = false;
    std::atomic<int64_t> m_zeroTime{0}; ///< microseconds: when frame 0 would have been captured at the present pace
    std::atomic<uint64_t> m_lost{0};
    WakeUp m_pump;
};

} // namespace ek
