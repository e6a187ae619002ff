// SPDX-License-Identifier: GPL-3.0-or-later
#include "Fakes.h"

#include "servicefuncs/Channels.h"
#include "support/Signals.h"
#include "support/TestFolder.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <cstring>

namespace ek {
namespace {

using testing::ElementsAre;

constexpr uint32_t Rate = 44100;

class RecorderTest : public testing::Test {
protected:
    RecorderTest()
    {
        m_recorder.SetListener(&m_told);
        m_recorder.SetCallback(&RecorderTest::OnBlock, this);
    }

    void SetUpFor(uint32_t channels, uint32_t blockFrames)
    {
        const WAVEFORMATEXTENSIBLE format = MakePcm16Format(Rate, channels);
        m_recorder.SetFormat(&format);
        m_recorder.SetBufferSize(blockFrames * format.nBlockAlign);
    }

    static uint32_t OnBlock(CHostAudioDevice*, void* request, void* user)
    {
        const auto& block = *static_cast<CaptureRequest*>(request);
        auto& test = *static_cast<RecorderTest*>(user);
        const std::lock_guard lock(test.m_mutex);
        const size_t before = test.m_values.size();
        test.m_values.resize(before + block.ByteCount / 2);
        std::memcpy(test.m_values.data() + before, block.Data, block.ByteCount);
        test.m_sizes.push_back(block.ByteCount);
        test.m_stamps.push_back(block.Stamp);
        return 1;
    }

    TestFolder m_folder;
    FakeBackend m_backend;
    Told m_told;
    std::mutex m_mutex;
    std::vector<int16_t> m_values;
    std::vector<uint32_t> m_sizes;
    std::vector<uint32_t> m_stamps;
    HostRecorder m_recorder{m_backend};
};

TEST_F(RecorderTest, DeliversAllThatWasCapturedInBlocks)
{
    for (const uint32_t frames : {1U, 441U, 5000U}) {
        for (const uint32_t block : {1U, 1024U, 4096U}) {
            SCOPED_TRACE(testing::Message() << frames << " in blocks of " << block);
            const std::vector<int16_t> sound = MakeNoise(frames, size_t{frames} * 2);
            WriteWav(m_folder / "in.wav", 2, sound);
            m_recorder.Choose({"file", {}, 0, m_folder / "in.wav"});
            SetUpFor(2, block);
            m_values.clear();
            m_sizes.clear();
            ASSERT_TRUE(m_recorder.Start());
            m_backend.Clock->Settle();
            for (uint32_t given = 441; given < frames; given += 441)
                m_backend.Clock->Advance(10000);
            m_recorder.Stop();
            EXPECT_EQ(m_values, sound);
            for (size_t i = 0; i + 1 < m_sizes.size(); ++i)
                EXPECT_EQ(m_sizes[i], block * 4);
            EXPECT_EQ(m_recorder.DropoutCount(), 0U);
        }
    }
}

TEST_F(RecorderTest, SilenceComesInStepWithTheClock)
{
    m_recorder.Choose({"null"});
    SetUpFor(2, 441);
    const auto start = static_cast<uint32_t>(m_backend.NowMicroseconds() / 1000);
    ASSERT_TRUE(m_recorder.Start());
    m_backend.Clock->Settle();
    m_recorder.Pause();
    for (int i = 0; i < 50; ++i)
        m_backend.Clock->Advance(10000);
    m_recorder.Pause();
    for (int i = 0; i < 99; ++i)
        m_backend.Clock->Advance(10000);
    m_recorder.Stop();
    EXPECT_EQ(m_values, std::vector<int16_t>(size_t{Rate} * 2));
    EXPECT_EQ(m_stamps.size(), 100U);
    EXPECT_EQ(m_stamps.back(), start + 50 * 10 + 99 * 10 - 10);
    EXPECT_EQ(m_recorder.DropoutCount(), 0U);
}

TEST_F(RecorderTest, OneChannelOfTheCardIsHeardOnBothSidesAtTheWantedRate)
{
    std::vector<int16_t> sound(22050, 8000);
    WriteWav(m_folder / "in.wav", 1, sound, 22050);
    m_recorder.Choose({"file", {}, 0, m_folder / "in.wav"});
    SetUpFor(2, 1024);
    ASSERT_TRUE(m_recorder.Start());
    m_backend.Clock->Settle();
    for (int i = 0; i < 101; ++i)
        m_backend.Clock->Advance(10000);
    m_recorder.Stop();
    ASSERT_EQ(m_values.size(), size_t{Rate} * 2);
    for (size_t i = 2000; i < m_values.size() - 2000; ++i)
        ASSERT_NEAR(m_values[i], 8000, 2);
}

TEST_F(RecorderTest, WhatTheRingCannotHoldIsCounted)
{
    CaptureQueue queue(Rate, 1, 10, 100);
    std::vector<float> frames(200);
    for (size_t i = 0; i < frames.size(); ++i)
        frames[i] = static_cast<float>(i);
    queue.Put(frames.data(), 100, 2000000);
    queue.Put(frames.data() + 100, 100, 2000000); // there is room for 28
    EXPECT_EQ(queue.Lost(), 72U);
    queue.CountLost(5); // by the card itself
    EXPECT_EQ(queue.Lost(), 77U);
    std::vector<float> taken(200);
    EXPECT_EQ(queue.Take(taken.data(), 200), 128U);
    for (size_t i = 0; i < 128; ++i)
        ASSERT_EQ(taken[i], static_cast<float>(i));
    EXPECT_NEAR(static_cast<double>(queue.NextMicroseconds()), 2000000 - 72e6 / Rate, 2);
}

TEST_F(RecorderTest, OneModuleOwnsTheInputAndRefusalsAreTold)
{
    EXPECT_TRUE(m_recorder.AcquireInput(u"One"));
    EXPECT_TRUE(m_recorder.AcquireInput(u"One"));
    EXPECT_FALSE(m_recorder.AcquireInput(u"Two"));
    m_recorder.ReleaseInput(u"Two");
    EXPECT_FALSE(m_recorder.AcquireInput(u"Two"));
    m_recorder.ReleaseInput(u"One");
    EXPECT_TRUE(m_recorder.AcquireInput(u"Two"));
    EXPECT_THAT(m_told.Take(), ElementsAre("input", "input", "input"));

    m_recorder.Choose({"cards"});
    EXPECT_FALSE(m_recorder.Start());
    m_recorder.Choose({"file", {}, 0, m_folder / "missing.wav"});
    EXPECT_FALSE(m_recorder.Start());
    WriteTextFile(m_folder / "text.wav", "RIFF but no sound in it");
    m_recorder.Choose({"file", {}, 0, m_folder / "text.wav"});
    EXPECT_FALSE(m_recorder.Start());
    m_recorder.SetCallback(nullptr, nullptr);
    EXPECT_FALSE(m_recorder.Start());
    EXPECT_THAT(m_told.Take(), testing::SizeIs(4));
    m_recorder.Stop();
    m_recorder.Pause();
}

TEST_F(RecorderTest, CallsThatComeThickAndFastDoNoHarm)
{
    HostRecorder recorder;
    recorder.SetListener(&m_told);
    recorder.Choose({"null"});
    recorder.SetCallback(&RecorderTest::OnBlock, this);
    recorder.SetBufferSize(64);
    for (int i = 0; i < 300; ++i) {
        if (i % 3 == 0)
            recorder.Stop();
        else if (i % 5 == 0)
            recorder.Pause();
        else
            EXPECT_TRUE(recorder.Start());
    }
    EXPECT_TRUE(recorder.Start()); // and is destroyed while it records
}

} // namespace
} // namespace ek
