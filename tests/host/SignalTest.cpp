// SPDX-License-Identifier: GPL-3.0-or-later
#include "host/SignalWatch.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <QCoreApplication>

#include <csignal>
#include <string>
#include <vector>

namespace ek {
namespace {

using testing::ElementsAre;

class SignalTest : public testing::Test {
protected:
    void Send(int signal)
    {
        ::raise(signal);
        QCoreApplication::processEvents();
    }

    std::vector<std::string> m_heard;
    const std::function<void()> m_ask = [this] { m_heard.push_back("ask"); };
    const std::function<void(int)> m_leave = [this](int signal) {
        m_heard.push_back("leave " + std::to_string(signal));
    };
};

TEST_F(SignalTest, TheFirstRequestAsksAndTheNextLeaves)
{
    const SignalWatch watch(m_ask, m_leave);
    Send(SIGINT);
    Send(SIGTERM);
    EXPECT_THAT(m_heard, ElementsAre("ask", "leave " + std::to_string(SIGTERM)));
}

TEST_F(SignalTest, AHangUpLeavesAtOnceUnlessItIsToBeIgnored)
{
    {
        const SignalWatch watch(m_ask, m_leave);
        Send(SIGHUP);
    }
    EXPECT_THAT(m_heard, ElementsAre("leave " + std::to_string(SIGHUP)));
    std::signal(SIGHUP, SIG_IGN);
    {
        const SignalWatch watch(m_ask, m_leave);
        Send(SIGHUP);
    }
    std::signal(SIGHUP, SIG_DFL);
    EXPECT_EQ(m_heard.size(), 1u);
}

} // namespace
} // namespace ek
