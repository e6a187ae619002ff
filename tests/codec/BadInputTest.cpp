// SPDX-License-Identifier: GPL-3.0-or-later
#include "CodecFixture.h"

#include "servicefuncs/Channels.h"
#include "support/FaultyFileCalls.h"
#include "support/Signals.h"

#include <algorithm>
#include <cerrno>
#include <cstring>
#include <fstream>
#include <iterator>
#include <span>
#include <sys/stat.h>

namespace ek {

namespace fs = std::filesystem;

namespace {

size_t OpenDescriptors()
{
    return static_cast<size_t>(std::distance(fs::directory_iterator("/proc/self/fd"), fs::directory_iterator()));
}

/// No test of this group may leave a descriptor behind.
class BadInput : public CodecFixture {
protected:
    void TearDown() override { EXPECT_EQ(OpenDescriptors(), m_descriptors); }

    void WriteBytes(const std::string& name, const std::vector<char>& bytes)
    {
        std::ofstream file(Path(name), std::ios::binary | std::ios::trunc);
        file.write(bytes.data(), static_cast<std::streamsize>(bytes.size()));
    }

    /// A WAV of 1000 stereo frames with a number of its header replaced.
    template <typename Number>
    void WritePatchedWav(const std::string& name, size_t offset, Number number)
    {
        WriteWav(Path(name), 2, MakeNoise(1, 2000));
        std::vector<char> bytes = ReadBytes(Path(name));
        std::memcpy(&bytes[offset], &number, sizeof number);
        WriteBytes(name, bytes);
    }

    static constexpr size_t ChannelsOffset = 22;
    static constexpr size_t RateOffset = 24;
    static constexpr size_t DataSizeOffset = 40;
    size_t m_descriptors = OpenDescriptors();
};

TEST_F(BadInput, WhatIsNoSoundFileDoesNotOpen)
{
    EXPECT_FALSE(Opens("missing.wav"));
    WriteBytes("empty.wav", {});
    EXPECT_FALSE(Opens("empty.wav"));
    WriteBytes("text.wav", std::vector<char>(5000, 'x'));
    EXPECT_FALSE(Opens("text.wav"));
    fs::create_directory(Path("folder.wav"));
    EXPECT_FALSE(Opens("folder.wav"));
    ASSERT_EQ(mkfifo(Path("pipe.wav").c_str(), 0600), 0);
    EXPECT_FALSE(Opens("pipe.wav"));
    fs::create_symlink("/dev/zero", Path("endless.wav"));
    EXPECT_FALSE(Opens("endless.wav"));
    fs::create_symlink("nowhere", Path("broken.wav"));
    EXPECT_FALSE(Opens("broken.wav"));
    WriteWav(Path("locked.wav"), 2, MakeNoise(1, 2000));
    FaultyFileCalls calls("locked.wav", FaultyFileCalls::Opens);
    calls.FailFrom(1, EACCES);
    EXPECT_FALSE(Opens("locked.wav"));
}

TEST_F(BadInput, ExtensionsDoNotDecideWhatAFileIs)
{
    const Sound sound = MakeNoiseSound(2, 1000);
    ASSERT_TRUE(Write("a.flac", sound));
    for (const std::string name : {"a.wav", "a.mp3", "a.raw", "a.vox", "a.gsm", "a.sd2", "a"}) {
        fs::copy_file(Path("a.flac"), Path(name));
        EXPECT_EQ(Read(name), sound) << name;
    }
    // Headerless sound cannot be told from noise.
    WriteBytes("noise.raw", std::vector<char>(5000, 1));
    EXPECT_FALSE(Opens("noise.raw"));
}

TEST_F(BadInput, AnyNameWillDo)
{
    const Sound sound = MakeNoiseSound(2, 100);
    for (const std::string stem : {"with \"quotes\" and 'more'", "two\nlines", "not \xFF\xC3 UTF-8", "音", "%s%n"}) {
        ASSERT_TRUE(Write(stem + ".flac", sound));
        EXPECT_EQ(Read(stem + ".flac"), sound);
    }
}

TEST_F(BadInput, OnlyOneToEightChannelsOpen)
{
    for (const uint16_t channels : {0, 9, 1000, 65535}) {
        WritePatchedWav("a.wav", ChannelsOffset, channels);
        EXPECT_FALSE(Opens("a.wav")) << channels;
    }
}

TEST_F(BadInput, OnlyRatesFromOneTo768000HertzOpenAndOnesTooFarApartAreNotConverted)
{
    for (const uint32_t rate : {0u, 768001u, 0x80000000u, 0xFFFFFFFFu}) {
        WritePatchedWav("a.wav", RateOffset, rate);
        EXPECT_FALSE(Opens("a.wav")) << rate;
    }
    for (const uint32_t rate : {768000u, 1u}) {
        WritePatchedWav("a.wav", RateOffset, rate);
        EXPECT_EQ(Read("a.wav").Rate, rate);
    }
    WAVEFORMATEXTENSIBLE format = MakePcm16Format(768000, 2);
    uint64_t frames = 0;
    EXPECT_EQ(EkOpenFile(Path("a.wav"), format, frames, false), 0u);
}

TEST_F(BadInput, HeadersThatLieAboutTheLengthGiveTheFramesThatAreThere)
{
    const std::vector<int16_t> values = MakeNoise(1, 2000);
    for (const uint32_t bytes : {8000u, 0x7FFFFFFFu, 0xFFFFFFFFu}) {
        WritePatchedWav("a.wav", DataSizeOffset, bytes);
        EXPECT_EQ(Read("a.wav").Values, values) << bytes;
    }
    WritePatchedWav("a.wav", DataSizeOffset, 400u);
    EXPECT_EQ(Read("a.wav").Values, std::vector<int16_t>(values.begin(), values.begin() + 200));
}

TEST_F(BadInput, ARecordingThatWasNeverClosedGivesAllItsFrames)
{
    const std::vector<int16_t> values = MakeNoise(1, 2000);
    for (const uint32_t riffBytes : {0u, 8u, 36u, 0xFFFFFFFFu}) {
        WritePatchedWav("a.wav", DataSizeOffset, 0u);
        std::vector<char> bytes = ReadBytes(Path("a.wav"));
        std::memcpy(&bytes[4], &riffBytes, sizeof riffBytes);
        WriteBytes("a.wav", bytes);
        EXPECT_EQ(Read("a.wav").Values, values) << riffBytes;
    }
    WriteWav(Path("empty.wav"), 2, {});
    EXPECT_EQ(Read("empty.wav").Frames(), 0u);
    ASSERT_TRUE(Write("empty.au", {44100, 2, {}}));
    EXPECT_EQ(Read("empty.au").Frames(), 0u);
}

TEST_F(BadInput, SizesThatWereNeverFilledInGiveAllFramesOfOtherContainers)
{
    const Sound sound = MakeNoiseSound(2, 1000);
    struct Case {
        std::string Name;
        std::string Chunk; ///< the size begins so many bytes behind it
        size_t Distance;
        std::string Size;
    };
    for (const Case& test :
         {Case{"a.rf64", "ds64", 8, std::string(24, '\0')}, Case{"a.au", ".snd", 8, std::string(4, '\0')},
          Case{"a.caf", "data", 4, std::string(8, '\xFF')}}) {
        ASSERT_TRUE(Write(test.Name, sound));
        std::vector<char> bytes = ReadBytes(Path(test.Name));
        const auto chunk = std::ranges::search(bytes, test.Chunk).begin();
        ASSERT_NE(chunk, bytes.end()) << test.Name;
        std::ranges::copy(test.Size, chunk + static_cast<ptrdiff_t>(test.Distance));
        WriteBytes(test.Name, bytes);
        const std::vector<int16_t> values = Read(test.Name).Values;
        ASSERT_GE(values.size(), sound.Values.size()) << test.Name;
        EXPECT_TRUE(std::ranges::equal(std::span(values).first(sound.Values.size()), sound.Values)) << test.Name;
    }
}

TEST_F(BadInput, CutFilesGiveNearlyAllOfWhatIsThereAndNoMoreThanTheirFrames)
{
    const Sound sound = MakeTones(48000, 2, 6000);
    for (const std::string name :
         {"a.wav", "a.w64", "a.rf64", "a.aiff", "a.au", "a.caf", "a.flac", "a.ogg", "a.opus", "a.mp3"}) {
        ASSERT_TRUE(Write(name, sound));
        const std::vector<char> bytes = ReadBytes(Path(name));
        for (size_t step = 0; step < 40; ++step) {
            WriteBytes(name, {bytes.begin(), bytes.begin() + static_cast<ptrdiff_t>(bytes.size() * step / 40)});
            if (Opens(name)) {
                EXPECT_LE(Read(name).Frames(), 6000u) << name << step;
            }
        }
        if (name != "a.ogg" && name != "a.opus") { // whose last page goes as a whole
            EXPECT_GE(Read(name).Frames(), 4000u) << name;
        }
        if (name != "a.mp3" && name != "a.ogg" && name != "a.opus") {
            WriteBytes(name, {bytes.begin(), bytes.end() - 400});
            const std::vector<int16_t> cut = Read(name).Values;
            ASSERT_LE(cut.size(), sound.Values.size()) << name;
            EXPECT_TRUE(std::equal(cut.begin(), cut.end(), sound.Values.begin())) << name;
        }
        fs::remove(Path(name));
    }
}

TEST_F(BadInput, HandlesThatAreNoneDoNothing)
{
    char buffer[16] = {};
    EXPECT_EQ(EkGetFileData(0, 0, 4, buffer, sizeof buffer), 0u);
    EXPECT_EQ(EkGetFileData(12345, 0, 4, buffer, sizeof buffer), 0u);
    EkCloseFile(0);
    EkCoderSetTags(0, {});
    EXPECT_FALSE(EkCoderAddFileData(0, 1, buffer, 4));
    EXPECT_FALSE(EkCoderCloseFile(12345));
}

} // namespace

} // namespace ek
