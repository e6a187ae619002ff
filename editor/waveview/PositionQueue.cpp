// SPDX-License-Identifier: GPL-3.0-or-later
#include "waveview/PositionQueue.h"

#include <algorithm>
#include <limits>

namespace ek {

void PositionQueue::Push(uint32_t stamp, uint64_t frame)
{
    const Mark mark{stamp, frame};
    if (IsOnLine(mark)) {
        const Paces paces = PacesTo(m_marks.end()[-2], mark);
        m_paces = {std::max(m_paces.Slowest, paces.Slowest), std::min(m_paces.Fastest, paces.Fastest)};
        m_marks.back() = mark;
        return;
    }
    while (!m_marks.empty() && StampDifference(m_marks.back().Stamp, stamp) < 0)
        m_marks.pop_back();
    if (!m_marks.empty())
        m_paces = PacesTo(m_marks.back(), mark);
    if (m_marks.size() == Capacity)
        m_marks.pop_front();
    m_marks.push_back(mark);
}

bool PositionQueue::IsOnLine(const Mark& mark) const
{
    if (m_marks.size() < 2)
        return false;
    const Mark& start = m_marks.end()[-2];
    const int32_t time = StampDifference(start.Stamp, mark.Stamp);
    const double frames = static_cast<double>(mark.Frame - start.Frame);
    return time > 0 && frames >= m_paces.Slowest * time && frames <= m_paces.Fastest * time;
}

PositionQueue::Paces PositionQueue::PacesTo(const Mark& from, const Mark& to)
{
    const double time = std::max(0, StampDifference(from.Stamp, to.Stamp));
    const double frames = static_cast<double>(to.Frame - from.Frame);
    if (frames == 0)
        return {};
    return {frames / (time + Tolerance),
            time > Tolerance ? frames / (time - Tolerance) : std::numeric_limits<double>::infinity()};
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
    // Dividing first keeps the product small for sounds of any length.
    const uint64_t frames = after.Frame - before.Frame;
    const auto span = static_cast<uint64_t>(StampDifference(before.Stamp, after.Stamp));
    const auto passed = static_cast<uint64_t>(StampDifference(before.Stamp, stamp));
    return before.Frame + frames / span * passed + frames % span * passed / span;
}

} // namespace ek
