// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "devices/FrameRing.h"
#include "devices/WakeUp.h"

#include <atomic>
#include <cstdint>

namespace ek {

/// What lies between the pump, which fills it, and a device's thread, which empties it: frames as the card wants them.
/// The device's side never waits, allocates or calls anybody; all its calls come from one thread.
class PlayQueue {
public:
    /// `target`: the frames that the pump keeps in it; more when a device is seen to take more at once.
    PlayQueue(uint32_t rate, uint32_t channels, uint32_t blockFrames, uint32_t target, int64_t nowMicroseconds);

    uint32_t Rate() const { return m_rate; }
    uint32_t Channels() const { return m_ring.Channels(); }

    // The device's thread.
    /// All of `count` frames: silence while pausing, before the first frames are there, and where they come too late.
    void Fill(float* frames, uint32_t count, int64_t nowMicroseconds);
    /// The frames that are there, none while pausing. For devices that can wait.
    uint32_t Take(float* frames, uint32_t count, int64_t nowMicroseconds);
    void CountDropout() { m_dropouts.fetch_add(1, std::memory_order_relaxed); }
    bool IsDrained() const; ///< the last frame has been taken. Any thread

    // The pump's thread, and its owner's while there is none.
    bool HasRoomForBlock() const;
    void Write(const float* frames,
               uint32_t count);       ///< no more than a block of the constructor's, after HasRoomForBlock
    bool SetPrimed();                 ///< there is enough for the device to begin; false: it was told before
    void SetEnd(uint32_t tailFrames); ///< nothing will follow; signals when so many more were taken
    /// Forgets the frames that are not taken yet, and the end; frames from the position that is returned on are new.
    uint64_t Restart();
    bool IsHeard() const; ///< after SetEnd: the last frame, and the tail after it
    /// When the next frame that is written will be taken.
    int64_t NextTakenMicroseconds() const;
    WakeUp& Pump() { return m_pump; } ///< signalled when there is room for a block, or the end was heard

    // Any thread.
    void SetPaused(bool paused) { m_paused.store(paused, std::memory_order_release); }
    bool IsPaused() const { return m_paused.load(std::memory_order_acquire); }
    uint64_t Taken() const { return m_ring.WasRead(); }
    /// Frames taken and heard by now, of a device that needs `latencyFrames` for it.
    uint64_t Heard(uint32_t latencyFrames) const;
    uint64_t Dropouts() const { return m_dropouts.load(std::memory_order_relaxed); }

private:
    uint32_t ReadSound(float* frames, uint32_t count, int64_t nowMicroseconds);
    uint32_t Waiting() const;
    void WakePump();
    uint32_t TargetFrames() const;

    FrameRing m_ring;
    uint32_t m_rate;
    uint32_t m_blockFrames;
    uint32_t m_target;
    uint32_t m_tailWanted = 0; ///< fixed before m_ended is set
    std::atomic<bool> m_paused = false;
    std::atomic<bool> m_primed = false;
    std::atomic<bool> m_ended = false;
    std::atomic<uint64_t> m_dropBefore{0}; ///< a position; frames before it are not to be heard any more
    std::atomic<uint32_t> m_largestTake{0};
    std::atomic<uint64_t> m_silence{0}; ///< frames of silence since the last frame of sound was taken
    std::atomic<int64_t> m_zeroTime;    ///< microseconds: when frame 0 would have been taken at the present pace
    std::atomic<uint64_t> m_dropouts{0};
    WakeUp m_pump;
};

} // namespace ek
