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
///
/// Frames that are heard one after the other at an even pace lie on a line, of which only the ends are kept: so the few
/// marks reach from what is heard now to what a device with a long queue will play seconds later. It is a
/// piecewise linear fit that bounds the error of every mark that was left out.
class PositionQueue {
public:
    static constexpr size_t Capacity = 7;  ///< the oldest mark gives way
    static constexpr double Tolerance = 4; ///< milliseconds that a mark may lie off its line: devices stamp unevenly

    void Clear() { m_marks.clear(); }
    /// Frames do not go back. A stamp that does, as with another device, makes what was to be heard later untrue.
    void Push(uint32_t stamp, uint64_t frame);
    void Delay(uint32_t milliseconds); ///< everything is heard that much later

    /// The frame heard at `stamp`, between two marks in proportion to the time; before the first and past the last
    /// mark the frame of that one; 0 without marks.
    uint64_t FrameAt(uint32_t stamp) const;

private:
    struct Mark {
        uint32_t Stamp = 0;
        uint64_t Frame = 0;
    };
    /// The paces, in frames per millisecond, at which a line passes all its marks closely enough.
    struct Paces {
        double Slowest = 0;
        double Fastest = 0;
    };
    static Paces PacesTo(const Mark& from, const Mark& to);
    bool IsOnLine(const Mark& mark) const;
    static uint64_t Between(const Mark& before, const Mark& after, uint32_t stamp);

    std::deque<Mark> m_marks;
    Paces m_paces; ///< of the line between the last two marks
};

} // namespace ek
