// SPDX-License-Identifier: GPL-3.0-or-later
#include "host/SignalWatch.h"

#include <QSocketNotifier>

#include <fcntl.h>
#include <unistd.h>

#include <cerrno>
#include <csignal>
#include <utility>

namespace ek {

namespace {

constexpr int Signals[] = {SIGHUP, SIGINT, SIGTERM};

volatile std::sig_atomic_t g_writeEnd = -1;

void PassOn(int signal)
{
    const int kept = errno;
    const char byte = static_cast<char>(signal);
    // A full pipe holds more signals than anybody has to hear.
    [[maybe_unused]] const ssize_t written = ::write(g_writeEnd, &byte, 1);
    errno = kept;
}

void Catch(int signal)
{
    struct sigaction present {};
    if (::sigaction(signal, nullptr, &present) != 0 || present.sa_handler == SIG_IGN)
        return;
    struct sigaction action {};
    action.sa_handler = PassOn;
    action.sa_flags = SA_RESTART;
    ::sigaction(signal, &action, nullptr);
}

void Release(int signal)
{
    struct sigaction present {};
    if (::sigaction(signal, nullptr, &present) == 0 && present.sa_handler == PassOn)
        std::signal(signal, SIG_DFL);
}

} // namespace

SignalWatch::SignalWatch(std::function<void()> ask, std::function<void(int)> leave)
    : m_ask(std::move(ask)), m_leave(std::move(leave))
{
    int ends[2];
    if (::pipe2(ends, O_CLOEXEC | O_NONBLOCK) != 0)
        return;
    m_readEnd = ends[0];
    g_writeEnd = ends[1];
    auto* notifier = new QSocketNotifier(m_readEnd, QSocketNotifier::Read, this);
    connect(notifier, &QSocketNotifier::activated, this, [this] { Read(); });
    for (const int signal : Signals)
        Catch(signal);
}

SignalWatch::~SignalWatch()
{
    if (m_readEnd < 0)
        return;
    for (const int signal : Signals)
        Release(signal);
    ::close(std::exchange(m_readEnd, -1));
    ::close(g_writeEnd);
    g_writeEnd = -1;
}

void SignalWatch::Read()
{
    char signal = 0;
    if (::read(m_readEnd, &signal, 1) != 1)
        return;
    if (signal == SIGHUP || std::exchange(m_hasAsked, true))
        m_leave(signal);
    else
        m_ask();
}

} // namespace ek
