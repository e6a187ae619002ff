// SPDX-License-Identifier: GPL-3.0-or-later
#include "CodecFixture.h"

#include "ekdatapr/FileStream.h"
#include "servicefuncs/Channels.h"
#include "support/FaultyFileCalls.h"
#include "support/Signals.h"

#include <cerrno>
#include <fstream>

namespace ek {

namespace {

class Faults : public CodecFixture {};

const std::vector<std::string> AllTypes = {"a.wav", "a.rf64", "a.w64", "a.aiff", "a.au",
                                           "a.caf", "a.flac", "a.ogg", "a.opus", "a.mp3"};

TEST_F(Faults, EveryCallThatFailsWhileWritingIsReported)
{
    const Sound sound = MakeNoiseSound(2, 200000);
    for (const std::string& name : AllTypes) {
        FaultyFileCalls calls("a.");
        calls.StopFailing();
        ASSERT_TRUE(Write(name, sound)) << name;
        const uint64_t count = calls.CallCount();
        ASSERT_GE(count, 4u) << name; // opening, writing, syncing and closing
        for (uint64_t nth = 1; nth <= count; ++nth) {
            std::filesystem::remove(Path(name));
            calls.FailCall(nth, ENOSPC);
            EXPECT_FALSE(Write(name, sound)) << name << ' ' << nth;
            EXPECT_TRUE(calls.HasFailed());
            EXPECT_EQ(calls.OpenDescriptors(), 0) << name << ' ' << nth;
        }
    }
}

TEST_F(Faults, EveryCallThatFailsWhileReadingIsReported)
{
    for (const std::string& name : AllTypes) {
        ASSERT_TRUE(Write(name, MakeNoiseSound(2, 100000)));
        const uint32_t rate = FormatOf(name).nSamplesPerSec;
        FaultyFileCalls calls(name, FaultyFileCalls::Opens | FaultyFileCalls::Reads);
        const uint64_t frames = ReadAs(name, rate, 2).Frames();
        const uint64_t count = calls.CallCount();
        ASSERT_GE(count, 2u) << name;
        for (uint64_t nth = 1; nth <= count; ++nth) {
            calls.FailCall(nth, EIO);
            WAVEFORMATEXTENSIBLE format = MakePcm16Format(rate, 2);
            uint64_t promised = 0;
            const DecoderHandle decoder = EkOpenFile(Path(name), format, promised, false);
            const bool whole = decoder != 0 && ReadAll(decoder, 2).size() >= frames * 2;
            EXPECT_TRUE(!calls.HasFailed() || EkDecoderFailed(decoder)) << name << ' ' << nth;
            EXPECT_TRUE(whole || EkDecoderFailed(decoder)) << name << ' ' << nth;
            EkCloseFile(decoder);
            EXPECT_EQ(calls.OpenDescriptors(), 0) << name << ' ' << nth;
        }
    }
}

TEST_F(Faults, WhatCannotBeCreatedLeavesNothingAndSparesWhatIsThere)
{
    const WAVEFORMATEXTENSIBLE format = MakePcm16Format(44100, 2);
    std::ofstream(Path("old.wav")) << "old";
    EXPECT_EQ(EkCoderCreateFile(Path("old.wav"), format, nullptr, nullptr, 10), 0u);
    EXPECT_EQ(ReadBytes(Path("old.wav")), (std::vector<char>{'o', 'l', 'd'}));
    std::filesystem::remove(Path("old.wav"));

    WAVEFORMATEXTENSIBLE eightBit = format;
    eightBit.wBitsPerSample = 8;
    WAVEFORMATEXTENSIBLE noRate = format;
    noRate.nSamplesPerSec = 0;
    Choose("gsm.wav", 2, {{"subtype", "gsm610"}}); // mono only
    for (const auto& [name, tried] : {std::pair("a.wav", eightBit),
                                      {"a.wav", noRate},
                                      {"a.wav", {}},
                                      {"gsm.wav", format},
                                      {"a.xyz", format},
                                      {"wav", format},
                                      {"missing/a.wav", format}})
        EXPECT_EQ(EkCoderCreateFile(Path(name), tried, nullptr, nullptr, 10), 0u) << name;
    EXPECT_EQ(m_folder.EntryCount(), 0u);
}

TEST_F(Faults, DataOfTheWrongSizeIsRefused)
{
    const CoderHandle coder = EkCoderCreateFile(Path("a.wav"), MakePcm16Format(44100, 2), nullptr, nullptr, 10);
    const char data[40] = {};
    EXPECT_FALSE(EkCoderAddFileData(coder, 10, data, 39));
    EXPECT_FALSE(EkCoderAddFileData(coder, 10, data, 20));
    EXPECT_TRUE(EkCoderAddFileData(coder, 10, data, 40));
    EXPECT_TRUE(EkCoderCloseFile(coder));
    EXPECT_EQ(Read("a.wav").Frames(), 10u);
}

TEST_F(Faults, AStreamNeverGrowsBeyondItsLimit)
{
    const std::vector<char> bytes(100, 'x');
    FileStream stream;
    ASSERT_TRUE(stream.Create(Path("a"), 250).Ok());
    EXPECT_EQ(stream.Write(bytes.data(), 100), 100u);
    EXPECT_EQ(stream.Write(bytes.data(), 100), 100u);
    EXPECT_EQ(stream.Write(bytes.data(), 100), 0u);
    stream.Seek(0);
    EXPECT_EQ(stream.Write(bytes.data(), 10), 0u); // what failed once does not go on
    EXPECT_EQ(stream.Finish().Errno(), EFBIG);
}

TEST_F(Faults, AStreamIsTheSumOfItsWritesWhereverTheyGo)
{
    std::vector<char> expected(700000);
    FileStream stream;
    ASSERT_TRUE(stream.Create(Path("a"), 1 << 20).Ok());
    stream.WritePrefix("prefix");
    uint32_t seed = 1;
    for (int i = 0; i < 400; ++i) {
        const std::vector<int16_t> noise = MakeNoise(++seed, 2500);
        const auto* bytes = reinterpret_cast<const char*>(noise.data());
        const size_t count = static_cast<uint16_t>(noise[0]) % 5000;
        // Mostly onwards, now and then back.
        if (i % 7 == 0)
            stream.Seek(static_cast<uint16_t>(noise[1]) * 10 % (stream.Length() + 1));
        const uint64_t place = std::min<uint64_t>(stream.Position(), 600000);
        stream.Seek(place);
        ASSERT_EQ(stream.Write(bytes, count), count);
        std::copy(bytes, bytes + count, expected.begin() + static_cast<ptrdiff_t>(place));
    }
    expected.resize(stream.Length());
    ASSERT_TRUE(stream.Finish().Ok());

    std::vector<char> content = ReadBytes(Path("a"));
    EXPECT_EQ(std::string(content.begin(), content.begin() + 6), "prefix");
    content.erase(content.begin(), content.begin() + 6);
    EXPECT_EQ(content, expected);
}

} // namespace

} // namespace ek
