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

TEST(HostVersion, OneDotZeroAndNewerPass)
{
    EXPECT_FALSE(HostVersionRefusal(0x01000000));
    EXPECT_FALSE(HostVersionRefusal(0x02030004));
}

TEST(HostVersion, AnOlderHostIsToldItsVersionWithTheBuildAppended)
{
    const auto message = [](const std::string& version) {
        return "You have Ek MP3 Vantler frame version " + version +
               ".\nYou need at least version 1.0 to use this module.";
    };
    EXPECT_EQ(HostVersionRefusal(0x00FF0000), message("0.255"));
    EXPECT_EQ(HostVersionRefusal(0x00090005), message("0.95"));
    EXPECT_EQ(HostVersionRefusal(0x00FFFFFF), message("0.25565535"));
}

TEST(PassedRequest, OpenNamesItsFilesInQuotes)
{
    const PassedRequest request = ParsePassedRequest("Open \"/a/one.wav\" \"/b/two & three.mts\"\"/c\"");
    EXPECT_TRUE(request.IsOpen);
    EXPECT_EQ(request.Files, (Paths{"/a/one.wav", "/b/two & three.mts", "/c"}));
}

TEST(PassedRequest, TheWordOpenCountsInAnyCaseAndAfterBlanks)
{
    EXPECT_TRUE(ParsePassedRequest("open").IsOpen);
    EXPECT_TRUE(ParsePassedRequest(" \tOPEN\n\"/a\"").IsOpen);
    EXPECT_FALSE(ParsePassedRequest("Open\"/a\"").IsOpen);
    EXPECT_FALSE(ParsePassedRequest("Opened \"/a\"").IsOpen);
    EXPECT_FALSE(ParsePassedRequest("").IsOpen);
}

TEST(PassedRequest, AQuoteWithoutPartnerAndAnEmptyNameOpenNothing)
{
    EXPECT_EQ(ParsePassedRequest("open \"/a").Files, Paths());
    EXPECT_EQ(ParsePassedRequest("open /a/plain.wav").Files, Paths());
    EXPECT_EQ(ParsePassedRequest("open \"\" \"/a\" \"/rest").Files, Paths{"/a"});
    EXPECT_EQ(ParsePassedRequest("close \"/a\"").Files, Paths());
}

TEST(FileFilter, SessionsJoinTheFirstPairAndGetOneOfTheirOwn)
{
    const std::string types = "All Supported Files|*.wav;*.flac|WAV (*.wav)|*.wav|FLAC (*.flac)|*.flac|";
    const std::string opened = "All Supported Files|*.wav;*.flac;*.mts|WAV (*.wav)|*.wav|FLAC (*.flac)|*.flac|"
                               "Multitrack Session Files (*.mts)|*.mts||";
    EXPECT_EQ(MakeOpenFileFilter(types, false), opened);
    EXPECT_EQ(MakeOpenFileFilter(types, true), "All Files (*.*)|*.*|" + opened);
    EXPECT_EQ(MakeOpenFileFilter(types + '|', false), opened);
    EXPECT_EQ(MakeOpenFileFilter("", true), "");
}

TEST(FileFilter, PairsAreReadBack)
{
    const std::vector<FileType> types = ParseFileFilter("All|*.a;*.b|B|*.b||");
    EXPECT_EQ(types, (std::vector<FileType>{{"All", {"*.a", "*.b"}}, {"B", {"*.b"}}}));
    EXPECT_TRUE(ParseFileFilter("Lonely description").empty());
}

TEST(FileFilter, ANameWithoutAKnownExtensionGetsTheChosenOnes)
{
    const std::vector<FileType> types = ParseFileFilter("WAV|*.wav;*.wave|FLAC|*.flac|Any|*.*|");
    EXPECT_EQ(CompleteFileName("/d.e/take", types, 1, "wav"), "/d.e/take.flac");
    EXPECT_EQ(CompleteFileName("take 1.2", types, 0, "wav"), "take 1.2.wav");
    EXPECT_EQ(CompleteFileName("take.WAVE", types, 1, "wav"), "take.WAVE");
    EXPECT_EQ(CompleteFileName("take.flac", types, 0, "wav"), "take.flac");
    EXPECT_EQ(CompleteFileName("take", types, 2, "aif"), "take.aif");
    EXPECT_EQ(CompleteFileName("take", types, 9, "aif"), "take.aif");
    EXPECT_EQ(CompleteFileName("take", {}, 0, "wav"), "take.wav");
}

class EditorAppTest : public testing::Test {
protected:
    std::filesystem::path MakeSound(const std::string& name) const
    {
        const std::filesystem::path path = m_folder.Path() / name;
        WriteWav(path, 2, MakeRamp(2000));
        return path;
    }

    TestFolder m_folder;
    ScriptedPrompts m_prompts;
    CEkEditorApp m_app;
};

TEST_F(EditorAppTest, ASessionIsRefusedByNameWhateverTheCaseOfItsExtension)
{
    EXPECT_EQ(m_app.OpenDocumentByName(MakeSound("live.MTS")), nullptr);
    EXPECT_EQ(m_prompts.Messages(), std::vector<std::string>{"Can't open file live.MTS"});
    EXPECT_EQ(m_prompts.Icons(), std::vector<MessageIcon>{MessageIcon::Error});
}

TEST_F(EditorAppTest, OnlyTheLastExtensionCounts)
{
    CDocument* document = m_app.OpenDocumentByName(MakeSound("live.mts.wav"));
    ASSERT_NE(document, nullptr);
    EXPECT_EQ(m_app.Documents(), std::vector<CDocument*>{document});
    EXPECT_EQ(document->Template(), m_app.FindTemplate("Wave Editor"));
}

TEST_F(EditorAppTest, TheTemplatesAreKnownByTheNamesOfTheStringTable)
{
    EXPECT_EQ(m_app.WaveTemplateName(), "Wave Editor");
    EXPECT_EQ(m_app.MultitrackTemplateName(), "Multi Track");
    EXPECT_EQ(m_app.FindTemplate("Multi Track"), nullptr);
}

} // namespace
} // namespace ek
