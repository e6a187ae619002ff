// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <cstdint>
#include <limits>

namespace ek {

/// Positions of a scroll bar, which counts in int, for ranges of any size: one step of the bar stands for 2^Shift
/// positions, and its last step for the last position.
struct ScrollScale {
    uint64_t MaxPosition = 0;
    int Shift = 0;

    static ScrollScale For(uint64_t maxPosition)
    {
        int shift = 0;
        while ((maxPosition >> shift) > static_cast<uint64_t>(std::numeric_limits<int>::max()) / 2)
            ++shift;
        return {maxPosition, shift};
    }

    int Maximum() const { return ToBar(MaxPosition); }
    int ToBar(uint64_t position) const { return static_cast<int>(position >> Shift); }
    uint64_t FromBar(int value) const
    {
        return value >= Maximum() ? MaxPosition : static_cast<uint64_t>(value) << Shift;
    }
    /// A step or page length in steps of the bar; at least 1.
    int StepToBar(uint64_t step) const { return (step >> Shift) > 0 ? ToBar(step) : 1; }
    bool operator==(const ScrollScale&) const = default;
};

} // namespace ek
