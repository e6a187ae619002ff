// SPDX-License-Identifier: GPL-3.0-or-later
#include "waveedit/WEDoc.h"
#include "framework/DocumentSite.h"
#include "platform/Text.h"
#include "support/FaultyFileCalls.h"
#include "support/ScriptedPrompts.h"
#include "support/TestFolder.h"
#include "waveedit/SoundBlock.h"

#include <gtest/gtest.h>

#include <cerrno>
#include <fstream>
#include <functional>

namespace ek {
namespace {

class RecordingSite : public DocumentSite {
public:
    RecordingSite() { SetDocumentSite(this); }
    ~RecordingSite() { SetDocumentSite(nullptr); }
    void AddRecentFile(const std::filesystem::path& path) override { Recent.push_back(path); }
    void RefreshMenu() override { ++MenuRefreshes; }
    void FocusView(CDocument&) override { ++Focused; }
    void ReopenAs(CDocument&, const std::filesystem::path& path) override { Reopened = path; }

    std::vector<std::filesystem::path> Recent;
    int MenuRefreshes = 0;
    int Focused = 0;
    std::filesystem::path Reopened;
};

class WEDocTest : public testing::Test {
protected:
    /// A new document of `frames` frames of stereo ramp, modified.
    void Fill(CWEDoc& document, uint64_t frames)
    {
        CSoundBlock block;
        ASSERT_TRUE(block.Create(frames, MakePcm16Format(44100, 2), nullptr, ChannelAll));
        auto* samples = reinterpret_cast<int16_t*>(block.Data);
        for (uint64_t i = 0; i < frames * 2; ++i)
            samples[i] = static_cast<int16_t>(i * 3);
        ASSERT_TRUE(document.NewFromBlock(block));
    }

    TestFolder m_folder;
    ScriptedPrompts m_prompts;
    RecordingSite m_site;
};

TEST_F(WEDocTest, PositionsAreTimesOfTheSourceRate)
{
    CWEDoc document;
    EXPECT_EQ(document.FormatPosition(1), "");
    ASSERT_TRUE(document.SetFormat(MakePcm16Format(44100, 1), nullptr));
    EXPECT_EQ(document.FormatPosition(0), "00:00:00,000");
    EXPECT_EQ(document.FormatPosition(44099), "00:00:00,999");
    EXPECT_EQ(document.FormatPosition(44100ULL * 3661 + 22050), "01:01:01,500");
    EXPECT_EQ(document.FormatPosition(44100ULL * 3600 * 100), "100:00:00,000");
}

TEST_F(WEDocTest, ASoundSavedAsAndOpenedAgainIsTheSame)
{
    CWEDoc document;
    Fill(document, 10000);
    EXPECT_TRUE(document.IsModified());
    const auto path = m_folder.Path() / "sound.wav";
    m_prompts.AnswerSave(path);
    m_prompts.AnswerSoundFormat(true);
    ASSERT_TRUE(document.SaveAs());
    EXPECT_FALSE(document.IsModified());
    EXPECT_EQ(document.Path(), path);
    EXPECT_EQ(document.DisplayName(), "sound.wav");
    EXPECT_EQ(m_site.Recent, std::vector{path});
    EXPECT_EQ(m_site.MenuRefreshes, 1);

    CWEDoc reopened;
    ASSERT_TRUE(reopened.OnOpenDocument(path));
    EXPECT_TRUE(reopened.IsReady());
    EXPECT_FALSE(reopened.IsModified());
    ASSERT_EQ(reopened.FrameCount(), 10000U);
    EXPECT_EQ(reopened.VisibleChannelCount, 2U);
    EXPECT_EQ(reopened.Store().SampleAt(19999), static_cast<int16_t>(19999 * 3));
}

TEST_F(WEDocTest, AFailedOrCancelledSaveAsLeavesThePathAndTheModifiedFlag)
{
    CWEDoc document;
    Fill(document, 10);
    EXPECT_FALSE(document.SaveAs()); // no answer: cancelled
    m_prompts.AnswerSave(m_folder.Path() / "no-such-folder" / "sound.wav");
    m_prompts.AnswerSoundFormat(true);
    EXPECT_FALSE(document.SaveAs());
    EXPECT_EQ(m_prompts.Messages(), std::vector<std::string>{"Can't create file"});
    EXPECT_TRUE(document.Path().empty());
    EXPECT_TRUE(document.IsModified());
}

TEST_F(WEDocTest, ClosingAModifiedSoundAsksAndCancelKeepsItOpen)
{
    CWEDoc document;
    Fill(document, 10);
    m_prompts.AnswerMessage(MessageAnswer::Cancel);
    EXPECT_FALSE(document.SaveModified());
    m_prompts.AnswerMessage(MessageAnswer::No);
    EXPECT_TRUE(document.SaveModified());
    m_prompts.AnswerMessage(MessageAnswer::Yes); // leads to the file dialog, which is cancelled
    EXPECT_FALSE(document.SaveModified());
    EXPECT_EQ(m_prompts.Messages(), std::vector<std::string>(3, "Save changes to Untitled?"));
    document.SetModified(false);
    EXPECT_TRUE(document.SaveModified());
    EXPECT_EQ(m_prompts.Messages().size(), 3U);
}

TEST_F(WEDocTest, AFileThatIsNoSoundLeavesTheDocumentNotReady)
{
    const auto path = m_folder.Path() / "text.wav";
    std::ofstream(path) << "no sound at all";
    CWEDoc document;
    EXPECT_FALSE(document.OnOpenDocument(path));
    EXPECT_FALSE(document.IsReady());
    EXPECT_EQ(m_prompts.Messages(), std::vector<std::string>{"Can't open file text.wav"});
    EXPECT_FALSE(document.OnOpenDocument(m_folder.Path() / "missing.wav"));
    EXPECT_EQ(m_prompts.Messages().size(), 1U);
}

TEST_F(WEDocTest, OpeningAfterSavingReplacesTheDocumentUnlessItIsClosing)
{
    CWEDoc document;
    Fill(document, 10);
    const std::function<bool(std::string_view)> openAfter = [](std::string_view extension) {
        std::string error;
        return EkSetCoderOptions(extension, {{"openafter", "1"}}, error);
    };
    m_prompts.AnswerMessage(MessageAnswer::Yes);
    m_prompts.AnswerSave(m_folder.Path() / "closing.wav");
    m_prompts.AnswerSoundFormat(openAfter);
    EXPECT_TRUE(document.SaveModified());
    EXPECT_TRUE(m_site.Reopened.empty());
    EXPECT_EQ(m_site.Focused, 1);
    m_prompts.AnswerSave(m_folder.Path() / "staying.wav");
    m_prompts.AnswerSoundFormat(openAfter);
    EXPECT_TRUE(document.SaveAs());
    EXPECT_EQ(m_site.Reopened, m_folder.Path() / "staying.wav");
    EXPECT_EQ(m_site.Focused, 1);
}

TEST_F(WEDocTest, ASoundThatDoesNotArriveLeavesADocumentThatIsNotReady)
{
    CWEDoc document;
    Fill(document, 1000);
    CWEDoc source;
    Fill(source, 1000);
    FaultyFileCalls calls;
    calls.FailFrom(1, ENOSPC);
    EXPECT_FALSE(document.OpenFromStore(source.Store()));
    EXPECT_FALSE(document.IsReady());
    EXPECT_EQ(document.FrameCount(), 0U);
    calls.StopFailing();
    EXPECT_FALSE(document.SetFormat(MakePcm16Format(44100, 9), nullptr));
    EXPECT_FALSE(document.IsReady());
}

class OneClip : public ClipRegistry {
public:
    OneClip() { SetClipRegistry(this); }
    ~OneClip() { SetClipRegistry(nullptr); }
    bool ReturnEditedClip(const EditKey& key, CWaveData& sound) override
    {
        Returned = sound.FrameCount();
        return Takes && key == Key;
    }
    void OnEditorGone(const EditKey&) override { ++EditorsGone; }

    EditKey Key{1, 2, 3};
    bool Takes = true;
    uint64_t Returned = 0;
    int EditorsGone = 0;
};

TEST_F(WEDocTest, ADocumentOfAClipSavesIntoTheClip)
{
    OneClip clip;
    {
        CWEDoc original;
        Fill(original, 500);
        CWEDoc document;
        ASSERT_TRUE(document.OpenFromStore(original.Store()));
        document.SetEditKey(clip.Key);
        document.SetModified(true);
        clip.Takes = false;
        EXPECT_FALSE(document.DoSave());
        EXPECT_TRUE(document.IsModified());
        clip.Takes = true;
        EXPECT_TRUE(document.DoSave());
        EXPECT_FALSE(document.IsModified());
    }
    EXPECT_EQ(clip.Returned, 500U);
    EXPECT_EQ(clip.EditorsGone, 1);
    EXPECT_TRUE(m_site.Recent.empty());
}

TEST_F(WEDocTest, AnEightBitBlockBecomesASixteenBitSound)
{
    WAVEFORMATEXTENSIBLE format = MakePcm16Format(8000, 1);
    format.wBitsPerSample = format.wValidBitsPerSample = 8;
    format.nBlockAlign = 1;
    format.nAvgBytesPerSec = 8000;
    const uint8_t bytes[] = {0, 128, 255};
    CSoundBlock block;
    ASSERT_TRUE(block.Create(3, format, bytes, ChannelAll));
    CWEDoc document;
    ASSERT_TRUE(document.NewFromBlock(block));
    ASSERT_EQ(document.FrameCount(), 3U);
    EXPECT_EQ(document.Store().SampleAt(0), -32768);
    EXPECT_EQ(document.Store().SampleAt(1), 0);
    EXPECT_EQ(document.Store().SampleAt(2), 127 * 256);
    EXPECT_EQ(document.Store().Peaks().Entries(0)[0], (PeakPair{-32768, 127 * 256}));
}

TEST(SoundBlock, ItsFileLivesAndDiesWithIt)
{
    std::filesystem::path file;
    {
        CSoundBlock block;
        ASSERT_TRUE(block.Create(0, MakePcm16Format(44100, 2), nullptr, ChannelAll));
        EXPECT_EQ(block.FrameCount, 0U);
        EXPECT_NE(block.Data, nullptr);
        ASSERT_TRUE(block.Create(100, MakePcm16Format(44100, 2), nullptr, ChannelAll));
        EXPECT_EQ(block.FrameAt(99)[3], 0);
        file = block.FileName();
        EXPECT_TRUE(std::filesystem::exists(file));
    }
    EXPECT_FALSE(std::filesystem::exists(file));
}

TEST(SoundBlock, AFullDiskIsAFailedCreateThatLeavesNoFile)
{
    TestFolder folder;
    FaultyFileCalls disk({}, FaultyFileCalls::Allocations);
    disk.FailFrom(1, ENOSPC);
    CSoundBlock block;
    EXPECT_FALSE(block.Create(1000, MakePcm16Format(44100, 2), nullptr, ChannelAll));
    EXPECT_EQ(block.Data, nullptr);
    EXPECT_EQ(folder.TempFileCount(), 0U);
}

} // namespace
} // namespace ek
