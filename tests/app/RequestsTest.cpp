// SPDX-License-Identifier: GPL-3.0-or-later
#include "app/EkEditorApp.h"
#include "app/FileFilter.h"
#include "app/HostRequests.h"
#include "support/ScriptedPrompts.h"
#include "support/Signals.h"
#include "support/TestFolder.h"

#include <gtest/gtest.h>

namespace ek {
namespace {

using Paths = std::vector<std::filesystem::path>;

TEST(HostVersion, AnOlderHostIsToldItsVersionWithTheBuildAppended)
{
    const auto message = [](const std::string& version) {
        return "You have Ek MP3 Vantler frame version " + version +
               ".\nYou need at least version 1.0 to use this module.";
    };
    EXPECT_EQ(HostVersionRefusal(0x00FF0000), message("0.255"));
    EXPECT_EQ(HostVersionRefusal(0x00090005), message("0.95"));
    EXPECT_FALSE(HostVersionRefusal(0x01000000));
    EXPECT_FALSE(HostVersionRefusal(0x02030004));
}

TEST(PassedRequest, TheFirstWordDecides)
{
    EXPECT_TRUE(ParsePassedRequest("open").IsOpen);
    EXPECT_TRUE(ParsePassedRequest(" \tOPEN\n\"/a\"").IsOpen);
    EXPECT_FALSE(ParsePassedRequest("Open\"/a\"").IsOpen);
    EXPECT_FALSE(ParsePassedRequest("Opened \"/a\"").IsOpen);
    EXPECT_FALSE(ParsePassedRequest("").IsOpen);
}

TEST(PassedRequest, FilesStandBetweenPairsOfQuotes)
{
    const auto files = [](std::string_view text) { return ParsePassedRequest(text).Files; };
    EXPECT_EQ(files("Open \"/a/one.wav\" \"/b/two & three.mts\"\"/c\""),
              (Paths{"/a/one.wav", "/b/two & three.mts", "/c"}));
    EXPECT_EQ(files("open \"/a"), Paths());
    EXPECT_EQ(files("open /a/plain.wav"), Paths());
    EXPECT_EQ(files("open \"\" \"/a\" \"/rest"), Paths{"/a"});
    EXPECT_EQ(files("close \"/a\""), Paths());
}

TEST(FileFilter, SessionsJoinTheFirstPairAndGetOneOfTheirOwn)
{
    const std::string types = "All Supported Files|*.wav;*.flac|WAV (*.wav)|*.wav|";
    const std::string opened = "All Supported Files|*.wav;*.flac;*.mts|WAV (*.wav)|*.wav|"
                               "Multitrack Session Files (*.mts)|*.mts||";
    EXPECT_EQ(MakeOpenFileFilter(types, false), opened);
    EXPECT_EQ(MakeOpenFileFilter(types, true), "All Files (*.*)|*.*|" + opened);
    EXPECT_EQ(MakeOpenFileFilter(types + '|', false), opened);
    EXPECT_EQ(MakeOpenFileFilter("", true), "");
    EXPECT_TRUE(ParseFileFilter("Lonely description").empty());
}

TEST(FileFilter, ANameWithoutAKnownExtensionGetsTheChosenOnes)
{
    const std::vector<FileType> types = ParseFileFilter("WAV|*.wav;*.wave|FLAC|*.flac|Any|*.*|");
    EXPECT_EQ(CompleteFileName("/d.e/take", types, 1, "wav"), "/d.e/take.flac");
    EXPECT_EQ(CompleteFileName("take 1.2", types, 0, "wav"), "take 1.2.wav");
    EXPECT_EQ(CompleteFileName("take.WAVE", types, 1, "wav"), "take.WAVE");
    EXPECT_EQ(CompleteFileName("take", types, 2, "aif"), "take.aif");
    EXPECT_EQ(CompleteFileName("take", types, 9, "aif"), "take.aif");
    EXPECT_EQ(CompleteFileName("take", {}, 0, "wav"), "take.wav");
}

TEST(EditorApp, TheLastExtensionDecidesAndASessionIsRefusedByName)
{
    const TestFolder folder;
    const ScriptedPrompts prompts;
    CEkEditorApp app;
    for (const char* name : {"live.MTS", "live.mts.wav"})
        WriteWav(folder.Path() / name, 2, MakeRamp(2000));
    EXPECT_EQ(app.OpenDocumentByName(folder.Path() / "live.MTS"), nullptr);
    EXPECT_EQ(prompts.Messages(), std::vector<std::string>{"Can't open file live.MTS"});
    EXPECT_EQ(prompts.Icons(), std::vector<MessageIcon>{MessageIcon::Error});
    CDocument* document = app.OpenDocumentByName(folder.Path() / "live.mts.wav");
    ASSERT_NE(document, nullptr);
    EXPECT_EQ(app.Documents(), std::vector<CDocument*>{document});
    EXPECT_EQ(document->Template(), app.FindTemplate("Wave Editor"));
    EXPECT_EQ(app.MultitrackTemplateName(), "Multi Track");
}

} // namespace
} // namespace ek
