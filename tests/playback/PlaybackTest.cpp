// SPDX-License-Identifier: GPL-3.0-or-later
#include "PlaybackFixture.h"

#include "effectmanager/ComplexEffect.h"
#include "effectmanager/SimpleEffect.h"
#include "support/FaultyFileCalls.h"

#include <cerrno>

namespace ek {
namespace {

constexpr uint64_t None = WaveGeometry::NoFrame;

std::vector<int16_t> operator+(std::vector<int16_t> first, const std::vector<int16_t>& second)
{
    first.insert(first.end(), second.begin(), second.end());
    return first;
}

// What is heard.

TEST_F(PlaybackTest, BlocksOfAnySizeCarryEveryFrameOnce)
{
    for (uint32_t channels = 1; channels <= 8; ++channels) {
        Make(channels);
        m_playback->Play();
        std::vector<int16_t> heard;
        for (uint32_t size = 1; heard.size() < m_sound.Values.size(); size = size * 3 % 1999)
            heard = heard + m_player.Pull(size);
        EXPECT_EQ(heard, m_sound.Values) << channels;
        EXPECT_TRUE(m_player.Pull(100).empty());
        m_player.Notify(0); // an empty request
        EXPECT_EQ(m_ends, 0);
        HearEnd();
        EXPECT_EQ(m_ends.exchange(0), 1);
        EXPECT_FALSE(m_playback->IsPlaying());
    }
}

TEST_F(PlaybackTest, TheSelectionOrTheSoundIsPlayedFromTheCursorOn)
{
    struct Case {
        uint64_t Start, End, Cursor, From, To;
    };
    for (const Case& c :
         {Case{0, 0, None, 0, Length}, Case{0, 0, 700, 700, Length}, Case{0, 0, Length, 0, Length},
          Case{2000, 3000, None, 2000, 3000}, Case{2000, 3000, 2500, 2500, 3000}, Case{2000, 3000, 3000, 2000, 3000},
          Case{2000, 3000, 9000, 2000, 3000}, Case{2000, 3000, 1500, 1500, 3000}, Case{3000, 2000, 2100, 2100, 3000}}) {
        Make();
        Select(c.Start, c.End);
        m_view.CursorFrame = c.Cursor;
        m_playback->Play();
        EXPECT_EQ(m_player.Pull(Length + 1), Frames(c.From, c.To)) << c.Start << " " << c.Cursor;
        m_playback->Stop();
        EXPECT_EQ(m_view.CursorFrame, c.Cursor);
    }
}

TEST_F(PlaybackTest, ALoopGoesRoundWithoutLosingOrDoublingAFrame)
{
    Make(2);
    m_player.Loop = 1;
    for (const uint64_t length : {1, 3, 100, 1024, 1500}) {
        Select(4000, 4000 + length);
        m_view.CursorFrame = None;
        m_playback->Play();
        std::vector<int16_t> heard;
        for (const uint32_t size : {7, 1024, 1, 1000, 1024})
            heard = heard + m_player.Pull(size);
        ASSERT_EQ(heard.size(), 2U * 3056);
        for (uint64_t i = 0; i < 3056; ++i)
            ASSERT_EQ(heard[2 * i + 1], m_sound.Values[2 * (4000 + i % length) + 1]) << length << " " << i;
        m_playback->Stop();
    }
}

TEST_F(PlaybackTest, LoopingMayBeSwitchedAtAnyMoment)
{
    Make();
    Select(100, 200);
    m_playback->Play();
    EXPECT_EQ(m_player.Pull(100), Frames(100, 200)); // the last block, and it is full
    m_player.Loop = 1;
    EXPECT_EQ(m_player.Pull(150), Frames(100, 200) + Frames(100, 150));
    m_player.Loop = 0;
    EXPECT_EQ(m_player.Pull(150), Frames(150, 200)); // that is the end, whatever comes
    m_player.Loop = 1;
    EXPECT_TRUE(m_player.Pull(150).empty());
}

TEST_F(PlaybackTest, OneChannelIsHeardAloneAndTheChoiceMayChange)
{
    Make(6);
    m_view.SelectionChannel = ChannelLowFrequency;
    m_playback->Play();
    const auto only = [&](uint64_t start, uint64_t end, uint32_t position) {
        std::vector<int16_t> frames = Frames(start, end);
        for (size_t i = 0; i < frames.size(); ++i)
            frames[i] = i % 6 == position ? frames[i] : int16_t{0};
        return frames;
    };
    EXPECT_EQ(m_player.Pull(500), only(0, 500, 3));
    m_view.SelectionChannel = ChannelFrontRight;
    m_playback->OnSelectionChannelChanged();
    EXPECT_EQ(m_player.Pull(500), only(500, 1000, 1));
    m_view.SelectionChannel = ChannelAll;
    m_playback->OnSelectionChannelChanged();
    EXPECT_EQ(m_player.Pull(500), Frames(1000, 1500));
}

TEST_F(PlaybackTest, ThroughTheEffectsTheSoundIsTheSame)
{
    CEffectTree tree("Effects");
    Make(2, &m_player, &tree);
    m_playback->Play();
    EXPECT_TRUE(tree.IsStreamOpened());
    std::vector<int16_t> heard;
    for (int i = 0; i < 10; ++i)
        heard = heard + m_player.Pull(1024);
    EXPECT_EQ(heard, m_sound.Values);
    HearEnd();
    EXPECT_FALSE(tree.IsStreamOpened());
}

/// Gives the sound late by some frames, or refuses it.
class TestEffect final : public FrameProcessor {
public:
    static inline tEffError Refusal = EffectSuccess;
    static constexpr uint32_t Late = 100;

    static void UseIn(CEffectTree& tree)
    {
        struct Provider final : EffectProvider {
            EffectFamily Family() const override { return EffectFamily::SpecialEffects; }
            std::string FolderTitle() const override { return "Test"; }
            std::vector<LibraryEffectPtr> Scan() override
            {
                return {std::make_shared<BuiltInEffect>(BuiltInEffect::Description{
                    "test", "Test", {}, [] { return std::unique_ptr<EffectProcessor>(new TestEffect); }, {}})};
            }
        };
        tree.AddProvider(std::make_unique<Provider>());
        tree.ScanAllSpecialEffects();
        auto* const chain = new CEffectNode("Chain", NodeComplex, std::make_unique<CComplexEffect>("Chain"));
        auto effect = std::make_unique<CSimpleEffect>(tree.FindEffectByDllName("test"));
        tree.TransferNode(chain, &tree.GetRootNode());
        tree.TransferNode(new CEffectNode("Test", NodeSubEffect, std::move(effect)), chain);
        tree.SetSoundMorphEffect(chain->GetEffect());
    }

    void SetSettings(const EffectSettings&) override {}
    uint32_t Latency() const override { return Late; }

private:
    tEffError OpenFrames(const WAVEFORMATEXTENSIBLE&) override { return RestartFrames(), Refusal; }
    void RestartFrames() override { m_held.assign(Late, 0.0F); }
    void Process(float* const* channels, uint32_t frames) override
    {
        m_held.insert(m_held.end(), channels[0], channels[0] + frames);
        std::copy_n(m_held.begin(), frames, channels[0]);
        m_held.erase(m_held.begin(), m_held.begin() + frames);
    }

    std::vector<float> m_held;
};

TEST_F(PlaybackTest, EffectsThatHoldFramesBackChangeNeitherTheirPlaceNorTheCursor)
{
    CEffectTree tree("Effects");
    TestEffect::Refusal = EffectSuccess;
    TestEffect::UseIn(tree);
    Make(1, &m_player, &tree);
    m_playback->Play();
    EXPECT_EQ(m_player.Pull(1000, Now), Frames(0, 1000));
    EXPECT_GE(tree.Latency(), TestEffect::Late);
    EXPECT_EQ(m_player.Pull(1000, Now + 1000), Frames(1000, 2000));
    m_player.Pull(1000, Now + 2000);
    Now += 1500;
    m_playback->Tick();
    EXPECT_EQ(m_view.CursorFrame, 1500U);
    m_playback->SeekToPercent(80);
    EXPECT_EQ(m_player.Pull(1000, Now), Frames(8000, 9000)); // nothing of before the jump
    EXPECT_EQ(m_player.Pull(2000, Now + 1000), Frames(9000, Length));
    m_playback.reset(); // before the tree
}

TEST_F(PlaybackTest, EffectsThatRefuseTheSoundAreSwitchedOffAndItPlaysWithoutThem)
{
    const std::pair<tEffError, const char*> refusals[] = {
        {EffectMonoOrStereoOnly, "Selected effect(s) can be used with mono or stereo sound only"},
        {EffectStereoOnly, "Selected effect(s) can be used with stereo sound only"},
        {EffectFailed, "Can't start playing with selected effect(s)"},
    };
    for (const auto& [refusal, text] : refusals) {
        CEffectTree tree("Effects");
        TestEffect::Refusal = refusal;
        TestEffect::UseIn(tree);
        Make(1, &m_player, &tree);
        m_playback->Play();
        EXPECT_EQ(m_prompts.Messages().back(), text);
        EXPECT_EQ(tree.GetSoundMorphEffect(), nullptr);
        EXPECT_TRUE(tree.IsStreamOpened());
        EXPECT_EQ(m_player.Pull(Length + 1), m_sound.Values);
        m_playback.reset();
    }
    EXPECT_EQ(m_prompts.Messages().size(), 3U);
}

// Pause, jumps, stop.

TEST_F(PlaybackTest, APauseLosesAndDoublesNothing)
{
    Make();
    m_playback->Play();
    EXPECT_EQ(m_player.Pull(1000, Now), Frames(0, 1000));
    EXPECT_EQ(m_player.Pull(1000, Now + 1000), Frames(1000, 2000));
    Now += 400;
    m_playback->PauseOrResume();
    EXPECT_TRUE(m_playback->IsPaused());
    EXPECT_EQ(m_view.CursorFrame, 400U);
    Now += 60'000;
    m_playback->Tick();
    EXPECT_EQ(m_view.CursorFrame, 400U);
    m_playback->Play(); // of what is paused: goes on
    EXPECT_FALSE(m_playback->IsPaused());
    EXPECT_EQ(m_player.Starts, 1);
    EXPECT_EQ(m_player.Pull(1000, Now + 1600), Frames(2000, 3000));
    Now += 100;
    m_playback->Tick();
    EXPECT_EQ(m_view.CursorFrame, 500U);
    m_playback->Stop();
    m_playback->PauseOrResume();
    EXPECT_FALSE(m_playback->IsPaused());
}

TEST_F(PlaybackTest, AfterAJumpInAPauseWhatTheDeviceHeldIsNotHeard)
{
    Make();
    m_playback->Play();
    m_player.Pull(1000);
    m_playback->PauseOrResume();
    m_playback->JumpForward(); // the cursor is still at the beginning
    EXPECT_EQ(m_player.DeviceState, CHostPlayer::Paused);
    m_playback->PauseOrResume();
    EXPECT_EQ(m_player.Starts, 2);
    EXPECT_EQ(m_player.Pull(1000), Frames(1000, 2000));
    m_playback->PauseOrResume();
    m_playback->SeekToPercent(50);
    EXPECT_FALSE(m_playback->IsPaused());
    EXPECT_EQ(m_player.Pull(1000), Frames(5000, 6000));
}

TEST_F(PlaybackTest, AJumpWhilePlayingGoesOnFromThere)
{
    Make();
    Select(2000, 4000);
    m_view.CursorFrame = 1000;
    m_playback->Play();
    struct Case {
        void (WavePlayback::*Jump)();
        uint64_t Cursor;
    };
    for (const Case& c : {Case{&WavePlayback::JumpForward, 1200}, Case{&WavePlayback::JumpBack, 2000},
                          Case{&WavePlayback::JumpForward, 2200}, Case{&WavePlayback::JumpForward, 2400},
                          Case{&WavePlayback::JumpBack, 2200}, Case{&WavePlayback::JumpToStart, 2000}}) {
        (m_playback.get()->*c.Jump)();
        EXPECT_EQ(m_view.CursorFrame, c.Cursor);
        EXPECT_EQ(m_player.Pull(300), Frames(c.Cursor, c.Cursor + 300));
    }
    m_playback->SeekToPercent(75);
    EXPECT_EQ(m_player.Pull(300), Frames(3500, 3800));
    EXPECT_EQ(m_player.Progress, 750U);
    m_playback->JumpToEnd();
    EXPECT_EQ(m_view.CursorFrame, 4000U);
    EXPECT_TRUE(m_player.Pull(300).empty());
    EXPECT_EQ(m_player.Starts, 1);
    m_playback->Stop();
    EXPECT_EQ(m_view.CursorFrame, 1000U);
}

TEST_F(PlaybackTest, AJumpAfterTheLastBlockStartsThePlayerAnew)
{
    Make();
    m_playback->Play();
    m_player.Pull(Length + 1); // its end is still to be heard
    m_playback->JumpToStart();
    EXPECT_EQ(m_player.Starts, 2);
    EXPECT_EQ(m_player.Pull(500), Frames(0, 500));
    EXPECT_TRUE(m_playback->IsPlaying());
}

TEST_F(PlaybackTest, WithoutPlayingOnlySeekingStarts)
{
    Make();
    m_playback->JumpToEnd();
    EXPECT_EQ(m_view.CursorFrame, Length);
    m_playback->JumpBack();
    EXPECT_EQ(m_view.CursorFrame, Length - Length / 10);
    Select(2000, 4000);
    m_playback->JumpForward(); // the cursor lies beyond the selection
    EXPECT_EQ(m_view.CursorFrame, 4000U);
    EXPECT_EQ(m_player.Starts, 0);
    m_playback->SeekToPercent(10);
    EXPECT_EQ(m_player.Pull(100), Frames(2200, 2300));
    HearEnd();
    EXPECT_EQ(m_view.CursorFrame, 2200U);
}

TEST_F(PlaybackTest, PlayingAgainBeginsWhereItBegan)
{
    Make();
    m_view.CursorFrame = 300;
    m_playback->Play();
    m_player.Pull(1000, Now);
    Now += 500;
    m_playback->Tick();
    EXPECT_EQ(m_view.CursorFrame, 300U + 0); // only one mark was passed, the next is not known yet
    m_player.Pull(1000, Now + 500);
    m_playback->Tick();
    EXPECT_EQ(m_view.CursorFrame, 800U);
    m_playback->Play();
    EXPECT_EQ(m_player.Pull(1000), Frames(300, 1300));
}

TEST_F(PlaybackTest, AnEndThatIsNoLongerTrueChangesNothing)
{
    Make();
    m_playback->Play();
    m_player.Pull(Length + 1);
    m_player.Notify(1);
    m_playback->Play(); // before the window has heard of the end
    m_playback->Finish();
    EXPECT_TRUE(m_playback->IsPlaying());
    EXPECT_EQ(m_player.Pull(10), Frames(0, 10));
}

// The cursor.

TEST_F(PlaybackTest, TheCursorFollowsWhatIsHeardThroughALoop)
{
    Make();
    Now = 0xFFFFFF00; // the stamps wrap around while this plays
    m_player.Loop = 1;
    Select(1000, 2000);
    m_playback->Play();
    m_player.Pull(800, Now + 100);
    m_player.Pull(800, Now + 900);
    const uint32_t begin = Now;
    struct Case {
        uint32_t Time;
        uint64_t Frame;
    };
    for (const Case& c : {Case{50, 1000}, Case{100, 1000}, Case{500, 1400}, Case{900, 1800}, Case{1000, 1900},
                          Case{1100, 2000}, Case{1101, 2000}}) {
        Now = begin + c.Time;
        m_playback->Tick();
        EXPECT_EQ(m_view.CursorFrame, c.Frame) << c.Time;
    }
    m_player.Pull(800, begin + 1700);
    Now = begin + 1400;
    m_playback->Tick();
    EXPECT_EQ(m_view.CursorFrame, 1300U);
    m_player.Pull(1, begin + 2500);
    EXPECT_EQ(m_player.Progress, 300U);
}

TEST_F(PlaybackTest, HoweverFarTheDeviceIsAheadTheCursorIsWhereTheSoundIs)
{
    struct Case {
        uint32_t Rate, Latency;
        uint64_t Round; ///< frames of a loop; 0: the whole sound, once
    };
    for (const Case& c :
         {Case{44100, 500, 0}, Case{96000, 500, 0}, Case{192000, 500, 0}, Case{192000, 2000, 0}, Case{44100, 500, 1},
          Case{44100, 500, 300}, Case{96000, 500, 9600}, Case{192000, 2000, 50'000}}) {
        Make(1, &m_player, nullptr, c.Rate, uint64_t{c.Rate} * 3);
        m_player.Loop = c.Round > 0;
        Select(1000, 1000 + c.Round);
        m_view.CursorFrame = c.Round > 0 ? 1000 : 0;
        m_playback->Play();
        const uint64_t first = m_view.CursorFrame;
        const auto framesIn = [&](uint32_t milliseconds) { return uint64_t{milliseconds} * c.Rate / 1000; };
        const uint32_t begin = Now;
        uint64_t pulled = 0;
        while (Now - begin < c.Latency + 2900) {
            while (pulled < framesIn(Now - begin) + framesIn(c.Latency)) {
                const auto stamp = static_cast<uint32_t>(begin + c.Latency + pulled * 1000 / c.Rate);
                m_player.Pull(1024, stamp - pulled / 1024 % 3); // devices do not stamp evenly
                pulled += 1024;
            }
            m_playback->Tick();
            const uint64_t heard = Now - begin < c.Latency ? 0 : framesIn(Now - begin - c.Latency);
            const uint64_t wanted = first + (c.Round > 0 ? heard % c.Round : heard);
            uint64_t error = std::max(wanted, m_view.CursorFrame) - std::min(wanted, m_view.CursorFrame);
            if (c.Round > 0) {
                ASSERT_TRUE(m_view.CursorFrame >= first && m_view.CursorFrame <= first + c.Round);
                error = std::min(error, c.Round - error);
            }
            ASSERT_LE(error, framesIn(8)) << c.Rate << " " << c.Latency << " " << c.Round << " at " << Now - begin;
            Now += 33;
        }
    }
}

TEST(ViewInput, FramesHeldBackByEffectsAreHeardLater)
{
    struct Silence final : FrameSource {
        uint32_t BlockAlign() const override { return 2; }
        bool ReadData(void* buffer, uint64_t, uint64_t length) override
        {
            std::fill_n(static_cast<char*>(buffer), length, 0);
            return true;
        }
    } silence;
    CViewInput input(silence, nullptr);
    input.Start(MakePcm16Format(1000, 1), {0, 10'000}, 0, 0);
    SoundData block(1, 100);
    input.BeginRequest(1000, 0);
    input.GetData(&block.Record()); // 100 frames, and 100 to look ahead
    input.GetData(&block.Record());
    input.BeginRequest(1100, 100);
    input.GetData(&block.Record());
    EXPECT_EQ(input.HeardFrame(1150), 150U);
    EXPECT_EQ(input.HeardFrame(1200), 200U);
}

TEST(PositionQueue, KeepsTheLatestEndsOfLinesAndReckonsBetweenThem)
{
    PositionQueue queue;
    EXPECT_EQ(queue.FrameAt(0), 0U);
    for (uint32_t i = 0; i < 8; ++i) // each line is four times as steep as the one before
        queue.Push(0xFFFFFFFE + i * 10, uint64_t{1} << (40 + 2 * i));
    EXPECT_EQ(queue.FrameAt(0xFFFFFFFE), uint64_t{1} << 42); // the oldest was dropped
    EXPECT_EQ(queue.FrameAt(13), uint64_t{5} << 41);
    EXPECT_EQ(queue.FrameAt(10'000), uint64_t{1} << 54);
    queue.Delay(5);
    EXPECT_EQ(queue.FrameAt(18), uint64_t{5} << 41);
    queue.Push(18, uint64_t{5} << 42); // a device with a shorter way to the ear
    EXPECT_EQ(queue.FrameAt(10'000), uint64_t{5} << 42);
    EXPECT_EQ(queue.FrameAt(13), uint64_t{1} << 42);
}

// The player.

TEST_F(PlaybackTest, ThePlayerIsToldFormatAndBuffers)
{
    Make(6);
    m_playback->TakePlayer();
    EXPECT_EQ(m_player.Format.nChannels, 6);
    EXPECT_EQ(m_player.BufferCount, 5U);
    EXPECT_EQ(m_player.BufferSize, 12U * 1024);
    EXPECT_EQ(m_player.CanPlay, 1);
    Make(1, &m_player, nullptr, 1000, 0);
    m_playback->TakePlayer();
    EXPECT_EQ(m_player.CanPlay, 0);
    m_playback->Play();
    m_playback->SeekToPercent(50);
    m_playback->JumpForward();
    EXPECT_EQ(m_player.Starts, 0);
    EXPECT_EQ(m_view.CursorFrame, None);
}

TEST_F(PlaybackTest, APlayerThatDoesNotStartLeavesEverythingAsItWas)
{
    CEffectTree tree("Effects");
    for (const bool isHeldElsewhere : {false, true}) {
        Make(1, &m_player, &tree);
        m_player.StartAnswer = isHeldElsewhere;
        m_player.Owner = isHeldElsewhere ? u"Another module" : u"";
        m_view.CursorFrame = Length;
        m_playback->Play();
        EXPECT_FALSE(m_playback->IsPlaying() || m_ticking || m_playback->OwnsPlayer());
        EXPECT_FALSE(tree.IsStreamOpened());
        EXPECT_EQ(m_view.CursorFrame, Length);
    }
    EXPECT_EQ(m_player.Owner, u"Another module");
    EXPECT_EQ(m_prompts.Messages(), std::vector<std::string>(2, "Can't start playing."));
    EXPECT_EQ(m_prompts.Icons(), std::vector<MessageIcon>(2, MessageIcon::Error));
}

TEST_F(PlaybackTest, APlaybackThatIsDestroyedLeavesThePlayerAndTheEffects)
{
    CEffectTree tree("Effects");
    Make(1, &m_player, &tree);
    m_playback->Play();
    EXPECT_TRUE(m_playback->OwnsPlayer() && m_ticking);
    m_playback.reset();
    EXPECT_EQ(m_player.DeviceState, CHostPlayer::Stopped);
    EXPECT_TRUE(m_player.Owner.empty());
    EXPECT_FALSE(tree.IsStreamOpened());
    EXPECT_TRUE(m_ticking); // the site was not told
}

TEST_F(PlaybackTest, ASoundThatCannotBeReadEndsWithAMessage)
{
    FaultyFileCalls faults({}, FaultyFileCalls::Reads);
    Make();
    m_view.CursorFrame = 123;
    ASSERT_TRUE(m_document->Store().FlushPages());
    m_playback->Play();
    faults.FailFrom(1, EIO);
    EXPECT_TRUE(m_player.Pull(500).empty());
    EXPECT_TRUE(faults.HasFailed());
    faults.StopFailing();
    m_player.Loop = 1;
    EXPECT_TRUE(m_player.Pull(500).empty()); // no frame follows one that is missing
    HearEnd();
    EXPECT_TRUE(m_playback->HasFailed());
    EXPECT_EQ(m_prompts.Messages(), std::vector<std::string>{"Can't read the sound. Playing was stopped."});
    EXPECT_EQ(m_view.CursorFrame, 123U);
    m_playback->Play();
    EXPECT_EQ(m_player.Pull(100), Frames(123, 223));
}

TEST_F(PlaybackTest, WithoutAPlayerNothingPlays)
{
    Make(1, nullptr);
    m_playback->TakePlayer();
    m_playback->Play();
    m_playback->SeekToPercent(30);
    m_playback->Tick();
    m_playback->Stop();
    EXPECT_FALSE(m_playback->IsPlaying() || m_playback->OwnsPlayer());
}

} // namespace
} // namespace ek
