// SPDX-License-Identifier: GPL-3.0-or-later
#include "devices/PlayQueue.h"

#include <algorithm>

namespace ek {

namespace {

// A device that asks for more than this at once gets it in pieces with silence between them.
constexpr uint32_t MostPerTake = 1U << 15;

int64_t Microseconds(uint64_t frames, uint32_t rate)
{
    return static_cast<int64_t>(static_cast<double>(frames) * 1e6 / rate);
}

} // namespace

PlayQueue::PlayQueue(uint32_t rate, uint32_t channels, uint32_t blockFrames, uint32_t target, int64_t nowMicroseconds)
    // Room for the frames that are dropped at a restart beside the new ones, and for what a rate change holds back.
    : m_ring(channels, 2 * (std::max(target, MostPerTake) + blockFrames) + MostPerTake), m_rate(rate),
      m_blockFrames(blockFrames), m_target(std::max(target, blockFrames)), m_zeroTime(nowMicroseconds)
{
}

uint32_t PlayQueue::ReadSound(float* frames, uint32_t count, int64_t nowMicroseconds)
{
    m_ring.SkipTo(m_dropBefore.load(std::memory_order_acquire));
    const bool isHeld = IsPaused() || !m_primed.load(std::memory_order_acquire);
    count = isHeld ? 0 : std::min(count, m_ring.Filled());
    // All this before the frames count as taken: who sees that they are must not see the time, or the silence, of those
    // before them.
    if (count > 0)
        m_silence.store(0, std::memory_order_release);
    m_zeroTime.store(nowMicroseconds - Microseconds(m_ring.WasRead() + count, m_rate), std::memory_order_release);
    return m_ring.Read(frames, count);
}

void PlayQueue::Fill(float* frames, uint32_t count, int64_t nowMicroseconds)
{
    const bool isDue =
        m_primed.load(std::memory_order_acquire) && !m_ended.load(std::memory_order_acquire) && !IsPaused();
    const uint32_t taken = ReadSound(frames, count, nowMicroseconds);
    std::fill_n(frames + static_cast<size_t>(taken) * Channels(), static_cast<size_t>(count - taken) * Channels(),
                0.0F);
    // A pause or an end that comes just now is no dropout.
    if (taken < count && isDue && !IsPaused() && !m_ended.load(std::memory_order_acquire))
        CountDropout();
    if (count > m_largestTake.load(std::memory_order_relaxed))
        m_largestTake.store(std::min(count, MostPerTake), std::memory_order_relaxed);
    m_silence.fetch_add(count - taken, std::memory_order_release);
    WakePump();
}

uint32_t PlayQueue::Take(float* frames, uint32_t count, int64_t nowMicroseconds)
{
    const uint32_t taken = ReadSound(frames, count, nowMicroseconds);
    WakePump();
    return taken;
}

void PlayQueue::WakePump()
{
    if (HasRoomForBlock() || m_ended.load(std::memory_order_acquire))
        m_pump.Signal();
}

bool PlayQueue::IsDrained() const
{
    return m_ended.load(std::memory_order_acquire) && Waiting() == 0;
}

/// Frames that will be taken yet. The device's side removes those that are dropped, when it comes along.
uint32_t PlayQueue::Waiting() const
{
    const uint64_t written = m_ring.Written();
    const uint64_t next = std::max(m_ring.WasRead(), m_dropBefore.load(std::memory_order_acquire));
    return written > next ? static_cast<uint32_t>(written - next) : 0;
}

uint32_t PlayQueue::TargetFrames() const
{
    return std::max(m_target, m_largestTake.load(std::memory_order_relaxed) + m_blockFrames);
}

bool PlayQueue::HasRoomForBlock() const
{
    return Waiting() + m_blockFrames <= TargetFrames() && m_ring.Room() >= m_blockFrames + MostPerTake;
}

void PlayQueue::Write(const float* frames, uint32_t count)
{
    m_ring.Write(frames, count);
}

bool PlayQueue::SetPrimed()
{
    return !m_primed.exchange(true, std::memory_order_acq_rel);
}

void PlayQueue::SetEnd(uint32_t tailFrames)
{
    m_tailWanted = tailFrames;
    SetPrimed();
    m_ended.store(true, std::memory_order_release);
}

uint64_t PlayQueue::Restart()
{
    m_primed.store(false, std::memory_order_release);
    m_ended.store(false, std::memory_order_release);
    m_dropBefore.store(m_ring.Written(), std::memory_order_release);
    return m_ring.Written();
}

bool PlayQueue::IsHeard() const
{
    return IsDrained() && m_silence.load(std::memory_order_acquire) >= m_tailWanted;
}

int64_t PlayQueue::NextTakenMicroseconds() const
{
    const int64_t zeroTime = m_zeroTime.load(std::memory_order_acquire);
    const uint64_t read = m_ring.WasRead();
    return zeroTime + Microseconds(read + Waiting(), m_rate);
}

uint64_t PlayQueue::Heard(uint32_t latencyFrames) const
{
    const uint64_t taken = Taken(); // first: see ReadSound
    const uint64_t silence = m_silence.load(std::memory_order_acquire);
    const uint64_t inCard = latencyFrames > silence ? latencyFrames - silence : 0;
    return taken > inCard ? taken - inCard : 0;
}

} // namespace ek
