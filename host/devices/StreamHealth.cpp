// SPDX-License-Identifier: GPL-3.0-or-later
#include "devices/StreamHealth.h"

namespace ek {

namespace {

constexpr int64_t StallMilliseconds = 5000; // a healthy card asks many times a second

} // namespace

std::string TextForPerson(std::string libraryText)
{
    const size_t word = libraryText.find(' ');
    if (word != std::string::npos && word > 0 && libraryText[word - 1] == ':' && libraryText.starts_with("Rt"))
        libraryText.erase(0, word + 1);
    const size_t last = libraryText.find_last_not_of(". \n!");
    libraryText.resize(last == std::string::npos ? 0 : last + 1);
    return libraryText;
}

void StreamHealth::Begin(uint64_t nowTicks)
{
    m_lastCall = nowTicks;
    m_runs = true;
}

void StreamHealth::End()
{
    m_runs = false;
}

bool StreamHealth::OnCall(uint64_t nowTicks, bool hadGap)
{
    m_lastCall.store(nowTicks, std::memory_order_relaxed);
    if (m_isWarned.exchange(false, std::memory_order_acq_rel) && !hadGap && m_runs)
        Fail(m_warning);
    return !m_isFailing.load(std::memory_order_relaxed);
}

void StreamHealth::OnWarning(const std::string& libraryText)
{
    Copy(libraryText, m_warning);
    m_isWarned.store(true, std::memory_order_release);
}

void StreamHealth::OnError(const std::string& libraryText)
{
    Text reason{};
    Copy(libraryText, reason);
    if (m_runs)
        Fail(reason);
}

void StreamHealth::Copy(const std::string& from, Text& to)
{
    to.fill('\0');
    from.copy(to.data(), to.size() - 1);
}

void StreamHealth::Fail(const Text& reason)
{
    if (m_isFailing.exchange(true))
        return;
    m_reason = reason;
    m_failed.store(true, std::memory_order_release);
}

bool StreamHealth::HasFailed(uint64_t nowTicks) const
{
    if (m_failed.load(std::memory_order_acquire))
        return true;
    // A call may have come after the caller looked at the clock.
    const auto silent = static_cast<int64_t>(nowTicks - m_lastCall.load(std::memory_order_relaxed));
    return m_runs && silent > StallMilliseconds;
}

std::string StreamHealth::Reason() const
{
    return m_failed.load(std::memory_order_acquire) ? TextForPerson(m_reason.data()) : std::string();
}

} // namespace ek
