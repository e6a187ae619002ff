// SPDX-License-Identifier: GPL-3.0-or-later
#include "PlayerFixture.h"

#include "support/FaultyFileCalls.h"

#include <gmock/gmock.h>

#include <algorithm>
#include <cmath>
#include <limits>

namespace ek {
namespace {

using testing::AnyOf;
using testing::Contains;
using testing::ElementsAre;
using testing::HasSubstr;
using testing::IsEmpty;

/// What holds for each kind of device: a system, and how its sound is brought to its end.
struct DeviceKind {
    const char* System;
    void (*PlayOut)(FakeBackend& backend, FakeCard* card, FakeModule& module);
};

class EveryDevice : public PlayerTest, public testing::WithParamInterface<DeviceKind> {};

INSTANTIATE_TEST_SUITE_P(Kinds, EveryDevice,
                         testing::Values(DeviceKind{"null",
                                                    [](FakeBackend& backend, FakeCard*, FakeModule& module) {
                                                        while (!module.Ended.IsSet())
                                                            backend.Clock->Advance(10000);
                                                    }},
                                         DeviceKind{"file", [](FakeBackend&, FakeCard*,
                                                               FakeModule& module) { module.Ended.Wait(); }},
                                         DeviceKind{"cards",
                                                    [](FakeBackend&, FakeCard* card, FakeModule& module) {
                                                        while (!module.Ended.IsSet() && card->IsStarted())
                                                            card->Pull(700);
                                                        module.Ended.Wait();
                                                    }}),
                         [](const auto& kind) { return std::string(kind.param.System); });

TEST_P(EveryDevice, PlaysASoundToItsEndAndSaysSoOnce)
{
    for (const uint64_t frames : {0, 1, 1023, 1024, 5 * 1024, 9999}) {
        SCOPED_TRACE(frames);
        FakeModule module(2, frames);
        FakeCard* const card =
            GetParam().System == std::string("cards") ? &m_backend.AddCard({Rate, 2, 700}, 900) : nullptr;
        m_player.Choose({GetParam().System, {}, 0, m_folder / "out.wav"});
        SetUpFor(module);
        ASSERT_TRUE(m_player.Start());
        GetParam().PlayOut(m_backend, card, module);
        EXPECT_EQ(m_player.GetState(), CHostPlayer::Stopped);
        EXPECT_EQ(module.StateAtEnd, CHostPlayer::Stopped);
        m_player.Watch();
        EXPECT_EQ(m_player.HeardMilliseconds(), frames * 1000 / Rate);
        m_player.Stop();
        EXPECT_EQ(module.Notices, 1U);
        EXPECT_EQ(module.Next, frames);
        EXPECT_THAT(m_told.Take(), testing::Each(AnyOf("controls", "device")));
    }
}

TEST_P(EveryDevice, StopsAtAnyPointWithoutANotice)
{
    FakeModule module(1, 200);
    m_player.SetLoop(true);
    m_player.Choose({GetParam().System, {}, 0, m_folder / "out.wav"});
    SetUpFor(module, 64);
    for (uint32_t i = 0; i < 20; ++i) {
        m_backend.AddCard({Rate, 2, 100});
        ASSERT_TRUE(m_player.Start());
        if (i % 2 == 0)
            m_player.Pause();
        m_player.Stop();
        const size_t requests = module.RequestCount();
        EXPECT_EQ(m_player.GetState(), CHostPlayer::Stopped);
        m_player.Pause();
        m_player.Stop();
        EXPECT_EQ(module.RequestCount(), requests);
    }
    EXPECT_EQ(module.Notices, 0U);
}

TEST_F(PlayerTest, FileHoldsTheSamplesExactly)
{
    for (const uint32_t block : {1U, 100U, 1024U, 5000U}) {
        for (const uint64_t frames : {1ULL, 1023ULL, 1024ULL, 20001ULL}) {
            SCOPED_TRACE(testing::Message() << frames << " in blocks of " << block);
            FakeModule module(2, frames);
            m_player.Choose({"file", {}, 0, m_folder / "exact.wav"});
            SetUpFor(module, block);
            ASSERT_TRUE(m_player.Start());
            module.Ended.Wait();
            EXPECT_EQ(WavValues(m_folder / "exact.wav"), Sound(module, 0, frames));
        }
    }
    EXPECT_EQ(m_folder.EntryCount(), 1U);
}

TEST_F(PlayerTest, FileGoesOnThroughPausesLoopsAndRestarts)
{
    FakeModule module(2, 3000);
    m_player.SetLoop(true);
    m_player.Choose({"file", {}, 0, m_folder / "loop.wav"});
    SetUpFor(module);
    ASSERT_TRUE(m_player.Start());
    module.WaitForRequests(10);
    for (int i = 0; i < 5; ++i) {
        m_player.Pause();
        EXPECT_EQ(m_player.GetState(), CHostPlayer::Paused);
        m_player.Pause();
    }
    module.WaitForRequests(30);
    m_player.SetLoop(false);
    module.Ended.Wait();
    const std::vector<int16_t> looped = WavValues(m_folder / "loop.wav");
    EXPECT_EQ(looped.size() % (3000 * 2), 0U);
    EXPECT_EQ(looped, Sound(module, 0, looped.size() / 2));

    // A module that resumes after a pause starts anew from its cursor: that must not throw the first part away.
    m_player.SetLoop(true);
    FakeModule first(2, 3000);
    SetUpFor(first);
    ASSERT_TRUE(m_player.Start());
    first.WaitForRequests(20);
    m_player.Pause();
    FakeModule rest(2, 2048);
    SetUpFor(rest);
    m_player.Pause();
    m_player.SetLoop(false);
    ASSERT_TRUE(m_player.Start());
    rest.Ended.Wait();
    const std::vector<int16_t> both = WavValues(m_folder / "loop.wav");
    const std::vector<int16_t> tail = Sound(rest, 0, 2048);
    ASSERT_GT(both.size(), tail.size());
    EXPECT_TRUE(std::equal(tail.rbegin(), tail.rend(), both.rbegin()));
    const std::vector<int16_t> head(both.begin(), both.end() - static_cast<ptrdiff_t>(tail.size()));
    EXPECT_EQ(head, Sound(first, 0, head.size() / 2));
}

TEST_F(PlayerTest, FileIsAllOrNothingAndItsErrorsAreTold)
{
    FakeModule probe(2, 20000);
    m_player.Choose({"file", {}, 0, m_folder / "kept.wav"});
    FaultyFileCalls calls(m_folder.Path(), FaultyFileCalls::Opens | FaultyFileCalls::Writes | FaultyFileCalls::Syncs |
                                               FaultyFileCalls::Closes | FaultyFileCalls::Renames);
    for (uint64_t nth = 1;; ++nth) {
        SCOPED_TRACE(testing::Message() << "fault " << nth);
        WriteTextFile(m_folder / "kept.wav", "old");
        FakeModule module(2, 20000);
        SetUpFor(module);
        m_told.Take();
        calls.FailCall(nth, ENOSPC);
        const bool started = m_player.Start() != 0;
        if (started)
            module.Ended.Wait();
        m_player.Stop();
        const bool failed = calls.HasFailed();
        calls.StopFailing();
        if (!failed) {
            EXPECT_EQ(WavValues(m_folder / "kept.wav").size(), 40000U);
            EXPECT_GT(nth, 8U);
            break;
        }
        EXPECT_THAT(m_told.Take(), Contains(HasSubstr("kept.wav: No space left on device")));
        EXPECT_EQ(m_folder.EntryCount(), 1U);
        const std::string content = ReadTextFile(m_folder / "kept.wav");
        EXPECT_TRUE(content == "old" || WavValues(m_folder / "kept.wav").size() == 40000U);
        EXPECT_EQ(module.Notices, started ? 1U : 0U);
    }
}

TEST_F(PlayerTest, AnyNumberOfFramesPerCallGivesTheSameSound)
{
    constexpr uint64_t Frames = 60000;
    FakeModule module(2, Frames);
    FakeCard& card = m_backend.AddCard({Rate, 2, 0});
    SetUpFor(module, 1000, 3);
    ASSERT_TRUE(m_player.Start());
    std::vector<int16_t> heard;
    const std::vector<uint32_t> sizes = {1, 7, 333, 1000, 3001, 20000, 2, 5000};
    for (size_t i = 0; !module.Ended.IsSet() && heard.size() < Frames * 2; ++i) {
        const std::vector<int16_t> more = WithoutSilence(card.Pull(sizes[i % sizes.size()]));
        heard.insert(heard.end(), more.begin(), more.end());
    }
    EXPECT_EQ(heard, Sound(module, 0, Frames));
    EXPECT_GT(m_player.TakePeaks()[1], 0.9F);
    EXPECT_EQ(m_player.TakePeaks()[1], 0.0F);
}

TEST_F(PlayerTest, BlocksThatComeTooLateAreCounted)
{
    FakeModule module(1, 1000000);
    FakeCard& card = m_backend.AddCard({Rate, 2, 0});
    SetUpFor(module);
    ASSERT_TRUE(m_player.Start());
    PullSound(card, 2, 1);
    EXPECT_EQ(m_player.DropoutCount(), 0U);
    card.Pull(300000); // more than anyone keeps ready
    EXPECT_EQ(m_player.DropoutCount(), 1U);
}

TEST_F(PlayerTest, StampsTellWhenABlockIsHeard)
{
    constexpr uint32_t Latency = 4410; // 100 ms
    FakeModule module(1, 1000000);
    FakeCard& card = m_backend.AddCard({Rate, 1, 441}, Latency);
    SetUpFor(module, 441, 5); // 10 ms each
    const auto start = static_cast<uint32_t>(m_backend.NowMicroseconds() / 1000);
    ASSERT_TRUE(m_player.Start());
    module.WaitForRequests(5);
    EXPECT_THAT(module.TakeStamps(), ElementsAre(start + 100, start + 110, start + 120, start + 130, start + 140));
    PullSound(card, 1, 1); // the first frame goes when the ring is full
    PullSound(card, 440, 440);
    module.WaitForRequests(6);
    EXPECT_EQ(module.TakeStamps()[5], start + 140); // from now on in the ring: 4 blocks

    m_player.Pause();
    m_backend.Clock->Advance(1000000);
    EXPECT_EQ(m_player.HeardMilliseconds(), 0U);
    for (uint32_t pulled = 0; pulled < Latency; pulled += 441)
        EXPECT_THAT(WithoutSilence(card.Pull(441)), IsEmpty());
    EXPECT_EQ(m_player.HeardMilliseconds(), 10U); // the card has played out what it held
    EXPECT_EQ(module.RequestCount(), 6U);
    m_player.Pause();
    PullSound(card, 441, 441);
    module.WaitForRequests(7);
    EXPECT_EQ(module.TakeStamps()[6], start + 1000 + 140);
    EXPECT_EQ(m_player.HeardMilliseconds(), 10U);
}

TEST_F(PlayerTest, PeaksAreThoseOfTheSoundWhateverTheCardHas)
{
    const auto loud = [](CHostAudioDevice*, void* request, void*) -> uint32_t {
        const _SOUNDDATAEX_& sound = *static_cast<PlayRequest*>(request)->Sound;
        for (uint32_t i = 0; sound.Request && i < sound.FrameCount; ++i)
            for (uint32_t channel = 0; channel < 6; ++channel)
                sound.Channels[channel][i] = i == 100 && channel < 5 ? -0.25F * static_cast<float>(channel + 1) : 0.0F;
        return sound.Request ? sound.FrameCount : 0;
    };
    FakeCard& card = m_backend.AddCard({48000, 2, 480});
    WAVEFORMATEXTENSIBLE surround = MakePcm16Format(Rate, 6);
    m_player.SetFormat(&surround);
    m_player.SetCallback(loud, nullptr);
    ASSERT_TRUE(m_player.Start());
    EXPECT_EQ(m_player.TakePeaks()[4], 0.0F); // not heard yet
    surround = MakePcm16Format(Rate, 1);
    m_player.SetFormat(&surround);
    EXPECT_EQ(m_player.ChannelCount(), 6U);
    while (m_player.HeardMilliseconds() < 50)
        card.Pull(480);
    EXPECT_THAT(m_player.TakePeaks(), ElementsAre(0.25F, 0.5F, 0.75F, 1.0F, 1.25F, 0, 0, 0));
    m_player.Pause();
    card.Pull(480);
    EXPECT_THAT(m_player.TakePeaks(), testing::Each(0.0F));
}

TEST_F(PlayerTest, ANewStartDropsWhatIsQueuedAndKeepsTheDevice)
{
    FakeModule module(2, 1000000);
    FakeCard& card = m_backend.AddCard({Rate, 2, 256});
    SetUpFor(module);
    ASSERT_TRUE(m_player.Start());
    PullSound(card, 2 * 256, 256);
    FakeModule other(2, 600);
    other.Next = 500;
    other.Player = &m_player;
    m_player.SetCallback(&FakeModule::Callback, &other);
    m_player.Pause();
    ASSERT_TRUE(m_player.Start());
    EXPECT_EQ(m_player.GetState(), CHostPlayer::Running);
    EXPECT_EQ(PullSound(card, 200, 50), Sound(other, 500, 600));
    while (card.IsStarted())
        card.Pull(50);
    EXPECT_EQ(m_player.HeardMilliseconds(), 2U);
    EXPECT_EQ(module.Notices, 0U);
}

TEST_F(PlayerTest, AStartWhileTheSoundBeforeIsJustEndingIsANewSound)
{
    m_player.Choose({"null"});
    for (int i = 0; i < 50; ++i) {
        FakeModule ending(1, 50);
        SetUpFor(ending);
        ASSERT_TRUE(m_player.Start());
        ending.WaitForRequests(1);
        m_backend.Clock->Advance(10000); // the pump may be telling the module of the end now
        FakeModule next(1, 1000000);
        SetUpFor(next);
        ASSERT_TRUE(m_player.Start());
        EXPECT_EQ(m_player.GetState(), CHostPlayer::Running);
        next.WaitForRequests(1);
        EXPECT_LE(ending.Notices, 1U);
        m_player.Stop();
    }
}

TEST_F(PlayerTest, FramesThatWereDroppedTakeNoRoomFromThoseThatFollow)
{
    constexpr uint32_t Block = 1000;
    const std::vector<float> old(Block, 0.5F);
    const std::vector<float> fresh(Block, 0.25F);
    PlayQueue queue(Rate, 1, Block, 3 * Block, 0);
    uint32_t blocks = 0;
    for (; queue.HasRoomForBlock(); ++blocks)
        queue.Write(old.data(), Block);
    queue.SetPrimed();
    const uint64_t start = queue.Restart();
    EXPECT_EQ(start, uint64_t{blocks} * Block);
    EXPECT_EQ(queue.NextTakenMicroseconds(), 0);
    uint32_t freshBlocks = 0;
    for (; queue.HasRoomForBlock(); ++freshBlocks)
        queue.Write(fresh.data(), Block);
    EXPECT_EQ(freshBlocks, blocks);
    queue.SetEnd(0);
    EXPECT_FALSE(queue.IsDrained());
    std::vector<float> taken(10 * Block);
    EXPECT_EQ(queue.Take(taken.data(), 10 * Block, 0), freshBlocks * Block);
    EXPECT_EQ(taken[0], 0.25F);

    // However often it begins anew, nothing is written over what the device may be reading.
    queue.Restart();
    uint64_t written = 0;
    for (int i = 0; i < 1000; ++i, queue.Restart())
        for (; queue.HasRoomForBlock(); written += Block)
            queue.Write(fresh.data(), Block);
    EXPECT_LT(written, 1000000U);
    EXPECT_FALSE(queue.HasRoomForBlock());
    queue.Take(taken.data(), 1, 0);
    EXPECT_TRUE(queue.HasRoomForBlock());
}

TEST_F(PlayerTest, ASoundOfAnotherRateKeepsItsLengthAndPitch)
{
    constexpr uint64_t Frames = 44100;
    const auto sine = [](CHostAudioDevice*, void* request, void* user) -> uint32_t {
        _SOUNDDATAEX_& sound = *static_cast<PlayRequest*>(request)->Sound;
        uint64_t& next = *static_cast<uint64_t*>(user);
        uint32_t done = 0;
        for (; sound.Request && done < sound.FrameCount && next < Frames; ++done, ++next)
            sound.Channels[0][done] = static_cast<float>(0.5 + 0.25 * std::sin(2 * M_PI * 1000 * next / Rate));
        return done;
    };
    uint64_t next = 0;
    FakeCard& card = m_backend.AddCard({48000, 2, 480});
    const WAVEFORMATEXTENSIBLE mono = MakePcm16Format(Rate, 1);
    m_player.SetFormat(&mono);
    m_player.SetCallback(sine, &next);
    ASSERT_TRUE(m_player.Start());
    std::vector<float> left;
    while (m_player.GetState() == CHostPlayer::Running && card.IsStarted()) {
        const std::vector<float> pulled = card.Pull(480);
        for (size_t i = 0; i < pulled.size(); i += 2) {
            ASSERT_EQ(pulled[i], pulled[i + 1]); // mono on both sides
            if (pulled[i] != 0)                  // else it came too late, as the card here does not wait
                left.push_back(pulled[i]);
        }
        if (left.size() >= 48000)
            break;
    }
    ASSERT_GE(left.size(), 47000U);
    const auto peak = std::max_element(left.begin() + 1000, left.begin() + 1048) - left.begin();
    for (size_t i = 2000; i < 30000; ++i)
        ASSERT_NEAR(left[i], 0.5 + 0.25 * std::cos(2 * M_PI * 1000 * (static_cast<double>(i) - peak) / 48000), 0.02);
}

TEST_F(PlayerTest, OneModuleOwnsThePlayerAtATime)
{
    EXPECT_EQ(m_player.GetOwner(), nullptr);
    EXPECT_TRUE(m_player.Acquire(u"One"));
    EXPECT_THAT(m_told.Take(), ElementsAre("granted", "controls"));
    EXPECT_TRUE(m_player.Acquire(u"One"));
    EXPECT_FALSE(m_player.Acquire(u"Two"));
    m_player.Release(u"Two");
    EXPECT_EQ(std::u16string(m_player.GetOwner()), u"One");
    EXPECT_THAT(m_told.Take(), ElementsAre("granted"));
    m_player.Release(u"One");
    EXPECT_EQ(m_player.GetOwner(), nullptr);
    EXPECT_TRUE(m_player.Acquire(u"Two"));
    m_player.UpdateControls(u"Two", 1);
    EXPECT_TRUE(m_player.CanPlay());
    EXPECT_THAT(m_told.Take(), ElementsAre("controls", "granted", "controls", "controls"));
    m_player.SetProgress(m_player.GetProgressRange() + 5);
    EXPECT_EQ(m_player.Progress(), m_player.GetProgressRange());
}

TEST_F(PlayerTest, WhatIsSetWhilePlayingHoldsFromTheNextStart)
{
    FakeModule stereo(2, 100000);
    FakeModule mono(1, 100);
    FakeCard& first = m_backend.AddCard({Rate, 2, 256});
    SetUpFor(stereo);
    ASSERT_TRUE(m_player.Start());
    SetUpFor(mono, 10, 2);
    EXPECT_EQ(m_player.GetFormat()->nChannels, 1);
    EXPECT_EQ(m_player.GetBufferCount(), 2U);
    EXPECT_EQ(m_player.GetBufferSize(), 20U);
    const std::vector<int16_t> heard = PullSound(first, 2 * 20000, 500);
    EXPECT_EQ(heard, Sound(stereo, 0, heard.size() / 2));
    EXPECT_EQ(mono.RequestCount(), 0U);
    FakeCard& second = m_backend.AddCard({Rate, 2, 256});
    ASSERT_TRUE(m_player.Start());
    EXPECT_EQ(PullSound(second, 200, 50).size(), 200U);
    EXPECT_EQ(stereo.Notices, 0U);
}

TEST_F(PlayerTest, CallsThatComeThickAndFastDoNoHarm)
{
    FakeModule module(2, 700);
    HostPlayer player; // with devices that run by themselves
    player.Choose({"null"});
    player.SetListener(&m_told);
    player.Choose({"null"});
    const WAVEFORMATEXTENSIBLE format = MakePcm16Format(Rate, 2);
    player.SetFormat(&format);
    player.SetBufferSize(64);
    player.SetCallback(&FakeModule::Callback, &module);
    uint32_t state = 1;
    for (int i = 0; i < 600; ++i) {
        state = state * 1664525 + 1013904223;
        switch (state >> 29) {
        case 0:
        case 1:
            EXPECT_TRUE(player.Start());
            break;
        case 2:
            player.Stop();
            break;
        case 3:
        case 4:
            player.Pause();
            break;
        case 5:
            player.Choose(i % 2 ? AudioDeviceChoice{"null"} : AudioDeviceChoice{"file", {}, 0, m_folder / "x.wav"});
            break;
        case 6:
            player.SetLoop(i % 3 != 0);
            break;
        default:
            player.Watch();
            player.TakePeaks();
            player.HeardMilliseconds();
        }
    }
    player.Stop();
    EXPECT_THAT(m_told.Take(), testing::Each(AnyOf("controls", "device")));
    EXPECT_TRUE(player.Start()); // and is destroyed while it plays
}

} // namespace
} // namespace ek
