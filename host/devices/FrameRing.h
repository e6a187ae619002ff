// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <atomic>
#include <cstddef>
#include <cstdint>
#include <vector>

namespace ek {

/// Interleaved float frames on their way from one thread to another; neither side ever waits. Positions count all the
/// frames that ever went in, so they also tell how far the two sides are.
class FrameRing {
public:
    FrameRing(uint32_t channels, uint32_t capacity); ///< the capacity is rounded up to a power of two

    uint32_t Channels() const { return m_channels; }
    uint32_t Capacity() const { return m_capacity; }

    // The writing thread.
    uint32_t Room() const;
    uint32_t Write(const float* frames, uint32_t count); ///< the frames that there was room for
    uint64_t Written() const { return m_written.load(std::memory_order_acquire); } ///< any thread

    // The reading thread.
    uint32_t Filled() const;                      ///< of the writing thread: no less than this is still unread
    uint32_t Read(float* frames, uint32_t count); ///< the frames that were there
    void SkipTo(uint64_t position);               ///< forwards only, and no further than what is written
    uint64_t WasRead() const { return m_read.load(std::memory_order_acquire); } ///< any thread

private:
    uint32_t m_channels;
    uint32_t m_capacity;
    std::vector<float> m_values;
    alignas(64) std::atomic<uint64_t> m_written{0};
    alignas(64) std::atomic<uint64_t> m_read{0};
};

} // namespace ek
