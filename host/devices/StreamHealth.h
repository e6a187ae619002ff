// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <array>
#include <atomic>
#include <cstdint>
#include <string>

namespace ek {

/// What the library below says, for a person: without the function that says it at the beginning, and without the full
/// stop at the end.
std::string TextForPerson(std::string libraryText);

/// Whether the device of a stream works. The library reports the same kind of warning when a buffer ran over or empty,
/// which it then puts right and tells of with the next call, and when the device is gone, of which the next call knows
/// nothing: calls go on all the same, ever faster. Ticks are milliseconds of a clock that never goes back.
class StreamHealth {
public:
    void Begin(uint64_t nowTicks); ///< before the stream is started
    void End();                    ///< before it is stopped: what is reported from now on counts no more

    // The stream's thread, or the one that is starting the stream.
    /// The device takes or gives frames; `hadGap`: some were lost before them. False: it has failed.
    bool OnCall(uint64_t nowTicks, bool hadGap);
    void OnWarning(const std::string& libraryText);
    void OnError(const std::string& libraryText);

    // Any thread.
    /// The device reported an error, or has not called for far longer than a healthy one does.
    bool HasFailed(uint64_t nowTicks) const;
    std::string Reason() const; ///< of an error, for a person, without full stop; may be empty

private:
    using Text = std::array<char, 256>;
    static void Copy(const std::string& from, Text& to);
    void Fail(const Text& reason);

    std::atomic<bool> m_runs = false;
    std::atomic<uint64_t> m_lastCall{0}; ///< ticks
    std::atomic<bool> m_isWarned = false;
    Text m_warning{};
    std::atomic<bool> m_isFailing = false; ///< somebody writes m_reason
    Text m_reason{};                       ///< fixed before m_failed is set
    std::atomic<bool> m_failed = false;
};

} // namespace ek
