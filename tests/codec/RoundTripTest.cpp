// SPDX-License-Identifier: GPL-3.0-or-later
#include "CodecFixture.h"

#include "ekdatapr/ChannelMatrix.h"
#include "ekdatapr/StreamProps.h"
#include "servicefuncs/Channels.h"
#include "support/Signals.h"

#include <algorithm>
#include <bit>
#include <cmath>
#include <fstream>
#include <sndfile.h>

namespace ek {

namespace {

class RoundTrip : public CodecFixture {
protected:
    using CodecFixture::Write;
    bool Write(const std::string& name, const Sound& sound, uint32_t mask);
};

const std::vector<std::string> LosslessNames = {"a.wav", "a.rf64", "a.w64", "a.aiff", "a.aif",
                                                "a.au",  "a.snd",  "a.caf", "a.flac"};
const std::vector<std::string> LossyNames = {"a.ogg", "a.oga", "a.opus", "a.mp3"};

TEST_F(RoundTrip, SixteenBitSoundOfOneToEightChannelsPassesEveryLosslessContainerExactly)
{
    for (const std::string& name : LosslessNames) {
        for (uint32_t channels = 1; channels <= MaxChannels; ++channels) {
            const Sound sound = MakeNoiseSound(channels, 5000);
            Choose(name, channels);
            ASSERT_TRUE(Write(name, sound)) << name << channels;
            EXPECT_EQ(Read(name), sound) << name << channels;
            std::filesystem::remove(Path(name));
        }
    }
}

TEST_F(RoundTrip, SixteenBitSoundInWiderSamplesComesBackExactly)
{
    const Sound sound = MakeNoiseSound(2, 5000);
    for (const std::string name : {"a.wav", "a.w64", "a.aiff", "a.au", "a.caf", "a.flac"}) {
        for (const std::string subtype : {"pcm_24", "pcm_32", "float", "double"}) {
            if (name == "a.flac" && subtype != "pcm_24")
                continue;
            Choose(name, 2, {{"subtype", subtype}});
            ASSERT_TRUE(Write(name, sound)) << name << subtype;
            EXPECT_EQ(Read(name), sound) << name << subtype;
            EXPECT_GT(FormatOf(name).wBitsPerSample, 16) << name << subtype;
            std::filesystem::remove(Path(name));
        }
    }
}

TEST_F(RoundTrip, EightBitSoundKeepsItsValuesAndItsSilence)
{
    Sound sound{8000, 1, {}};
    for (int value = -128; value < 128; ++value)
        sound.Values.push_back(static_cast<int16_t>(value * 256));
    for (const std::string name : {"a.wav", "a.aiff", "a.flac"}) {
        Choose(name, 1, {{"subtype", name == "a.wav" ? "pcm_u8" : "pcm_s8"}});
        ASSERT_TRUE(Write(name, sound)) << name;
        EXPECT_EQ(FormatOf(name).wBitsPerSample, 8) << name;
        EXPECT_EQ(Read(name), sound) << name;
    }
}

TEST_F(RoundTrip, LossyCodersKeepLengthLevelAndTheOrderOfChannels)
{
    for (const std::string& name : LossyNames) {
        const uint32_t maxChannels = name == "a.mp3" ? 2 : MaxChannels;
        // Layouts that Ogg does not have are mixed.
        for (const uint32_t channels : {1u, 2u, 4u, 6u, 7u, 8u}) {
            if (channels > maxChannels)
                continue;
            const Sound sound = MakeTones(48000, channels, 24000);
            Choose(name, channels);
            ASSERT_TRUE(Write(name, sound)) << name << channels;
            const Sound back = Read(name);
            ASSERT_EQ(back.Frames(), sound.Frames()) << name << channels;
            for (uint32_t channel = 0; channel < channels; ++channel) {
                // The low frequency channel of these coders is cut off at about 120 Hz.
                if (GetChannelByIndex(FormatOf(name), channel) == ChannelLowFrequency)
                    continue;
                EXPECT_NEAR(AmplitudeOf(back.Channel(channel), 200 + 100 * channel, 48000), 0.5, 0.06)
                    << name << channels << ' ' << channel;
            }
            std::filesystem::remove(Path(name));
        }
    }
}

TEST_F(RoundTrip, LogarithmicAndDifferenceCodingsKeepTheLevelAndTheLength)
{
    for (const uint64_t frames : {1000, 8000}) {
        const Sound sound = MakeTones(8000, 1, frames);
        for (const std::string name : {"a.wav", "a.w64"}) {
            for (const std::string subtype : {"ulaw", "alaw", "ima_adpcm", "ms_adpcm", "gsm610"}) {
                Choose(name, 1, {{"subtype", subtype}});
                ASSERT_TRUE(Write(name, sound)) << name << subtype;
                EXPECT_EQ(FormatOf(name).wBitsPerSample, 16) << name << subtype;
                EXPECT_EQ(Read(name).Frames(), frames) << name << subtype;
                EXPECT_NEAR(AmplitudeOf(Read(name).Channel(0), 200, 8000), 0.5, 0.03) << name << subtype;
                std::filesystem::remove(Path(name));
            }
        }
    }
}

TEST_F(RoundTrip, RatesThatACoderDoesNotKnowBecomeOnesThatItKnows)
{
    struct Case {
        std::string Name;
        uint32_t Rate;
        uint32_t FileRate;
    };
    for (const Case& test : {Case{"a.opus", 44100, 48000}, Case{"a.opus", 12000, 12000}, Case{"a.opus", 96000, 48000},
                             Case{"a.mp3", 96000, 48000}, Case{"a.mp3", 37800, 44100}, Case{"a.mp3", 8000, 8000}}) {
        const Sound sound = MakeTones(test.Rate, 2, test.Rate + 1);
        Choose(test.Name, 2);
        ASSERT_TRUE(Write(test.Name, sound)) << test.Name << test.Rate;
        const Sound back = Read(test.Name);
        EXPECT_EQ(back.Rate, test.FileRate);
        const double frames = static_cast<double>(sound.Frames()) * test.FileRate / test.Rate;
        EXPECT_EQ(back.Frames(), static_cast<uint64_t>(std::floor(frames + 0.5))) << test.Name << test.Rate;
        EXPECT_NEAR(AmplitudeOf(back.Channel(1), 300, back.Rate), 0.5, 0.03) << test.Name << test.Rate;
        std::filesystem::remove(Path(test.Name));
    }
}

TEST_F(RoundTrip, Mp3FilesOfEveryBitRateHaveTheLengthAndTheStartOfTheSound)
{
    for (const std::string rate : {"32", "40", "56", "64", "80", "320"}) {
        for (const uint32_t sampleRate : {8000, 11025, 12000, 16000, 22050, 24000, 32000, 44100, 48000}) {
            for (const uint32_t channels : {1, 2}) {
                // Silence, then a tone.
                Sound sound = MakeTones(sampleRate, channels, sampleRate / 2);
                std::fill_n(sound.Values.begin(), sound.Values.size() / 2, int16_t{0});
                Choose("a.mp3", channels, {{"bitrate", rate}});
                ASSERT_TRUE(Write("a.mp3", sound));
                const Sound back = Read("a.mp3");
                EXPECT_EQ(back.Frames(), sound.Frames()) << rate << ' ' << sampleRate << ' ' << channels;
                const auto start = std::ranges::find_if(back.Values, [](int value) { return std::abs(value) > 3000; });
                EXPECT_NEAR(static_cast<double>(start - back.Values.begin()) / channels, sampleRate / 4.0,
                            sampleRate / 200.0 + 20)
                    << rate << ' ' << sampleRate << ' ' << channels;
                std::filesystem::remove(Path("a.mp3"));
            }
        }
    }
}

TEST_F(RoundTrip, AnyLengthArrivesWhole)
{
    for (const uint64_t frames : {0, 1, 2, 960, 4095, 4096, 4097}) {
        for (const auto& names : {LosslessNames, LossyNames}) {
            for (const std::string& name : names) {
                ASSERT_TRUE(Write(name, MakeTones(48000, 2, frames))) << name << frames;
                const bool isOgg = name[2] == 'o'; // an Ogg stream cannot be empty
                EXPECT_EQ(Read(name).Frames(), isOgg ? std::max<uint64_t>(frames, 1) : frames) << name;
                std::filesystem::remove(Path(name));
            }
        }
    }
}

TEST_F(RoundTrip, MonoAndStereoBecomeEachOtherAndOtherLayoutsAreRefused)
{
    const Sound mono = MakeNoiseSound(1, 100);
    Choose("a.wav", 2);
    ASSERT_TRUE(Write("a.wav", mono));
    const Sound stereo = Read("a.wav");
    ASSERT_EQ(stereo.Channels, 2u);
    EXPECT_EQ(stereo.Channel(0), mono.Channel(0));
    EXPECT_EQ(stereo.Channel(1), mono.Channel(0));

    Choose("b.wav", 1);
    ASSERT_TRUE(Write("b.wav", stereo));
    EXPECT_EQ(Read("b.wav"), mono);

    Choose("c.wav", 2);
    EXPECT_FALSE(Write("c.wav", MakeNoiseSound(6, 100)));
    Choose("c.wav", 6);
    EXPECT_FALSE(Write("c.wav", stereo));
    EXPECT_FALSE(std::filesystem::exists(Path("c.wav")));
}

/// With the settings for as many channels, whose speakers are those of the mask.
bool RoundTrip::Write(const std::string& name, const Sound& sound, uint32_t mask)
{
    const WAVEFORMATEXTENSIBLE format = MakePcm16Format(sound.Rate, sound.Channels, mask);
    Choose(name, sound.Channels);
    const CoderHandle coder = EkCoderCreateFile(Path(name), format, nullptr, nullptr, sound.Frames());
    const bool added = EkCoderAddFileData(coder, sound.Frames(), sound.Values.data(), sound.Values.size() * 2);
    return EkCoderCloseFile(coder) && added;
}

TEST_F(RoundTrip, SpeakersOfALayoutSurviveWhereTheContainerHasThem)
{
    const std::vector<std::string> anyLayout = {"a.wav", "a.rf64", "a.flac"};
    const std::vector<std::string> usualSurround = {"a.aiff", "a.caf", "a.ogg"};
    for (const uint32_t mask : {0x7, 0xB, 0x33, 0x107, 0x37, 0x10F, 0x3F, 0x60F, 0x70F, 0x63F}) {
        for (const std::string& name : mask == 0x3F ? usualSurround : anyLayout) {
            const auto channels = static_cast<uint32_t>(std::popcount(mask));
            const Sound sound = MakeNoiseSound(channels, 50);
            ASSERT_TRUE(Write(name, sound, mask));
            EXPECT_EQ(FormatOf(name), MakePcm16Format(44100, channels, mask)) << name;
            if (name != "a.ogg") {
                EXPECT_EQ(Read(name), sound) << name;
            }
            std::filesystem::remove(Path(name));
        }
    }
}

TEST_F(RoundTrip, OggFilesHaveTheSpeakersOfTheirKindAndNoneSoundsFromAnother)
{
    struct Case {
        uint32_t Mask;
        uint32_t FileMask;
    };
    for (const Case& test : {Case{0xB, 0x7}, {0x107, 0x33}, {0x10F, 0x37}, {0x60F, 0x3F}, {0x7, 0x7}}) {
        const auto channels = static_cast<uint32_t>(std::popcount(test.Mask));
        const Sound sound = MakeTones(48000, channels, 24000);
        for (const std::string name : {"a.ogg", "a.opus"}) {
            ASSERT_TRUE(Write(name, sound, test.Mask)) << name;
            EXPECT_EQ(FormatOf(name).dwChannelMask, test.FileMask) << name;
            const ChannelMatrix mix = MakeChannelMatrix(channels, test.Mask, channels, test.FileMask);
            const Sound back = Read(name);
            for (uint32_t output = 0; output < channels; ++output) {
                if (GetChannelByIndex(FormatOf(name), output) == ChannelLowFrequency)
                    continue; // these coders cut it off at about 120 Hz
                for (uint32_t input = 0; input < channels; ++input) {
                    EXPECT_NEAR(AmplitudeOf(back.Channel(output), 200 + 100 * input, 48000),
                                0.5 * mix.Gain[output][input], 0.06)
                        << name << test.Mask << ' ' << output << input;
                }
            }
            std::filesystem::remove(Path(name));
        }
    }
}

TEST_F(RoundTrip, TextTagsSurviveWhereTheContainerHasThem)
{
    StreamFacts facts;
    for (const TagName& tag : TagNames)
        facts.Tags[tag.Name] = std::string("Größe 音 ") + tag.Name;
    facts.Tags["date"] = "2024";
    facts.Tags["track"] = "7";
    facts.Tags["comment"] = std::string(1900, 'x') + "é";
    const StreamProperties properties = Pack(facts);
    for (const std::string name : {"a.wav", "a.rf64", "a.aiff", "a.flac", "a.caf", "a.ogg", "a.opus", "a.mp3"}) {
        ASSERT_TRUE(Write(name, MakeTones(48000, 2, 3000), nullptr, &properties)) << name;
        EXPECT_EQ(EkGetTags(PropertiesOf(name)), facts.Tags) << name;
    }
    ASSERT_TRUE(Write("a.w64", MakeNoiseSound(2, 99), nullptr, &properties));
    EXPECT_TRUE(EkGetTags(PropertiesOf("a.w64")).empty());
}

TEST_F(RoundTrip, AFileSavedWithItsOwnPropertiesIsEncodedAsBefore)
{
    struct Case {
        std::string Name;
        std::string Key;
        std::string Value;
        std::string Later; ///< chosen afterwards, does not count
    };
    const std::vector<Case> cases = {{"a.wav", "subtype", "pcm_24", "float"},   {"a.wav", "subtype", "ulaw", "pcm_16"},
                                     {"a.flac", "subtype", "pcm_24", "pcm_16"}, {"a.aif", "subtype", "float", "alaw"},
                                     {"a.ogg", "quality", "0.93", "0"},         {"a.ogg", "quality", "0.1", "1"},
                                     {"a.opus", "bitrate", "24", "200"},        {"a.mp3", "bitrate", "320", "32"}};
    const Sound sound = MakeNoiseSound(2, 20000);
    for (const auto& [name, key, value, later] : cases) {
        Choose(name, 2, {{key, value}});
        ASSERT_TRUE(Write(name, sound)) << name;
        const StreamProperties properties = PropertiesOf(name);
        Choose(name, 1, {{key, later}});
        ASSERT_TRUE(Write("2" + name, sound, &properties)) << name;
        EXPECT_TRUE(PropertiesOf("2" + name) == properties) << name << value;
        EXPECT_EQ(std::filesystem::file_size(Path("2" + name)), std::filesystem::file_size(Path(name))) << name;
        std::filesystem::remove(Path(name));
        std::filesystem::remove(Path("2" + name));
    }
}

TEST_F(RoundTrip, MonoAndStereoFilesStayWhatTheyAreWhenTheyAreSavedAgain)
{
    const Sound mono = MakeNoiseSound(1, 500);
    Choose("a.wav", 2);
    ASSERT_TRUE(Write("a.wav", mono));
    const StreamProperties stereo = PropertiesOf("a.wav");
    Choose("a.wav", 1);
    ASSERT_TRUE(Write("b.wav", mono, &stereo));
    EXPECT_EQ(Read("b.wav"), Read("a.wav"));
    // Sound of other layouts cannot become stereo, and is not lost for it.
    const Sound surround = MakeNoiseSound(6, 500);
    ASSERT_TRUE(Write("c.wav", surround, &stereo));
    EXPECT_EQ(Read("c.wav"), surround);
}

TEST_F(RoundTrip, LossyFilesOfOthersAreRepeatedAtAboutTheirRate)
{
    const Sound sound = MakeNoiseSound(2, 44100);
    std::vector<double> values;
    for (const int16_t value : sound.Values)
        values.push_back(value / 32768.0);
    WriteByLibrary("a.ogg", SF_FORMAT_OGG | SF_FORMAT_VORBIS, 44100, 2, values);
    const StreamProperties properties = PropertiesOf("a.ogg");
    ASSERT_TRUE(Write("b.ogg", sound, &properties));
    const auto bytes = static_cast<double>(std::filesystem::file_size(Path("a.ogg")));
    EXPECT_GE(static_cast<double>(std::filesystem::file_size(Path("b.ogg"))), 0.95 * bytes);
    EXPECT_LE(static_cast<double>(std::filesystem::file_size(Path("b.ogg"))), 1.4 * bytes);
}

TEST_F(RoundTrip, PicturesDoNotCountAsBitRate)
{
    Choose("a.mp3", 2, {{"bitrate", "96"}});
    ASSERT_TRUE(Write("a.mp3", MakeNoiseSound(2, 44100)));
    const std::vector<char> sound = ReadBytes(Path("a.mp3"));
    // Another program's tag, with a picture of 131,072 bytes, in place of the one that names the rate.
    std::string tag("ID3\x04\0\0\0\x08\0\x0A"
                    "APIC\0\x08\0\0\0\0",
                    20);
    tag.append(131072, 'p');
    const auto rate = std::ranges::search(sound, std::string_view("\xFF\xFB"));
    ASSERT_FALSE(rate.empty());
    std::ofstream file(Path("b.mp3"), std::ios::binary);
    file << tag;
    file.write(&*rate.begin(), sound.end() - rate.begin());
    file.close();
    EXPECT_EQ(Unpack(PropertiesOf("b.mp3"))->BitRate, 96u);
}

TEST_F(RoundTrip, OnlyALengthBeyondFourGibibytesMakesAWavAnRf64)
{
    const WAVEFORMATEXTENSIBLE format = MakePcm16Format(44100, 2);
    const Sound sound = MakeNoiseSound(2, 1000);
    constexpr uint64_t fittingFrames = (uint64_t{1} << 30) - (1 << 19);
    for (const uint64_t announced : {uint64_t{0}, fittingFrames, fittingFrames + (1 << 18), uint64_t{1} << 40}) {
        const CoderHandle coder = EkCoderCreateFile(Path("a.wav"), format, nullptr, nullptr, announced);
        ASSERT_TRUE(EkCoderAddFileData(coder, 1000, sound.Values.data(), 4000)) << announced;
        ASSERT_TRUE(EkCoderCloseFile(coder)) << announced;
        EXPECT_EQ(TypeOf("a.wav").starts_with("RF64"), announced > fittingFrames) << announced;
        EXPECT_EQ(Read("a.wav"), sound) << announced;
        std::filesystem::remove(Path("a.wav"));
        const CoderHandle aiff = EkCoderCreateFile(Path("b.aiff"), format, nullptr, nullptr, announced);
        EXPECT_EQ(aiff != 0, announced <= fittingFrames) << announced;
        EXPECT_EQ(EkCoderCloseFile(aiff), aiff != 0);
        std::filesystem::remove(Path("b.aiff"));
    }
}

} // namespace

} // namespace ek
