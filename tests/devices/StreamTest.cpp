// SPDX-License-Identifier: GPL-3.0-or-later
#include "devices/HangGuard.h"
#include "devices/RtStream.h"
#include "devices/StreamHealth.h"
#include "platform/Events.h"

#include <gtest/gtest.h>

#include <atomic>
#include <chrono>
#include <memory>
#include <thread>

namespace ek {
namespace {

constexpr const char* Warning = "RtApiSomething::callbackEvent: audio write error, underrun.";

TEST(StreamTest, AGapThatTheLibraryHasMendedIsNoFailure)
{
    StreamHealth health;
    health.Begin(1000);
    EXPECT_TRUE(health.OnCall(1000, false));
    for (uint64_t now = 1010; now < 2000; now += 10) {
        health.OnWarning(Warning);
        EXPECT_TRUE(health.OnCall(now, true));
        EXPECT_TRUE(health.OnCall(now, false));
    }
    EXPECT_FALSE(health.HasFailed(2000));
    EXPECT_EQ(health.Reason(), "");
}

TEST(StreamTest, AWarningThatTheNextCallKnowsNothingOfIsTheEndOfTheDevice)
{
    StreamHealth health;
    health.Begin(1000);
    health.OnWarning(Warning);
    EXPECT_FALSE(health.HasFailed(1000));
    EXPECT_FALSE(health.OnCall(1000, false));
    EXPECT_TRUE(health.HasFailed(1000));
    EXPECT_EQ(health.Reason(), "audio write error, underrun");
    health.OnError("RtApiOther: something that follows from it");
    health.End();
    EXPECT_TRUE(health.HasFailed(1000)); // also when it is stopped
    EXPECT_EQ(health.Reason(), "audio write error, underrun");
}

TEST(StreamTest, AnErrorOrALongSilenceIsAFailureWhileTheStreamRuns)
{
    StreamHealth failing;
    failing.Begin(0);
    failing.OnError("Device gone.");
    EXPECT_TRUE(failing.HasFailed(0));
    EXPECT_EQ(failing.Reason(), "Device gone");

    StreamHealth health;
    EXPECT_FALSE(health.HasFailed(1000000)); // not started
    health.Begin(1000000);
    EXPECT_FALSE(health.HasFailed(1004000));
    EXPECT_TRUE(health.HasFailed(1006000));
    EXPECT_TRUE(health.OnCall(1007000, false));
    EXPECT_FALSE(health.HasFailed(1006999)); // the clock was looked at before the call came
    health.End();
    health.OnError("of the closing");
    EXPECT_FALSE(health.HasFailed(2000000));
}

TEST(StreamTest, TextsForAPersonDoNotNameTheFunctionsOfALibrary)
{
    EXPECT_EQ(TextForPerson("RtApiPulse::callbackEvent: audio write error, Connection terminated."),
              "audio write error, Connection terminated");
    EXPECT_EQ(TextForPerson("RtApiAlsa::callbackEvent(): the stream is closed ... this shouldn't happen!"),
              "the stream is closed ... this shouldn't happen");
    EXPECT_EQ(TextForPerson("hw:0: busy"), "hw:0: busy");
    EXPECT_EQ(TextForPerson("..."), "");
}

TEST(StreamTest, NobodyWaitsBehindAStepThatHangs)
{
    HangGuard guard(std::chrono::milliseconds(1));
    const auto release = std::make_shared<ManualResetEvent>();
    const auto held = std::make_shared<int>(1);
    EXPECT_FALSE(guard.Run([release, held] { release->Wait(); }));
    const auto runs = std::make_shared<std::atomic<int>>(0);
    for (int i = 0; i < 3; ++i)
        EXPECT_FALSE(guard.Run([runs] { ++*runs; }));
    guard.WaitUntilIdle(std::chrono::hours(1)); // not for one that hangs
    EXPECT_EQ(*runs, 0);
    release->Set();
    while (!guard.Run([runs] { ++*runs; }))
        std::this_thread::yield();
    EXPECT_GT(*runs, 0);
    EXPECT_EQ(held.use_count(), 1); // what the step held went with it
}

TEST(StreamTest, StepsRunOneAtATime)
{
    HangGuard guard(std::chrono::hours(1));
    std::atomic<int> inside = 0;
    std::atomic<int> done = 0;
    {
        std::vector<std::jthread> threads;
        for (int i = 0; i < 4; ++i)
            threads.emplace_back([&] {
                for (int step = 0; step < 50; ++step)
                    EXPECT_TRUE(guard.Run([&] {
                        EXPECT_EQ(++inside, 1);
                        --inside;
                        ++done;
                    }));
            });
    }
    EXPECT_EQ(done, 200);
}

TEST(StreamTest, ASystemThatIsNotBuiltInIsRefused)
{
    RtStream stream("nonsense", false);
    std::string trouble;
    EXPECT_FALSE(stream.Open({}, {}, trouble));
    EXPECT_EQ(trouble, "There is no sound system nonsense.");
    EXPECT_FALSE(stream.HasFailed());
    stream.Stop();
    EXPECT_TRUE(ListCards("nonsense", false).empty());
}

} // namespace
} // namespace ek
