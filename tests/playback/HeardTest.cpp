// SPDX-License-Identifier: GPL-3.0-or-later
#include "PlaybackFixture.h"

#include "devices/HostPlayer.h"
#include "platform/Events.h"

#include <thread>

namespace ek {
namespace {

/// Playing through the host's player into a file.
class HeardTest : public PlaybackTest {
protected:
    HeardTest() { m_host.Choose({"file", {}, 0, File()}); }
    ~HeardTest() override { m_playback.reset(); }

    std::filesystem::path File() const { return m_folder / "heard.wav"; }
    void OnRangePlayed() override { m_ended.Set(); }

    std::vector<int16_t> PlayToEnd()
    {
        m_ended.Reset();
        m_playback->Play();
        return FinishPlaying();
    }
    std::vector<int16_t> FinishPlaying()
    {
        EXPECT_TRUE(m_ended.WaitFor(std::chrono::minutes(1)));
        m_playback->Finish();
        EXPECT_FALSE(m_playback->IsPlaying());
        CWEDoc heard;
        EXPECT_TRUE(heard.OnOpenDocument(File()));
        return ReadAll(heard.Store());
    }

    HostPlayer m_host;
    ManualResetEvent m_ended;
};

TEST_F(HeardTest, WhatIsHeardIsWhatStandsInTheDocument)
{
    for (uint32_t channels = 1; channels <= 8; ++channels) {
        Make(channels, &m_host, nullptr, 44100, 10'240 + channels);
        EXPECT_EQ(PlayToEnd(), m_sound.Values) << channels;
        Select(1023, 5000);
        EXPECT_EQ(PlayToEnd(), Frames(1023, 5000)) << channels;
    }
}

TEST_F(HeardTest, OneChannelIsHeardAlone)
{
    Make(2, &m_host, nullptr, 44100);
    m_view.SelectionChannel = ChannelRight;
    const std::vector<int16_t> heard = PlayToEnd();
    ASSERT_EQ(heard.size(), m_sound.Values.size());
    for (size_t i = 0; i < heard.size(); ++i)
        ASSERT_EQ(heard[i], i % 2 == 1 ? m_sound.Values[i] : 0) << i;
}

TEST_F(HeardTest, LoopsPausesAndAJumpGoOnAtTheRightFrame)
{
    // Each frame tells where it stands.
    Make(1, &m_host, nullptr, 44100, 60'000);
    m_sound.Values = MakeRamp(60'000, -30'000);
    ASSERT_TRUE(m_document->Store().WriteData(m_sound.Values.data(), 0, 120'000));
    Select(1000, 50'000);
    m_host.SetLoop(true);
    m_playback->Play();
    for (int i = 0; i < 50; ++i) {
        m_playback->PauseOrResume();
        m_playback->Tick();
    }
    while (m_host.HeardMilliseconds() < 3000)
        std::this_thread::yield();
    m_playback->SeekToPercent(50);
    m_host.SetLoop(false);
    const std::vector<int16_t> heard = FinishPlaying();
    ASSERT_GT(heard.size(), 100'000U);
    EXPECT_EQ(heard.front(), 1000 - 30'000);
    EXPECT_EQ(heard.back(), 49'999 - 30'000);
    int wraps = 0;
    int jumps = 0;
    for (size_t i = 1; i < heard.size(); ++i) {
        if (heard[i - 1] == 19'999 && heard[i] == -29'000)
            ++wraps;
        else if (heard[i] == 25'500 - 30'000 && heard[i - 1] != heard[i] - 1)
            ++jumps;
        else
            ASSERT_EQ(heard[i], heard[i - 1] + 1) << i;
    }
    EXPECT_GT(wraps, 1);
    EXPECT_LE(jumps, 1);
}

} // namespace
} // namespace ek
