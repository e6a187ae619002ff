// SPDX-License-Identifier: GPL-3.0-or-later
#include "devices/CaptureQueue.h"

namespace ek {

namespace {

int64_t Microseconds(uint64_t frames, uint32_t rate)
{
    return static_cast<int64_t>(static_cast<double>(frames) * 1e6 / rate);
}

} // namespace

CaptureQueue::CaptureQueue(uint32_t rate, uint32_t channels, uint32_t wakeFrames, uint32_t capacity)
    : m_ring(channels, capacity), m_rate(rate), m_wakeFrames(wakeFrames)
{
}

void CaptureQueue::Put(const float* frames, uint32_t count, int64_t lastMicroseconds)
{
    if (m_paused.load(std::memory_order_acquire))
        return;
    const uint32_t written = m_ring.Write(frames, count);
    if (written < count)
        m_lost.fetch_add(count - written, std::memory_order_relaxed);
    const int64_t lastWritten = lastMicroseconds - Microseconds(count - written, m_rate);
    m_zeroTime.store(lastWritten - Microseconds(m_ring.Written(), m_rate), std::memory_order_release);
    if (m_ring.Filled() >= m_wakeFrames)
        m_pump.Signal();
}

void CaptureQueue::CountLost(uint32_t frames)
{
    if (!m_paused.load(std::memory_order_acquire))
        m_lost.fetch_add(frames, std::memory_order_relaxed);
}

int64_t CaptureQueue::NextMicroseconds() const
{
    return m_zeroTime.load(std::memory_order_acquire) + Microseconds(m_ring.WasRead(), m_rate);
}

} // namespace ek
