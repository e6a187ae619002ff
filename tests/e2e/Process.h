// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <filesystem>
#include <map>
#include <string>
#include <sys/types.h>
#include <vector>

namespace ek {

/// Variables to set; an empty value removes one.
using Environment = std::map<std::string, std::string>;

/// A child process, ended with this object.
class Process {
public:
    /// stdout and stderr go to `output`. The name is searched in PATH.
    Process(const std::vector<std::string>& arguments, const Environment& environment,
            const std::filesystem::path& output);
    ~Process();
    Process(const Process&) = delete;
    Process& operator=(const Process&) = delete;

    bool HasEnded();
    void Send(int signal) const;
    int ExitStatus() const { return m_exitStatus; } ///< once it has ended; 128 and more: killed by a signal
    std::string Output() const;

private:
    std::filesystem::path m_output;
    pid_t m_pid;
    int m_exitStatus = -1;
    bool m_ended = false;
};

bool IsInstalled(const std::string& program);

/// Whether `condition` comes true; it is asked again and again up to a generous limit, after which something is wrong.
template <class Condition>
bool Eventually(Condition condition);

/// The pause between two questions.
void Pause();
bool IsOverdue(int pauses);

template <class Condition>
bool Eventually(Condition condition)
{
    for (int pauses = 0; !condition(); ++pauses) {
        if (IsOverdue(pauses))
            return false;
        Pause();
    }
    return true;
}

} // namespace ek
