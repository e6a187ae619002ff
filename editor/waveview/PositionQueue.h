// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <cstddef>
#include <cstdint>
#include <deque>

namespace ek {

/// Milliseconds from `from` to `to`, two stamps of a clock that wraps around at 2^32; negative when `to` is earlier.
constexpr int32_t StampDifference(uint32_t from, uint32_t to)
{
    return static_cast<int32_t>(to - from);
}

/// Which frame is heard when: marks of a time stamp (milliseconds, wrapping around) and the frame heard then.
class PositionQueue {
public:
    static constexpr size_t Capacity = 7; ///< the oldest mark gives way

    void Clear() { m_marks.clear(); }
    void Push(uint32_t stamp, uint64_t frame); ///< stamps do not go back
    void Delay(uint32_t milliseconds);         ///< everything is heard that much later

    /// The frame heard at `stamp`, between two marks in proportion to the time; before the first and past the last
    /// mark the frame of that one; 0 without marks.
    uint64_t FrameAt(uint32_t stamp) const;

private:
    struct Mark {
        uint32_t Stamp = 0;
        uint64_t Frame = 0;
    };
    static uint64_t Between(const Mark& before, const Mark& after, uint32_t stamp);

    std::deque<Mark> m_marks;
};

} // namespace ek
