// SPDX-License-Identifier: GPL-3.0-or-later
#include "host/OpenRequest.h"
#include "host/Options.h"

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
    const Options options = Parsed({"a.wav", "/b \"c\".wav", "sub/../\xff.wav", "--", "--version"});
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
    EXPECT_EQ(MakeOpenRequest({"/a b.wav", "/line\nbreak.wav", "/\xc3\xa4.wav"}).Text,
              u"Open \"/a b.wav\" \"/line\nbreak.wav\" \"/\u00e4.wav\"");
    EXPECT_EQ(MakeOpenRequest({}).Text, u"");
}

TEST(OpenRequestTest, ANameThatCannotBePassedIsRefusedAndTheOthersStay)
{
    const OpenRequest request = MakeOpenRequest({"/a\" \"/etc/passwd", "/b.wav", "/\xff.wav"});
    EXPECT_EQ(request.Text, u"Open \"/b.wav\"");
    const std::vector<std::filesystem::path> refused = {"/a\" \"/etc/passwd", "/\xff.wav"};
    EXPECT_EQ(request.Refused, refused);
    EXPECT_NE(RefusalText(refused[0]).find("double quote"), std::string::npos);
    EXPECT_NE(RefusalText(refused[1]).find("UTF-8"), std::string::npos);
    EXPECT_EQ(MakeOpenRequest({"/\"only\".wav"}).Text, u"");
}

} // namespace
} // namespace ek
