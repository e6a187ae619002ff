// SPDX-License-Identifier: GPL-3.0-or-later
#include "Process.h"

#include <csignal>
#include <cstdlib>
#include <fcntl.h>
#include <fstream>
#include <iterator>
#include <sstream>
#include <sys/prctl.h>
#include <sys/wait.h>
#include <time.h>
#include <unistd.h>

namespace ek {

namespace {

constexpr long PauseNanoseconds = 20'000'000;
constexpr int PausesOfAMinute = 3000;

[[noreturn]] void Become(const std::vector<std::string>& arguments, const Environment& environment,
                         const std::filesystem::path& output)
{
    for (const auto& [name, value] : environment)
        value.empty() ? unsetenv(name.c_str()) : setenv(name.c_str(), value.c_str(), 1);
    const int file = open(output.c_str(), O_WRONLY | O_CREAT | O_TRUNC, 0600);
    dup2(file, STDOUT_FILENO);
    dup2(file, STDERR_FILENO);
    prctl(PR_SET_PDEATHSIG, SIGKILL); // a test that is killed leaves nothing running
    signal(SIGHUP, SIG_DFL);          // the tests may run where it is ignored
    std::vector<char*> pointers;
    for (const std::string& argument : arguments)
        pointers.push_back(const_cast<char*>(argument.c_str()));
    pointers.push_back(nullptr);
    execvp(pointers[0], pointers.data());
    _exit(127);
}

int ToExitStatus(int status)
{
    return WIFEXITED(status) ? WEXITSTATUS(status) : 128 + WTERMSIG(status);
}

} // namespace

Process::Process(const std::vector<std::string>& arguments, const Environment& environment,
                 const std::filesystem::path& output)
    : m_output(output), m_pid(fork())
{
    if (m_pid == 0)
        Become(arguments, environment, output);
}

Process::~Process()
{
    if (HasEnded())
        return;
    kill(m_pid, SIGKILL);
    waitpid(m_pid, nullptr, 0);
}

bool Process::HasEnded()
{
    int status = 0;
    if (!m_ended && waitpid(m_pid, &status, WNOHANG) != 0) {
        m_ended = true;
        m_exitStatus = ToExitStatus(status);
    }
    return m_ended;
}

void Process::Send(int signal) const
{
    kill(m_pid, signal);
}

std::string Process::Output() const
{
    std::ifstream file(m_output, std::ios::binary);
    return {std::istreambuf_iterator<char>(file), {}};
}

bool IsInstalled(const std::string& program)
{
    std::istringstream folders(std::getenv("PATH") ? std::getenv("PATH") : "");
    for (std::string folder; std::getline(folders, folder, ':');) {
        if (access((folder + "/" + program).c_str(), X_OK) == 0)
            return true;
    }
    return false;
}

void Pause()
{
    const timespec pause{.tv_sec = 0, .tv_nsec = PauseNanoseconds};
    nanosleep(&pause, nullptr);
}

bool IsOverdue(int pauses)
{
    return pauses >= PausesOfAMinute;
}

} // namespace ek
