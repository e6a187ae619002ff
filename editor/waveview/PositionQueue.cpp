// SPDX-License-Identifier: GPL-3.0-or-later
#include "waveview/PositionQueue.h"

namespace ek {

void PositionQueue::Push(uint32_t stamp, uint64_t frame)
{
    if (m_marks.size() == Capacity)
        m_marks.pop_front();
    m_marks.push_back({stamp, frame});
}

void PositionQueue::Delay(uint32_t milliseconds)
{
    for (Mark& mark : m_marks)
        mark.Stamp += milliseconds;
}

uint64_t PositionQueue::FrameAt(uint32_t stamp) const
{
    const Mark* before = nullptr;
    for (const Mark& mark : m_marks) {
        if (StampDifference(stamp, mark.Stamp) >= 0)
            return before ? Between(*before, mark, stamp) : mark.Frame;
        before = &mark;
    }
    return before ? before->Frame : 0;
}

uint64_t PositionQueue::Between(const Mark& before, const Mark& after, uint32_t stamp)
{
    // Where a loop wraps the frames go back. Dividing first keeps the product small for sounds of any length.
    const auto frames = static_cast<int64_t>(after.Frame - before.Frame);
    const int64_t span = StampDifference(before.Stamp, after.Stamp);
    const int64_t passed = StampDifference(before.Stamp, stamp);
    const int64_t advance = frames / span * passed + frames % span * passed / span;
    return before.Frame + static_cast<uint64_t>(advance);
}

} // namespace ek
