// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <QObject>

#include <functional>

namespace ek {

/// Hears, in the event loop, the signals that ask the process to end. One at a time.
class SignalWatch : public QObject {
public:
    /// `ask` is called at the first SIGINT or SIGTERM; `leave`, with the signal, at any further one and at SIGHUP,
    /// after which nobody is there to answer. A signal that the process was started to ignore stays ignored.
    SignalWatch(std::function<void()> ask, std::function<void(int signal)> leave);
    ~SignalWatch() override;

private:
    void Read();

    std::function<void()> m_ask;
    std::function<void(int)> m_leave;
    int m_readEnd = -1;
    bool m_hasAsked = false;
};

} // namespace ek
