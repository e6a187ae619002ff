// SPDX-License-Identifier: GPL-3.0-or-later
#include "Scratch.h"

#include "host/OpenRequest.h"
#include "host/Options.h"
#include "platform/Text.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

namespace ek {
namespace {

std::optional<Options> Parse(std::vector<std::string> arguments, int& status)
{
    arguments.insert(arguments.begin(), "ek-wave-editor");
    return ParseCommandLine(arguments, status);
}

Options Parsed(const std::vector<std::string>& arguments)
{
    int status = -1;
    return Parse(arguments, status).value();
}

TEST(CommandLineTest, FilesAreMadeAbsoluteAndKeepTheirBytes)
{
    const auto here = std::filesystem::current_path();
    const Options options = Parsed({"a.wav", "", "/b \"c\".wav", "sub/../\xff.wav", "--", "--version"});
    const std::vector<std::filesystem::path> expected = {here / "a.wav", "/b \"c\".wav", here / "\xff.wav",
                                                         here / "--version"};
    EXPECT_EQ(options.Files, expected);
    EXPECT_FALSE(options.IsUnattended());
}

TEST(CommandLineTest, AScreenshotTakesItsSizeAndFiles)
{
    const Options options = Parsed({"--screenshot", "/p.png", "--size", "640x480", "--skin", "Dark", "/a.wav"});
    EXPECT_EQ(options.Screenshot, "/p.png");
    EXPECT_EQ(options.WindowSize, std::pair(640, 480));
    EXPECT_EQ(options.Skin, "Dark");
    EXPECT_EQ(options.Files, std::vector<std::filesystem::path>{"/a.wav"});
    EXPECT_TRUE(options.IsUnattended());
}

TEST(CommandLineTest, TheAudioOfARunIsASystemOrAFile)
{
    EXPECT_EQ(Parsed({"--audio-system", "null"}).AudioSystem, "null");
    const Options options = Parsed({"--audio-file", "heard.wav"});
    EXPECT_EQ(options.AudioFile, std::filesystem::current_path() / "heard.wav");
    EXPECT_FALSE(options.IsUnattended());
}

TEST(CommandLineTest, WrongArgumentsEndWithTwoAndHelpWithNone)
{
    const std::vector<std::vector<std::string>> wrong = {
        {"--unknown"},
        {"--screenshot"},
        {"--size", "640"},
        {"--size", "640x"},
        {"--size", "x480"},
        {"--size", "640x480x"},
        {"--size", "-640x480"},
        {"--size", "640x99999"},
        {"--size", "99x480"},
        {"--size", ""},
        {"--screenshot", "p", "--tour", "t"},
        {"--audio-system", "gramophone"},
        {"--audio-system", "file"},
        {"--audio-system", "null", "--audio-file", "a.wav"},
    };
    for (const auto& arguments : wrong) {
        int status = -1;
        EXPECT_FALSE(Parse(arguments, status)) << testing::PrintToString(arguments);
        EXPECT_EQ(status, 2) << testing::PrintToString(arguments);
    }
    for (const char* argument : {"--help", "--version"}) {
        int status = -1;
        EXPECT_FALSE(Parse({argument}, status));
        EXPECT_EQ(status, 0) << argument;
    }
}

TEST(OpenRequestTest, NamesStandInQuotes)
{
    const Scratch folder;
    const auto plain = folder.Write("a b.wav", "");
    const auto broken = folder.Write("line\nbreak \xc3\xa4.wav", "");
    const std::string text = "Open \"" + plain.native() + "\" \"" + broken.native() + "\"";
    EXPECT_EQ(ToUtf8(MakeOpenRequest({plain, broken}).Text), text);
    EXPECT_EQ(MakeOpenRequest({}).Text, u"");
}

TEST(OpenRequestTest, AFileThatCannotBeAskedForIsRefusedAndTheOthersStay)
{
    const Scratch folder;
    const auto good = folder.Write("good.wav", "");
    const OpenRequest request = MakeOpenRequest(
        {folder.Write("a\" \"b.wav", ""), folder.Write("\xff.wav", ""), good, folder / "missing.wav", folder.Path()});
    EXPECT_EQ(ToUtf8(request.Text), "Open \"" + good.native() + "\"");
    EXPECT_THAT(request.Refusals, testing::ElementsAre(testing::HasSubstr("double quote"), testing::HasSubstr("UTF-8"),
                                                       "Can't open file missing.wav",
                                                       "Can't open file " + folder.Path().filename().native()));
}

} // namespace
} // namespace ek
