// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <cstdint>

namespace ek {

/// While it lives, the n-th allocation (from 0) of this thread fails; those before and after it work. One at a time.
class FailingAllocation {
public:
    explicit FailingAllocation(uint64_t nth);
    ~FailingAllocation();
    FailingAllocation(const FailingAllocation&) = delete;
    FailingAllocation& operator=(const FailingAllocation&) = delete;

    bool HasFailed() const;
};

} // namespace ek
