// SPDX-License-Identifier: GPL-3.0-or-later
#include "PlaybackFixture.h"

#include <functional>
#include <random>
#include <thread>

namespace ek {
namespace {

/// A player that asks for blocks from a thread of its own, as fast as it gets them.
class RestlessPlayer final : public ScriptedPlayer {
public:
    ~RestlessPlayer() { Stop(); }

    int Start() override
    {
        Stop();
        ScriptedPlayer::Start();
        m_pump = std::thread([this] { Run(); });
        return 1;
    }
    void Stop() override
    {
        ScriptedPlayer::Stop();
        if (m_pump.joinable())
            m_pump.join();
    }
    // The pump reads both.
    void SetFormat(const WAVEFORMATEXTENSIBLE* format) override
    {
        if (!m_pump.joinable())
            ScriptedPlayer::SetFormat(format);
    }
    void SetCallback(AudioCallback callback, void* user) override
    {
        if (!m_pump.joinable())
            ScriptedPlayer::SetCallback(callback, user);
    }
    void Pause() override
    {
        int expected = Running;
        if (DeviceState.compare_exchange_strong(expected, Paused))
            return;
        expected = Paused;
        DeviceState.compare_exchange_strong(expected, Running);
    }

private:
    void Run()
    {
        for (uint32_t size = 1; DeviceState != Stopped; size = size % 1500 + 7) {
            if (DeviceState == Paused)
                std::this_thread::yield();
            else if (Pull(size, WavePlayback::HostClock()).size() < size * Format.nChannels)
                return Notify(1);
        }
    }

    std::thread m_pump;
};

class PlaybackThreadsTest : public PlaybackTest {
protected:
    ~PlaybackThreadsTest() override { m_playback.reset(); }

    /// Frames inserted into, removed from and read from a document that is not played.
    static void EditOther(CWaveData& store, uint64_t frame)
    {
        const std::vector<int16_t> values(2000, static_cast<int16_t>(frame));
        ASSERT_TRUE(store.InsertSpace(frame * 4, frame * 4, 4000));
        ASSERT_TRUE(store.WriteData(values.data(), frame * 4, 4000));
        ASSERT_TRUE(store.RemoveData(frame * 4, frame * 4 + 4000));
    }

    void Step(uint32_t choice, uint32_t value)
    {
        static constexpr void (WavePlayback::*Calls[])() = {
            &WavePlayback::Play,      &WavePlayback::PauseOrResume, &WavePlayback::Stop,
            &WavePlayback::JumpBack,  &WavePlayback::Tick,          &WavePlayback::JumpForward,
            &WavePlayback::JumpToEnd, &WavePlayback::Finish,        &WavePlayback::TakePlayer,
            &WavePlayback::Tick,      &WavePlayback::JumpToStart,   &WavePlayback::Play,
        };
        if (choice < std::size(Calls)) {
            std::invoke(Calls[choice], *m_playback);
        } else if (choice == std::size(Calls)) {
            m_playback->SeekToPercent(value % 101);
        } else if (choice == std::size(Calls) + 1) {
            m_view.SelectionChannel = static_cast<ChannelCode>(value % 3);
            m_playback->OnSelectionChannelChanged();
        } else {
            m_other.Loop = static_cast<int>(value % 2);
        }
    }

    RestlessPlayer m_other;
};

TEST_F(PlaybackThreadsTest, AnyOrderOfCallsSuitsAPlayerThatPlays)
{
    CEffectTree tree("Effects");
    CWaveData edited;
    ASSERT_TRUE(edited.SetFormat(MakePcm16Format(44100, 2), nullptr));
    ASSERT_TRUE(edited.InsertSpace(0, 0, 40'000));
    std::mt19937 random(7);
    for (CEffectTree* way : {static_cast<CEffectTree*>(nullptr), &tree}) {
        Make(2, &m_other, way, 44100, 300'000);
        for (int i = 0; i < 1000; ++i) {
            Step(random() % 15, random());
            if (i % 5 == 0)
                EditOther(edited, random() % 10'000);
            ASSERT_TRUE(m_view.CursorFrame <= 300'000 || m_view.CursorFrame == WaveGeometry::NoFrame);
        }
        m_playback->Stop();
        EXPECT_FALSE(tree.IsStreamOpened());
        m_playback.reset();
    }
    EXPECT_TRUE(m_prompts.Messages().empty());
}

} // namespace
} // namespace ek
