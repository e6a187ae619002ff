// SPDX-License-Identifier: GPL-3.0-or-later
#include "CodecFixture.h"

#include "ekdatapr/Id3.h"
#include "platform/Text.h"
#include "servicefuncs/Channels.h"
#include "support/Signals.h"

#include <algorithm>
#include <cmath>
#include <fstream>
#include <limits>
#include <numbers>
#include <random>
#include <sndfile.h>

namespace ek {

namespace {

class DecoderTest : public CodecFixture {};

constexpr double Step = 1.0 / 32768;

TEST_F(DecoderTest, EightBitSoundComesAsUnsignedBytesAndAsExactSixteenBit)
{
    std::vector<uint8_t> bytes(256);
    std::vector<int16_t> widened(256);
    for (int i = 0; i < 256; ++i) {
        bytes[i] = static_cast<uint8_t>(i);
        widened[i] = static_cast<int16_t>((i - 128) * 256);
    }
    WriteWav8(Path("a.wav"), 2, bytes);
    WAVEFORMATEXTENSIBLE format;
    uint64_t frames = 0;
    const DecoderHandle decoder = EkOpenFile(Path("a.wav"), format, frames, true);
    EXPECT_EQ(format.wBitsPerSample, 8);
    EXPECT_EQ(format.nBlockAlign, 2);
    EXPECT_EQ(frames, 128u);
    std::vector<uint8_t> got(300, 0xEE);
    EXPECT_EQ(EkGetFileData(decoder, 0, 1000, got.data(), 256), 128u);
    EkCloseFile(decoder);
    EXPECT_TRUE(std::ranges::equal(bytes, std::span(got).first(256)));
    EXPECT_EQ(got[256], 0xEE);

    // As the store asks for it: the file's own record, only wider.
    format.wBitsPerSample = 16;
    format.nBlockAlign = 4;
    format.nAvgBytesPerSec *= 2;
    format.cbSize = 0;
    const DecoderHandle wide = EkOpenFile(Path("a.wav"), format, frames, false);
    EXPECT_EQ(ReadAll(wide, 2), widened);
    EkCloseFile(wide);
}

TEST_F(DecoderTest, NativeFormatsTellTheFilesOwnSamples)
{
    struct Case {
        int Subtype;
        uint16_t Bits;
        bool Float;
    };
    for (const Case& test :
         {Case{SF_FORMAT_PCM_16, 16, false}, Case{SF_FORMAT_PCM_24, 24, false}, Case{SF_FORMAT_PCM_32, 32, false},
          Case{SF_FORMAT_FLOAT, 32, true}, Case{SF_FORMAT_DOUBLE, 64, true}, Case{SF_FORMAT_MS_ADPCM, 16, false}}) {
        WriteByLibrary("a.wav", SF_FORMAT_WAV | test.Subtype, 22050, 2, std::vector<double>(5000));
        WAVEFORMATEXTENSIBLE expected = MakePcm16Format(22050, 2);
        expected.wBitsPerSample = test.Bits;
        expected.nBlockAlign = static_cast<uint16_t>(2 * test.Bits / 8);
        expected.nAvgBytesPerSec = 22050u * expected.nBlockAlign;
        expected.SubFormat = test.Float ? KSDATAFORMAT_SUBTYPE_IEEE_FLOAT : KSDATAFORMAT_SUBTYPE_PCM;
        EXPECT_EQ(FormatOf("a.wav"), expected) << test.Bits;
    }
}

TEST_F(DecoderTest, DitherIsTriangularUnbiasedAndTheSameEachTime)
{
    for (const int subtype : {SF_FORMAT_PCM_24, SF_FORMAT_PCM_32, SF_FORMAT_FLOAT, SF_FORMAT_DOUBLE}) {
        for (const double part : {0.25, 0.5, -0.125}) {
            const size_t count = 100000;
            WriteByLibrary("a.wav", SF_FORMAT_WAV | subtype, 44100, 1,
                           std::vector<double>(count, (1000 + part) * Step));
            const std::vector<int16_t> values = Read("a.wav").Values;
            EXPECT_EQ(Read("a.wav").Values, values);
            double sum = 0;
            double squares = 0;
            for (const int16_t value : values) {
                sum += value - 1000 - part;
                squares += std::pow(value - 1000 - part, 2);
                ASSERT_LE(std::fabs(value - 1000 - part), 1.5);
            }
            // Triangular noise of one step has the variance 1/6, rounding adds 1/12, whatever the value.
            EXPECT_NEAR(sum / count, 0, 0.01) << subtype << ' ' << part;
            EXPECT_NEAR(squares / count, 0.25, 0.01) << subtype << ' ' << part;
        }
    }
}

TEST_F(DecoderTest, SilenceAndSixteenBitValuesInWiderSamplesAreNotDithered)
{
    std::vector<double> values(20000, 0.0);
    for (int i = 0; i < 5000; ++i)
        values[5000 + i] = (i * 13 - 32768) * Step;
    for (const int subtype : {SF_FORMAT_FLOAT, SF_FORMAT_DOUBLE}) {
        WriteByLibrary("a.wav", SF_FORMAT_WAV | subtype, 44100, 1, values);
        const std::vector<int16_t> got = Read("a.wav").Values;
        for (size_t i = 0; i < values.size(); ++i)
            ASSERT_EQ(got[i], std::lround(values[i] * 32768)) << i;
    }
}

TEST_F(DecoderTest, FloatsBeyondFullScaleSaturateAndNoNumberIsSilence)
{
    const double infinity = std::numeric_limits<double>::infinity();
    const std::vector<double> values = {1.0, 1.5, -1.0, -7.0, 1e30, -1e30, infinity, -infinity, std::nan(""), 0.0};
    const std::vector<int16_t> expected = {32767, 32767, -32768, -32768, 32767, -32768, 32767, -32768, 0, 0};
    for (const int subtype : {SF_FORMAT_FLOAT, SF_FORMAT_DOUBLE}) {
        WriteByLibrary("a.wav", SF_FORMAT_WAV | subtype, 44100, 1, values);
        EXPECT_EQ(Read("a.wav").Values, expected);
    }
    // One of them must not spoil what lies around it when the rate is converted.
    std::vector<double> tone(44100);
    for (size_t i = 0; i < tone.size(); ++i)
        tone[i] = 0.5 * std::sin(2 * std::numbers::pi * 441 * static_cast<double>(i) / 44100);
    tone[100] = std::nan("");
    tone[200] = infinity;
    WriteByLibrary("a.wav", SF_FORMAT_WAV | SF_FORMAT_FLOAT, 44100, 1, tone);
    EXPECT_NEAR(AmplitudeOf(ReadAs("a.wav", 48000, 1).Channel(0), 441, 48000), 0.5, 0.001);
}

TEST_F(DecoderTest, AnyOrderOfReadsGivesTheSameFrames)
{
    const uint64_t frames = 30000;
    WriteByLibrary("wide.wav", SF_FORMAT_WAV | SF_FORMAT_PCM_24, 44100, 2, MakeTones(44100, 2, frames, 0.3).Channel(0));
    ASSERT_TRUE(Write("a.wav", MakeNoiseSound(2, frames)));
    ASSERT_TRUE(Write("a.flac", MakeNoiseSound(2, frames)));
    std::mt19937 random(1);
    for (const std::string name : {"wide.wav", "a.wav", "a.flac"}) {
        for (const uint32_t rate : {44100, 48000, 8000, 96000}) {
            const std::vector<int16_t> whole = ReadAs(name, rate, 2).Values;
            WAVEFORMATEXTENSIBLE format = MakePcm16Format(rate, 2);
            uint64_t promised = 0;
            const DecoderHandle decoder = EkOpenFile(Path(name), format, promised, false);
            ASSERT_EQ(promised * 2, whole.size());
            for (int i = 0; i < 12; ++i) {
                const uint64_t first = random() % (promised + 10);
                const uint64_t count = 1 + random() % 9000;
                std::vector<int16_t> part(count * 2);
                const uint64_t got = EkGetFileData(decoder, first, count, part.data(), part.size() * 2);
                ASSERT_EQ(got, std::min(count, promised - std::min(first, promised))) << name << rate << ' ' << first;
                size_t different = 0;
                for (size_t at = 0; at < got * 2; ++at) {
                    ASSERT_LE(std::abs(part[at] - whole[first * 2 + at]), 1) << name << rate << ' ' << first;
                    different += part[at] != whole[first * 2 + at];
                }
                EXPECT_LE(different, got / 1000) << name << rate << ' ' << first;
            }
            EkCloseFile(decoder);
        }
    }
}

TEST_F(DecoderTest, RateConversionKeepsLevelAndLengthAndRemovesWhatDoesNotFit)
{
    for (const uint32_t from : {8000, 44100, 48000, 96000}) {
        const Sound sound = MakeTones(from, 2, from + 7);
        ASSERT_TRUE(Write("a.wav", sound));
        for (const uint32_t to : {8000, 11025, 44100, 48000, 192000}) {
            const Sound got = ReadAs("a.wav", to, 2);
            EXPECT_EQ(got.Frames(), (2 * uint64_t{from + 7} * to + from) / (2 * from)) << from << ' ' << to;
            for (const uint32_t channel : {0, 1}) {
                EXPECT_NEAR(AmplitudeOf(got.Channel(channel), 200 + 100 * channel, to), 0.5, 0.0005);
                EXPECT_NEAR(AmplitudeOf(got.Channel(channel), 300 - 100 * channel, to), 0, 0.0005);
            }
        }
        std::filesystem::remove(Path("a.wav"));
    }
    // 10 kHz has no place at 8 kHz, and must not come back as its mirror image at 2 kHz.
    std::vector<double> high(48000);
    for (size_t i = 0; i < high.size(); ++i)
        high[i] = 0.9 * std::sin(2 * std::numbers::pi * 10000 * static_cast<double>(i) / 48000);
    WriteByLibrary("high.wav", SF_FORMAT_WAV | SF_FORMAT_FLOAT, 48000, 1, high);
    EXPECT_NEAR(AmplitudeOf(ReadAs("high.wav", 8000, 1).Channel(0), 2000, 8000), 0, 0.0001);
}

TEST_F(DecoderTest, ConvertedSoundIsInStepWithTheSource)
{
    // A single click keeps its time.
    std::vector<double> click(44100);
    click[22050] = 0.9;
    WriteByLibrary("a.wav", SF_FORMAT_WAV | SF_FORMAT_FLOAT, 44100, 1, click);
    for (const uint32_t rate : {22050, 48000, 88200}) {
        const std::vector<int16_t> values = ReadAs("a.wav", rate, 1).Values;
        EXPECT_EQ(std::ranges::max_element(values) - values.begin(), rate / 2);
    }
}

TEST_F(DecoderTest, ChannelsComeInTheOrderOfTheirMaskWhateverTheFilesOrder)
{
    // Left, centre, right, back left, back right, low frequency: the order of Ogg files.
    const uint32_t fileFrequencies[] = {200, 300, 400, 500, 600, 50};
    const uint32_t frequencies[] = {200, 400, 300, 50, 500, 600};
    std::vector<double> values;
    for (int frame = 0; frame < 48000; ++frame) {
        for (const uint32_t frequency : fileFrequencies)
            values.push_back(0.5 * std::sin(2 * std::numbers::pi * frequency * frame / 48000));
    }
    for (const int subtype : {SF_FORMAT_VORBIS, SF_FORMAT_OPUS}) {
        WriteByLibrary("a.ogg", SF_FORMAT_OGG | subtype, 48000, 6, values);
        EXPECT_EQ(FormatOf("a.ogg").dwChannelMask, 0x3Fu);
        const Sound sound = Read("a.ogg");
        for (uint32_t channel = 0; channel < 6; ++channel)
            EXPECT_NEAR(AmplitudeOf(sound.Channel(channel), frequencies[channel], 48000), 0.5, 0.1) << channel;
    }
}

TEST_F(DecoderTest, MonoAndStereoRequestsAreMixed)
{
    Sound sound{44100, 2, {}};
    for (int i = -1000; i < 1000; ++i)
        sound.Values.insert(sound.Values.end(), {static_cast<int16_t>(i * 20), static_cast<int16_t>(i * 10)});
    ASSERT_TRUE(Write("a.wav", sound));
    const std::vector<int16_t> mono = ReadAs("a.wav", 44100, 1).Values;
    for (int i = -1000; i < 1000; ++i)
        ASSERT_EQ(mono[static_cast<size_t>(i + 1000)], i * 15);
}

TEST_F(DecoderTest, TagsThatAreNotUtf8AreReadAsLatin1)
{
    SF_INFO info{};
    info.samplerate = 8000;
    info.channels = 1;
    info.format = SF_FORMAT_WAV | SF_FORMAT_PCM_16;
    SNDFILE* file = sf_open(Path("a.wav").c_str(), SFM_WRITE, &info);
    sf_set_string(file, SF_STR_TITLE,
                  "Gr\xF6\xDF"
                  "e");
    sf_set_string(file, SF_STR_ARTIST, "\xC3\xA9");
    sf_close(file);
    EXPECT_EQ(EkGetTags(PropertiesOf("a.wav")),
              (std::map<std::string, std::string>{{"title", "Größe"}, {"artist", "é"}}));
}

TEST_F(DecoderTest, Id3ChunksOfOtherProgramsAreRead)
{
    const std::string utf16("\x01\xFF\xFE"
                            "G\0r\0\xF6\0\xDF\0"
                            "e\0",
                            13);
    const std::string comment("\0"
                              "engnote\0"
                              "spoken",
                              15);
    std::string frames;
    for (const auto& [id, content] : {std::pair<std::string, std::string>{"TIT2", std::string("\0Gr\xF6n", 5)},
                                      {"TALB", utf16},
                                      {"COMM", comment},
                                      {"TYER", std::string("\0"
                                                           "1999",
                                                           5)},
                                      {"APIC", std::string(300, 'p')}}) {
        frames += id + std::string{0, 0, char(content.size() >> 8), char(content.size()), 0, 0} + content;
    }
    frames += std::string(20, '\0'); // padding
    std::string tag =
        std::string("ID3\x03\0\0\0\0", 8) + char(frames.size() >> 7) + char(frames.size() & 0x7F) + frames;
    tag.resize((tag.size() + 1) / 2 * 2);
    for (const std::string id : {"ID3 ", "id3 "}) {
        ASSERT_TRUE(Write("a.wav", MakeNoiseSound(2, 100)));
        std::ofstream file(Path("a.wav"), std::ios::binary | std::ios::app);
        file << id << std::string{char(tag.size()), char(tag.size() >> 8), 0, 0} << tag;
        file.close();
        std::vector<char> bytes = ReadBytes(Path("a.wav"));
        const auto riffBytes = static_cast<uint32_t>(bytes.size() - 8);
        std::fstream header(Path("a.wav"), std::ios::binary | std::ios::in | std::ios::out);
        header.seekp(4).write(reinterpret_cast<const char*>(&riffBytes), sizeof riffBytes);
        header.close();
        EXPECT_EQ(EkGetTags(PropertiesOf("a.wav")),
                  (std::map<std::string, std::string>{
                      {"title", "Grön"}, {"album", "Größe"}, {"comment", "spoken"}, {"date", "1999"}}));
        std::filesystem::remove(Path("a.wav"));
    }
}

TEST(Id3, BrokenTagsSayNothingWrongAndNeverReadBeyondTheirEnd)
{
    const std::string good = MakeId3Tag({{"title", "abc"}, {"comment", "def"}}, "me");
    EXPECT_EQ(ReadId3Tag(good), (TagMap{{"title", "abc"}, {"comment", "def"}}));
    for (size_t size = 0; size < good.size(); ++size)
        EXPECT_TRUE(ReadId3Tag(std::string(good, 0, size)).empty()) << size;
    std::mt19937 random(1);
    for (int round = 0; round < 5000; ++round) {
        std::string bad = good;
        for (int i = 0; i < 4; ++i)
            bad[random() % bad.size()] = static_cast<char>(random());
        for (const auto& [name, text] : ReadId3Tag(bad))
            EXPECT_TRUE(IsUtf8(text) && !text.empty());
    }
}

} // namespace

} // namespace ek
