// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <chrono>
#include <functional>
#include <memory>

namespace ek {

/// Steps that may hang, such as questions to a sound server: one at a time, each on a thread of its own. Who asks waits
/// for a limited time only; a step that takes longer is left to itself, and while it hangs nobody waits behind it.
class HangGuard {
public:
    explicit HangGuard(std::chrono::milliseconds limit);
    HangGuard(const HangGuard&) = delete;
    HangGuard& operator=(const HangGuard&) = delete;

    /// True: the step has run. False: it will not, or it still runs, so it owns all that it uses; it must not throw.
    /// Any thread, but not from within a step.
    bool Run(std::function<void()> step);
    /// Returns when no step runs, or one hangs, or the time is over.
    void WaitUntilIdle(std::chrono::milliseconds limit) const;

private:
    struct State;
    std::chrono::milliseconds m_limit;
    std::shared_ptr<State> m_state; ///< shared with the steps, which may outlive this
};

} // namespace ek
