// SPDX-License-Identifier: GPL-3.0-or-later
#include "devices/FrameRing.h"

#include <algorithm>
#include <bit>

namespace ek {

FrameRing::FrameRing(uint32_t channels, uint32_t capacity)
    : m_channels(channels), m_capacity(std::bit_ceil(std::max(capacity, 1U))),
      m_values(static_cast<size_t>(m_capacity) * channels)
{
}

uint32_t FrameRing::Room() const
{
    return m_capacity - static_cast<uint32_t>(m_written.load(std::memory_order_relaxed) - WasRead());
}

uint32_t FrameRing::Filled() const
{
    return static_cast<uint32_t>(Written() - WasRead());
}

uint32_t FrameRing::Write(const float* frames, uint32_t count)
{
    count = std::min(count, Room());
    const uint64_t written = m_written.load(std::memory_order_relaxed);
    const auto start = static_cast<uint32_t>(written & (m_capacity - 1));
    const uint32_t untilEnd = std::min(count, m_capacity - start);
    const size_t split = static_cast<size_t>(untilEnd) * m_channels;
    std::copy_n(frames, split, m_values.data() + static_cast<size_t>(start) * m_channels);
    std::copy_n(frames + split, static_cast<size_t>(count - untilEnd) * m_channels, m_values.data());
    m_written.store(written + count, std::memory_order_release);
    return count;
}

uint32_t FrameRing::Read(float* frames, uint32_t count)
{
    count = std::min(count, Filled());
    const uint64_t read = m_read.load(std::memory_order_relaxed);
    const auto start = static_cast<uint32_t>(read & (m_capacity - 1));
    const uint32_t untilEnd = std::min(count, m_capacity - start);
    const size_t split = static_cast<size_t>(untilEnd) * m_channels;
    std::copy_n(m_values.data() + static_cast<size_t>(start) * m_channels, split, frames);
    std::copy_n(m_values.data(), static_cast<size_t>(count - untilEnd) * m_channels, frames + split);
    m_read.store(read + count, std::memory_order_release);
    return count;
}

void FrameRing::SkipTo(uint64_t position)
{
    if (position > m_read.load(std::memory_order_relaxed))
        m_read.store(std::min(position, Written()), std::memory_order_release);
}

} // namespace ek
