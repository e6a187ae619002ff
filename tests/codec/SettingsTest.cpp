// SPDX-License-Identifier: GPL-3.0-or-later
#include "CodecFixture.h"

#include "ekdatapr/StreamProps.h"
#include "platform/ProductSettings.h"
#include "platform/Text.h"
#include "servicefuncs/Channels.h"
#include "support/FaultyFileCalls.h"

#include <algorithm>
#include <cerrno>
#include <random>

namespace ek {

namespace {

class Settings : public CodecFixture {
protected:
    static std::string Value(std::string_view extension, std::string_view key)
    {
        for (const CoderOption& option : EkGetCoderOptions(extension)) {
            if (option.Key == key)
                return option.Value;
        }
        return "none";
    }
};

TEST_F(Settings, EveryWritableExtensionHasItsOwnDefaultsAndKeepsWhatIsChosen)
{
    for (const std::string extension :
         {"wav", "rf64", "w64", "aiff", "aif", "au", "caf", "flac", "ogg", "opus", "mp3"}) {
        EXPECT_EQ(Value(extension, "channels"), "Stereo") << extension;
        EXPECT_EQ(Value(extension, "openafter"), "0") << extension;
        std::string error;
        EXPECT_TRUE(EkSetCoderOptions(extension, {{"channels", "Mono"}, {"openafter", "1"}}, error)) << error;
        EXPECT_EQ(Value(extension, "channels"), "Mono") << extension;
        EXPECT_EQ(GetProductSetting("Providers\\" + extension, "Channels", ""), "Mono");
    }
    EXPECT_EQ(Value("FLAC", "channels"), "Mono");
    ASSERT_TRUE(SetProductSetting("Providers\\ogg", "Channels", "Octophony").Ok());
    EXPECT_EQ(Value("ogg", "channels"), "Stereo"); // what makes no sense is the default
    EXPECT_EQ(Value("wav", "quality"), "none");
    EXPECT_EQ(Value("wav", "subtype"), "pcm_16");
    EXPECT_TRUE(EkGetCoderOptions("txt").empty());
    EXPECT_TRUE(EkGetCoderOptions("").empty());
}

TEST_F(Settings, ValuesThatACoderDoesNotHaveAreRefusedAndNothingIsStored)
{
    const std::vector<std::pair<std::string, Options>> wrong = {
        {"wav", {{"quality", "0.5"}}},   {"wav", {{"subtype", "vorbis"}}}, {"ogg", {{"quality", "1.5"}}},
        {"ogg", {{"quality", "good"}}},  {"ogg", {{"quality", "nan"}}},    {"mp3", {{"channels", "5.1 Surround Mode"}}},
        {"mp3", {{"bitrate", "129"}}},   {"opus", {{"bitrate", "1"}}},     {"wav", {{"channels", "stereo"}}},
        {"wav", {{"openafter", "yes"}}}, {"xyz", {{"subtype", "pcm_16"}}}};
    for (auto [extension, values] : wrong) {
        values.try_emplace("channels", "Mono");
        std::string error;
        EXPECT_FALSE(EkSetCoderOptions(extension, values, error)) << extension;
        EXPECT_FALSE(error.empty());
        EXPECT_EQ(GetProductSetting("Providers\\" + extension, "Channels", "untouched"), "untouched") << extension;
    }
}

TEST_F(Settings, WhatCannotBeStoredHoldsForTheProcess)
{
    FaultyFileCalls calls(".ini");
    calls.FailFrom(1, ENOSPC);
    std::string error;
    EXPECT_TRUE(EkSetCoderOptions("CAF", {{"channels", "Mono"}, {"subtype", "float"}}, error));
    EXPECT_TRUE(calls.HasFailed());
    EXPECT_TRUE(EkSetCoderOptions("caf", {{"openafter", "1"}}, error));
    EXPECT_FALSE(EkSetCoderOptions("caf", {{"openafter", "0"}, {"subtype", "vorbis"}}, error));
    EXPECT_EQ(EkCoderChannelLayout("caf"), "Mono");
    EXPECT_EQ(Value("caf", "subtype"), "float");
    EXPECT_EQ(Value("caf", "openafter"), "1");
    EXPECT_EQ(EkCoderChannelLayout("txt"), "");

    calls.StopFailing(); // the next choice takes the earlier ones along
    EXPECT_TRUE(EkSetCoderOptions("caf", {{"channels", "Stereo"}}, error));
    EXPECT_EQ(GetProductSetting("Providers\\caf", "Subtype", ""), "float");
    EXPECT_EQ(GetProductSetting("Providers\\caf", "Channels", ""), "Stereo");
}

TEST_F(Settings, TheWishToOpenTheNewFileIsPassedOn)
{
    for (const char* wish : {"0", "1"}) {
        Choose("a.wav", 2, {{"openafter", wish}});
        uint8_t openAfter = 7;
        const CoderHandle coder =
            EkCoderCreateFile(Path("a.wav"), MakePcm16Format(44100, 2), nullptr, &openAfter, uint64_t{0});
        EXPECT_TRUE(EkCoderCloseFile(coder));
        EXPECT_EQ(openAfter, wish[0] - '0');
        std::filesystem::remove(Path("a.wav"));
    }
}

TEST_F(Settings, QualityAndBitRateDecideTheSize)
{
    const Sound sound = MakeNoiseSound(2, 48000);
    for (const auto& [name, key, low, high] : {std::tuple("a.ogg", "quality", "0", "0.9"),
                                               {"a.opus", "bitrate", "32", "256"},
                                               {"a.mp3", "bitrate", "64", "320"}}) {
        Choose(name, 2, {{key, low}});
        ASSERT_TRUE(Write(name, sound));
        const auto small = std::filesystem::file_size(Path(name));
        std::filesystem::remove(Path(name));
        Choose(name, 2, {{key, high}});
        ASSERT_TRUE(Write(name, sound));
        EXPECT_GT(std::filesystem::file_size(Path(name)), 2 * small) << name;
    }
}

std::vector<std::string> Split(const std::string& text, char separator)
{
    std::vector<std::string> parts(1);
    for (const char character : text) {
        if (character == separator)
            parts.emplace_back();
        else
            parts.back() += character;
    }
    return parts;
}

TEST_F(Settings, FiltersArePairsOfADescriptionAndPatterns)
{
    const std::string readable = EkGetSupportedFileExtensions();
    const std::string writable = EkGetSupportedCoderExtensions();
    for (const std::string& filter : {readable, writable}) {
        const std::vector<std::string> parts = Split(filter, '|');
        ASSERT_EQ(parts.size() % 2, 1u);
        EXPECT_EQ(parts.back(), ""); // every pair is closed
        for (size_t i = 1; i < parts.size(); i += 2) {
            for (const std::string& pattern : Split(parts[i], ';'))
                EXPECT_TRUE(pattern.starts_with("*.") && pattern.size() > 2) << parts[i];
        }
    }
    const std::vector<std::string> all = Split(Split(readable, '|')[1], ';');
    EXPECT_EQ(Split(readable, '|')[0], "All Supported Files");
    for (const std::string extension :
         {"wav", "w64", "aif", "au", "snd", "caf", "flac", "ogg", "opus", "mp3", "voc", "iff"})
        EXPECT_NE(std::ranges::find(all, "*." + extension), all.end()) << extension;
    const std::vector<std::string> pairs = Split(writable, '|');
    for (size_t i = 1; i < pairs.size(); i += 2) {
        for (const std::string& pattern : Split(pairs[i], ';')) {
            EXPECT_FALSE(EkGetCoderOptions(pattern.substr(2)).empty()) << pattern;
        }
    }
}

TEST(StreamProps, FactsComeBackAsTheyWent)
{
    StreamFacts facts{.SfFormat = 0x10002,
                      .Quality = 0.93,
                      .BitRate = 320,
                      .Channels = 2,
                      .Tags = {{"title", "é"}, {"comment", "x"}}};
    EXPECT_EQ(Unpack(Pack(facts)), facts);
    facts.Quality = -1;
    facts.Tags.clear();
    EXPECT_EQ(Unpack(Pack(facts)), facts);
}

TEST(StreamProps, TagsThatDoNotFitAreCutAtACharacterTheCommentFirst)
{
    StreamFacts facts;
    facts.Tags = {{"comment", std::string(3000, 'c')}, {"title", std::string(1500, 't')}};
    const TagMap kept = Unpack(Pack(facts))->Tags;
    EXPECT_EQ(kept.at("title"), facts.Tags.at("title"));
    EXPECT_EQ(kept.at("comment"), std::string(4100 - 20 - 3 - 1500 - 3, 'c'));

    for (size_t lead = 0; lead < 4; ++lead) {
        std::string text(lead, 'x');
        while (text.size() < 5000)
            text += "𝄞";
        facts.Tags = {{"title", text}};
        const std::string title = Unpack(Pack(facts))->Tags.at("title");
        EXPECT_TRUE(IsUtf8(title));
        EXPECT_TRUE(text.starts_with(title));
        EXPECT_GT(title.size(), 4100u - 20 - 3 - 4);
    }
}

TEST(StreamProps, OtherBytesSayNothing)
{
    EXPECT_FALSE(Unpack(StreamProperties{}));
    EXPECT_TRUE(EkGetTags(StreamProperties{}).empty());
    std::mt19937 random(1);
    const StreamProperties good = Pack({.SfFormat = 1, .Tags = {{"title", "abc"}, {"genre", "def"}}});
    for (int round = 0; round < 2000; ++round) {
        StreamProperties properties = good;
        for (int i = 0; i < 4; ++i)
            properties.Bytes[random() % 40] = static_cast<uint8_t>(random());
        if (const auto facts = Unpack(properties)) {
            EXPECT_LE(facts->Quality, 1);
            for (const auto& [name, text] : facts->Tags)
                EXPECT_TRUE(IsUtf8(text));
        }
    }
}

} // namespace

} // namespace ek
