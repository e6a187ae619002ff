// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "effectmanager/EffectTree.h"
#include "servicefuncs/SoundData.h"
#include "support/ScriptedPrompts.h"
#include "support/Signals.h"
#include "support/SoundModel.h"
#include "support/TestFolder.h"
#include "waveedit/WEDoc.h"
#include "waveview/WavePlayback.h"

#include <gtest/gtest.h>

#include <cmath>
#include <string>
#include <vector>

namespace ek {

/// A player whose blocks are asked for by the test.
class ScriptedPlayer : public CHostPlayer {
public:
    /// The interleaved 16-bit values of a block of `frames` that is heard at `stamp`.
    std::vector<int16_t> Pull(uint32_t frames, uint32_t stamp = 0)
    {
        SoundData block(Format.nChannels, frames);
        block.Record().Request = 1;
        PlayRequest request{&block.Record(), stamp};
        const uint32_t given = Callback(this, &request, User);
        std::vector<int16_t> values;
        for (uint32_t i = 0; i < given * Format.nChannels; ++i)
            values.push_back(ToInteger(block.Record().Channels[i % Format.nChannels][i / Format.nChannels]));
        return values;
    }
    void Notify(uint32_t frameCount)
    {
        if (frameCount == 1)
            DeviceState = Stopped;
        _SOUNDDATAEX_ notice;
        notice.FrameCount = frameCount;
        PlayRequest request{&notice, 0};
        Callback(this, &request, User);
    }
    static int16_t ToInteger(float value) { return static_cast<int16_t>(std::lround(value * 32768)); }

    int Start() override
    {
        ++Starts;
        if (StartAnswer)
            DeviceState = Running;
        return StartAnswer;
    }
    void Stop() override { DeviceState = Stopped; }
    void Pause() override { DeviceState = DeviceState == Running ? Paused : Running; }
    const WAVEFORMATEXTENSIBLE* GetFormat() override { return &Format; }
    void SetFormat(const WAVEFORMATEXTENSIBLE* format) override { Format = *format; }
    uint32_t GetBufferCount() override { return BufferCount; }
    void SetBufferCount(uint32_t count) override { BufferCount = count; }
    uint32_t GetBufferSize() override { return BufferSize; }
    void SetBufferSize(uint32_t bytes) override { BufferSize = bytes; }
    void SetCallback(AudioCallback callback, void* user) override
    {
        Callback = callback;
        User = user;
    }
    uint32_t GetProgressRange() override { return 1000; }
    void SetProgress(uint32_t value) override { Progress = value; }
    const char16_t* GetOwner() override { return Owner.empty() ? nullptr : Owner.c_str(); }
    int Acquire(const char16_t* name) override
    {
        if (Owner.empty())
            Owner = name;
        return Owner == name;
    }
    void Release(const char16_t* name) override
    {
        if (Owner == name)
            Owner.clear();
    }
    void UpdateControls(const char16_t*, int canPlay) override { CanPlay = canPlay; }
    int IsLoop() override { return Loop; }
    int GetState() override { return DeviceState; }

    std::atomic<int> DeviceState = Stopped;
    std::atomic<int> Loop = 0;
    std::atomic<uint32_t> Progress = 0;
    int Starts = 0;
    int StartAnswer = 1;
    int CanPlay = -1;
    std::u16string Owner;
    WAVEFORMATEXTENSIBLE Format;
    uint32_t BufferCount = 0;
    uint32_t BufferSize = 0;
    AudioCallback Callback = nullptr;
    void* User = nullptr;
};

/// A document of noise, its view's geometry and its playback, with a clock that the test sets. At 1000 Hz a frame is a
/// millisecond.
class PlaybackTest : public testing::Test, public PlaybackSite {
protected:
    static constexpr uint64_t Length = 10'000;
    static inline uint32_t Now = 0;

    PlaybackTest() { Now = 5000; }

    void Make(uint32_t channels, CHostPlayer* player, CEffectTree* tree = nullptr, uint32_t rate = 1000,
              uint64_t length = Length)
    {
        m_playback.reset();
        m_document = std::make_unique<CWEDoc>();
        ASSERT_TRUE(m_document->SetFormat(MakePcm16Format(rate, channels), nullptr));
        m_sound.Channels = channels;
        m_sound.Values = MakeNoise(channels, length * channels);
        CWaveData& store = m_document->Store();
        const uint64_t bytes = m_sound.Values.size() * sizeof(int16_t);
        ASSERT_TRUE(store.InsertSpace(0, 0, bytes) && store.WriteData(m_sound.Values.data(), 0, bytes));
        m_view = {};
        m_playback = std::make_unique<WavePlayback>(*m_document, m_view, player, tree, *this, [] { return Now; });
    }
    void Make(uint32_t channels = 1) { Make(channels, &m_player); }

    std::vector<int16_t> Frames(uint64_t start, uint64_t end) const
    {
        const auto frames = m_sound.Frames(start, end);
        return {frames.begin(), frames.end()};
    }
    void Select(uint64_t start, uint64_t end)
    {
        m_view.SelectionStart = start;
        m_view.SelectionEnd = end;
    }
    /// The device has come to the end, and the window gets to know.
    void HearEnd()
    {
        m_player.Notify(1);
        m_playback->Finish();
    }

    void OnCursorMoved(uint64_t) override {}
    void OnPlaybackStarted() override { m_ticking = true; }
    void OnPlaybackStopped() override { m_ticking = false; }
    void OnRangePlayed() override { ++m_ends; }

    TestFolder m_folder;
    ScriptedPrompts m_prompts;
    ScriptedPlayer m_player;
    SoundModel m_sound;
    WaveGeometry m_view;
    bool m_ticking = false;
    std::atomic<int> m_ends = 0;
    std::unique_ptr<CWEDoc> m_document;
    std::unique_ptr<WavePlayback> m_playback;
};

} // namespace ek
