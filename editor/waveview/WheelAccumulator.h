// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <cstdint>

namespace ek {

/// Turns wheel movement into whole steps. Touchpads and free-spinning wheels report fractions of a notch; they are
/// kept until they make up a step, and dropped when the direction changes.
class WheelAccumulator {
public:
    static constexpr int NotchDelta = 120; ///< what one notch of a plain wheel reports

    /// The steps that are complete with this movement, `stepsPerNotch` for each notch; the sign is the delta's.
    int64_t Take(int delta, int64_t stepsPerNotch = 1)
    {
        if (delta == 0) // a touchpad reports its end like this
            return 0;
        if ((delta < 0) != (m_rest < 0))
            m_rest = 0;
        m_rest += delta * stepsPerNotch;
        const int64_t steps = m_rest / NotchDelta;
        m_rest -= steps * NotchDelta;
        return steps;
    }

private:
    int64_t m_rest = 0;
};

} // namespace ek
