// SPDX-License-Identifier: GPL-3.0-or-later
#include "devices/HangGuard.h"

#include <condition_variable>
#include <exception>
#include <mutex>
#include <thread>
#include <utility>

namespace ek {

struct HangGuard::State {
    std::mutex Mutex;
    std::condition_variable Changed;
    bool IsBusy = false;
    bool Hangs = false; ///< the step that runs has kept somebody waiting for too long

    void SetIdle(bool& done)
    {
        const std::lock_guard lock(Mutex);
        IsBusy = false;
        Hangs = false;
        done = true;
        Changed.notify_all();
    }
};

HangGuard::HangGuard(std::chrono::milliseconds limit) : m_limit(limit), m_state(std::make_shared<State>()) {}

bool HangGuard::Run(std::function<void()> step)
{
    const auto done = std::make_shared<bool>(false);
    State& state = *m_state;
    std::unique_lock lock(state.Mutex);
    (void)state.Changed.wait_for(lock, m_limit, [&] { return !state.IsBusy || state.Hangs; });
    if (!state.IsBusy) {
        try {
            std::thread([shared = m_state, done, step = std::move(step)]() mutable {
                step();
                step = nullptr; // what it holds may hang as well
                shared->SetIdle(*done);
            }).detach();
        } catch (const std::exception&) {
            return false;
        }
        state.IsBusy = true;
        if (state.Changed.wait_for(lock, m_limit, [&] { return *done; }))
            return true;
    }
    state.Hangs = true;
    state.Changed.notify_all();
    return false;
}

void HangGuard::WaitUntilIdle(std::chrono::milliseconds limit) const
{
    std::unique_lock lock(m_state->Mutex);
    m_state->Changed.wait_for(lock, limit, [this] { return !m_state->IsBusy || m_state->Hangs; });
}

} // namespace ek
