// SPDX-License-Identifier: GPL-3.0-or-later
#include "PlayerFixture.h"

#include "support/FaultyFileCalls.h"

#include <gmock/gmock.h>

namespace ek {
namespace {

using testing::Contains;
using testing::ElementsAre;
using testing::HasSubstr;
using testing::IsEmpty;

class LostDeviceTest : public PlayerTest {};

TEST_F(LostDeviceTest, AFileThatCouldNotBeWrittenIsToldOfAfterPlayingHasEnded)
{
    struct Listener final : HostPlayerListener {
        void OnPlayerGranted() override {}
        void OnPlayerReconfigured() override {}
        void OnControlsChanged() override {}
        void OnDeviceTrouble(const std::string& text) override
        {
            State = Player->GetState();
            Text = text;
        }
        HostPlayer* Player = nullptr;
        int State = -1;
        std::string Text;
    } listener;
    listener.Player = &m_player;
    m_player.SetListener(&listener);
    m_player.Choose({"file", {}, 0, m_folder / "full.wav"});
    m_player.SetLoop(true);
    FakeModule module(2, 20000);
    SetUpFor(module);
    FaultyFileCalls calls(m_folder.Path(), FaultyFileCalls::Writes);
    calls.FailCall(3, ENOSPC);
    ASSERT_TRUE(m_player.Start());
    module.Ended.Wait();
    EXPECT_EQ(listener.State, CHostPlayer::Stopped);
    EXPECT_THAT(listener.Text, testing::EndsWith("No space left on device. Playing has ended."));
}

/// A device that nothing can replace, and whose failure nobody has noticed yet.
class SpoiltDevice final : public OutputDevice {
public:
    StreamShape Shape() const override { return {Rate, 2, 100}; }
    std::string Name() const override { return "spoilt.wav"; }
    bool Start(PlayQueue&, std::string&) override { return true; }
    void Stop() override { m_failed = true; }
    bool Finish(std::string&) override { return ADD_FAILURE() << "it is not whole", false; }
    uint32_t LatencyFrames() const override { return 0; }
    bool HasFailed() const override { return m_failed; }
    std::string Trouble() const override { return "Spoilt."; }
    bool IsReplaceable() const override { return false; }

private:
    std::atomic<bool> m_failed = false;
};

TEST_F(LostDeviceTest, AFileThatFailsAsPlayingIsStoppedOrGoesElsewhereIsToldOf)
{
    for (const bool isStopped : {true, false}) {
        FakeModule module(2, 1000000);
        m_player.Choose({"cards"});
        SetUpFor(module);
        m_backend.Cards.push_back(std::make_unique<SpoiltDevice>());
        ASSERT_TRUE(m_player.Start());
        m_told.Take();
        if (isStopped)
            m_player.Stop();
        else
            m_player.Choose({"null"});
        EXPECT_THAT(m_told.Take(), Contains("Spoilt."));
        m_player.Stop();
    }
}

TEST_F(LostDeviceTest, ALostCardIsReplacedWhereItWasHeardLast)
{
    constexpr uint32_t Latency = 300;
    FakeModule module(2, 20000);
    FakeCard& first = m_backend.AddCard({Rate, 2, 256}, Latency);
    FakeCard& second = m_backend.AddCard({Rate, 2, 256});
    SetUpFor(module);
    m_player.Acquire(u"Module");
    ASSERT_TRUE(m_player.Start());
    const uint64_t taken = PullSound(first, 2 * 5000).size() / 2;
    first.Unplug();
    m_told.Take();
    m_player.Watch();
    EXPECT_THAT(m_told.Take(), ElementsAre("Unplugged. Playing goes on with Fake.", "reconfigured"));
    std::vector<int16_t> rest;
    while (second.IsStarted())
        for (const int16_t value : WithoutSilence(second.Pull(512)))
            rest.push_back(value);
    // Where silence came in between, the card held less of the sound.
    const uint64_t from = 20000 - rest.size() / 2;
    EXPECT_GE(from, taken - Latency);
    EXPECT_LE(from, taken);
    EXPECT_EQ(rest, Sound(module, from, 20000));

    // Without another card time goes on in silence, until there is a card again.
    FakeModule longer(2, 1000000);
    SetUpFor(longer);
    FakeCard& third = m_backend.AddCard({Rate, 2, 256});
    ASSERT_TRUE(m_player.Start());
    const size_t frames = PullSound(third, 2 * 3000).size() / 2;
    third.Unplug();
    m_player.Watch();
    EXPECT_EQ(m_player.DeviceName(), "No sound");
    EXPECT_EQ(m_player.GetState(), CHostPlayer::Running);
    m_backend.Clock->Settle();
    const uint64_t before = m_player.HeardMilliseconds();
    EXPECT_GE(before, frames * 1000 / Rate);
    EXPECT_LE(before, frames * 1000 / Rate + 11); // the first period may have gone
    while (m_player.HeardMilliseconds() < before + 1000)
        m_backend.Clock->Advance(10000);
    const uint64_t inSilence = m_player.HeardMilliseconds();
    FakeCard& fourth = m_backend.AddCard({Rate, 2, 256});
    m_player.Watch();
    EXPECT_EQ(m_player.DeviceName(), "Fake");
    std::vector<int16_t> candidates;
    for (uint64_t frame = inSilence * Rate / 1000; frame <= (inSilence + 1) * Rate / 1000; ++frame)
        candidates.push_back(longer.Value(frame, 0));
    EXPECT_THAT(candidates, Contains(PullSound(fourth, 2)[0]));
}

TEST_F(LostDeviceTest, WhatBecameOfTheDeviceIsTold)
{
    FakeModule module(2, 1000000);
    m_player.SetLoop(true);
    FakeCard& first = m_backend.AddCard({Rate, 2, 256}, 0, "First");
    SetUpFor(module);
    ASSERT_TRUE(m_player.Start());
    EXPECT_THAT(m_told.Take(), ElementsAre("controls", "device"));
    m_player.Watch();
    EXPECT_THAT(m_told.Take(), IsEmpty());

    // Another card has become the default one. One that is busy is not tried again and again.
    first.Moves = true;
    m_backend.Clock->Advance(1000000);
    m_player.Watch();
    m_backend.Clock->Advance(1000000);
    m_player.Watch();
    EXPECT_EQ(m_backend.Openings, 2U);
    EXPECT_EQ(m_player.DeviceName(), "First");
    EXPECT_THAT(m_told.Take(), IsEmpty());
    first.Moves = true;
    FakeCard& second = m_backend.AddCard({48000, 1, 100}, 0, "Second");
    m_backend.Clock->Advance(2000000);
    m_player.Watch();
    EXPECT_THAT(m_told.Take(), ElementsAre("Playing goes on with Second.", "device"));
    EXPECT_FALSE(m_player.IsInTrouble());
    PullSound(second, 1);

    second.Unplug();
    m_player.Watch();
    EXPECT_THAT(m_told.Take(), ElementsAre("Unplugged. Playing goes on without sound.", "device"));
    EXPECT_TRUE(m_player.IsInTrouble());
    // The longer there is none, the more rarely it is looked for.
    m_backend.Openings = 0;
    for (int seconds = 0; seconds < 100; ++seconds) {
        m_backend.Clock->Advance(1000000);
        m_player.Watch();
    }
    EXPECT_GT(m_backend.Openings, 10U);
    EXPECT_LT(m_backend.Openings, 20U);
    m_backend.AddCard({Rate, 2, 256}, 0, "Third");
    m_backend.Clock->Advance(10000000);
    m_player.Watch();
    EXPECT_THAT(m_told.Take(), ElementsAre("device"));
    EXPECT_FALSE(m_player.IsInTrouble());
    EXPECT_EQ(m_player.DeviceName(), "Third");
}

TEST_F(LostDeviceTest, ASoundThatEndsAsItsDeviceIsReplacedDoesNotGoOn)
{
    FakeModule module(1, 5000);
    FakeCard& card = m_backend.AddCard({Rate, 1, 100});
    SetUpFor(module);
    ASSERT_TRUE(m_player.Start());
    m_told.Take();
    m_backend.BeforeOpening = [&] {
        while (!module.Ended.IsSet() && card.IsStarted())
            card.Pull(100);
        module.Ended.Wait();
    };
    m_player.Choose({"cards", "Another"});
    EXPECT_THAT(m_told.Take(), ElementsAre("No card.", "controls"));
    EXPECT_EQ(m_player.DeviceName(), "Fake");
}

TEST_F(LostDeviceTest, WhereNoCardCanBeUsedTheReasonIsTold)
{
    m_player.Choose({"auto"});
    FakeModule module(2, 1000000);
    SetUpFor(module);
    ASSERT_TRUE(m_player.Start());
    EXPECT_THAT(m_told.Take(), ElementsAre("No card. Playing goes on without sound.", "controls", "device"));
    m_player.Stop();
    m_backend.AddCard({Rate, 2, 256}).Refuses = true;
    ASSERT_TRUE(m_player.Start());
    EXPECT_THAT(m_told.Take(), ElementsAre("controls", "Busy. Playing goes on without sound.", "controls"));
    m_backend.AddCard({Rate, 2, 256}).Throws = true;
    m_player.Choose({"cards"});
    EXPECT_THAT(m_told.Take(), ElementsAre(HasSubstr("memory left for playing. Playing goes on without sound.")));
    EXPECT_TRUE(m_player.IsInTrouble());
    m_player.Stop();
    m_told.Take();
    m_backend.AddCard({Rate, 2, 256}).Throws = true;
    EXPECT_FALSE(m_player.Start());
    EXPECT_EQ(m_player.GetState(), CHostPlayer::Stopped);
    EXPECT_THAT(m_told.Take(), ElementsAre(HasSubstr("memory")));
}

TEST_F(LostDeviceTest, ARefusingDeviceIsTold)
{
    FakeModule module(2, 5000);
    SetUpFor(module);
    EXPECT_FALSE(m_player.Start());
    m_backend.AddCard({Rate, 2, 256}).Refuses = true;
    EXPECT_FALSE(m_player.Start());
    EXPECT_THAT(m_told.Take(), ElementsAre("No card.", "Busy."));
    EXPECT_EQ(m_player.GetState(), CHostPlayer::Stopped);
    EXPECT_EQ(module.RequestCount(), 0U);

    WAVEFORMATEXTENSIBLE wrong = MakePcm16Format(Rate, 2);
    wrong.nBlockAlign = 0;
    m_player.SetFormat(&wrong);
    EXPECT_FALSE(m_player.Start());
    wrong.nChannels = 9;
    wrong.nBlockAlign = 18;
    m_player.SetFormat(&wrong);
    EXPECT_FALSE(m_player.Start());
    m_player.SetCallback(nullptr, nullptr);
    EXPECT_FALSE(m_player.Start());
    EXPECT_THAT(m_told.Take(), testing::SizeIs(3));
}

} // namespace
} // namespace ek
