// SPDX-License-Identifier: GPL-3.0-or-later
#include "StoreTest.h"
#include "support/CancelAt.h"
#include "support/FaultyFileCalls.h"

#include <cerrno>
#include <fstream>

namespace ek {
namespace {

constexpr uint64_t PageValues = CWaveData::PageSize / 2;

class ImportTest : public StoreTest {
protected:
    ImportTest() : m_path(m_folder.Path() / "sound.wav") {}

    SoundModel MakeFile(uint32_t channels, uint64_t values)
    {
        SoundModel model{channels, MakeNoise(channels, values)};
        WriteWav(m_path, channels, model.Values);
        return model;
    }

    const std::filesystem::path m_path;
    CWaveData m_store;
};

TEST_F(ImportTest, ASoundOfWholePagesEndsWithAnEmptyFile)
{
    const SoundModel model = MakeFile(2, 2 * PageValues);
    ASSERT_TRUE(m_store.OpenFile(m_path));
    ExpectSameSound(m_store, model);
    ExpectSamePeaks(m_store, model);
    EXPECT_EQ(m_store.Peaks().ByteSize(), 2 * PageValues / 2 / 256 * 4 + 4U);
    ASSERT_EQ(m_store.TempFiles().size(), 3U);
    EXPECT_EQ(m_store.TempFiles().back().Length, 0U);
    const std::string name = m_path.string();
    EXPECT_EQ(LoggedTexts(),
              (std::vector<std::string>{"Starting open file \"" + name + "\".", "Finished open file \"" + name + "\".",
                                        "Creating cache256 for file \"" + name + "\"."}));
}

TEST_F(ImportTest, EveryChannelCountIsReadToTheSample)
{
    for (uint32_t channels : {1, 3, 5, 7, 8}) {
        const SoundModel model = MakeFile(channels, (PageValues + 5000) / channels * channels);
        ASSERT_TRUE(m_store.OpenFile(m_path));
        EXPECT_EQ(m_store.TempFiles().size(), 2U);
        ExpectSameSound(m_store, model);
        ExpectSamePeaks(m_store, model);
    }
}

TEST_F(ImportTest, AnEightBitSourceIsStoredAsSixteenBit)
{
    const std::vector<uint8_t> values = {0, 128, 255, 127};
    WriteWav8(m_path, 2, values);
    ASSERT_TRUE(m_store.OpenFile(m_path));
    WAVEFORMATEXTENSIBLE wide = m_store.SourceFormat();
    EXPECT_EQ(wide.wBitsPerSample, 8);
    EXPECT_EQ(wide.nBlockAlign, 2);
    wide.wBitsPerSample = 16;
    wide.nBlockAlign = 4;
    wide.nAvgBytesPerSec *= 2;
    wide.cbSize = 0;
    EXPECT_EQ(m_store.WorkingFormat(), wide);
    EXPECT_EQ(ReadAll(m_store), (std::vector<int16_t>{-32768, 0, 127 * 256, -256}));
    EXPECT_TRUE(m_store.SaveFile(m_folder.Path() / "copy.wav", true, nullptr));
}

TEST_F(ImportTest, AWantedFormatConvertsAndTheSourcesOwnDoesNot)
{
    MakeFile(2, 20000);
    FaultyFileCalls calls("sound.wav", FaultyFileCalls::Opens);
    ASSERT_TRUE(m_store.OpenFile(m_path));
    const uint64_t opens = calls.CallCount();
    const WAVEFORMATEXTENSIBLE own = m_store.SourceFormat();
    ASSERT_TRUE(m_store.OpenFileAs(m_path, own));
    EXPECT_EQ(calls.CallCount(), 2 * opens);

    ASSERT_TRUE(m_store.OpenFileAs(m_path, MakePcm16Format(22050, 1)));
    EXPECT_EQ(calls.CallCount(), 3 * opens + 1);
    EXPECT_EQ(m_store.SourceFormat(), own);
    EXPECT_EQ(m_store.BlockAlign(), 2U);
    EXPECT_NEAR(static_cast<double>(m_store.FrameCount()), 5000, 2);
}

TEST_F(ImportTest, AMissingFileOrAFolderLeavesTheStoreAndTellsTheLogOnly)
{
    const SoundModel model = MakeFile(1, 300);
    ASSERT_TRUE(m_store.OpenFile(m_path));
    LoggedTexts();
    EXPECT_FALSE(m_store.OpenFile(m_folder.Path()));
    EXPECT_FALSE(m_store.OpenFile("/no/such/file.wav"));
    EXPECT_EQ(LoggedTexts().back(), "Error: File \"/no/such/file.wav\" does not exist!");
    EXPECT_TRUE(m_prompts.Messages().empty());
    ExpectSameSound(m_store, model);
}

TEST_F(ImportTest, AFileThatIsNoSoundTellsTheUserAndLeavesTheStoreEmpty)
{
    std::ofstream(m_path) << "this is no sound";
    EXPECT_FALSE(m_store.OpenFile(m_path));
    EXPECT_EQ(m_prompts.Messages(), std::vector<std::string>{"Can't open file sound.wav"});
    EXPECT_EQ(m_prompts.Icons().back(), MessageIcon::Error);
    EXPECT_EQ(LoggedTexts().back(), "Error: Failed to get track information of \"" + m_path.string() + "\".");
    EXPECT_EQ(m_store.FrameCount(), 0U);
    EXPECT_TRUE(m_store.Peaks().IsEmpty());
}

TEST_F(ImportTest, ASoundWithoutFramesIsAnEmptyStore)
{
    MakeFile(2, 0);
    ASSERT_TRUE(m_store.OpenFile(m_path));
    EXPECT_EQ(m_store.FrameCount(), 0U);
    EXPECT_EQ(m_store.TempFiles().size(), 1U);
    EXPECT_TRUE(m_store.Peaks().IsEmpty());
}

TEST_F(ImportTest, ACancelledImportKeepsWhatWasReadWithItsPeaks)
{
    SoundModel model = MakeFile(2, 5 * PageValues);
    for (int page : {1, 3}) {
        {
            CancelAt cancel("ekesb", page);
            EXPECT_FALSE(m_store.OpenFile(m_path));
            EXPECT_EQ(cancel.Captions(), std::vector<std::string>{"Opening: sound.wav"});
        }
        EXPECT_EQ(m_store.TempFiles().size(), static_cast<size_t>(page));
        SoundModel read{2, {model.Values.begin(), model.Values.begin() + static_cast<ptrdiff_t>(page * PageValues)}};
        ExpectSameSound(m_store, read);
        ExpectSamePeaks(m_store, read);
        EXPECT_EQ(m_store.Peaks().ByteSize(), static_cast<size_t>(page) * PageValues / 2 / 256 * 4 + 4);
    }
    EXPECT_TRUE(m_prompts.Messages().empty());
}

TEST_F(ImportTest, AReadErrorInTheMiddleIsNotTakenForTheEnd)
{
    MakeFile(2, 3 * PageValues);
    FaultyFileCalls calls("sound.wav", FaultyFileCalls::Reads);
    ASSERT_TRUE(m_store.OpenFile(m_path));
    const uint64_t reads = calls.CallCount();
    calls.FailCall(reads - 1, EIO);
    EXPECT_FALSE(m_store.OpenFile(m_path));
    EXPECT_TRUE(calls.HasFailed());
    EXPECT_EQ(m_prompts.Messages(), std::vector<std::string>{"Can't open file sound.wav"});
    EXPECT_EQ(m_store.FrameCount(), 0U);
    EXPECT_EQ(m_folder.TempFileCount(), 0U);
}

TEST_F(ImportTest, AFaultAtAnyTemporaryFileIsToldAndLeavesNothing)
{
    const SoundModel model = MakeFile(2, 3 * PageValues + 10);
    FaultyFileCalls calls("ekesb", FaultyFileCalls::Opens | FaultyFileCalls::Writes);
    for (uint64_t nth = 1;; ++nth) {
        calls.FailFrom(nth, nth % 2 != 0 ? EMFILE : ENOSPC);
        const bool opened = m_store.OpenFile(m_path);
        const bool failed = calls.HasFailed();
        calls.StopFailing();
        ASSERT_EQ(opened, !failed);
        if (opened)
            break;
        EXPECT_EQ(m_prompts.Messages().size(), nth);
        const std::string text = LoggedTexts().back();
        EXPECT_TRUE(text.starts_with(nth % 2 != 0 ? "Error: Failed to create temporary file \""
                                                  : "Error: Failed to write to the temporary file \""))
            << text;
        EXPECT_EQ(m_store.FrameCount(), 0U);
        EXPECT_EQ(m_folder.TempFileCount(), 0U);
        EXPECT_EQ(calls.OpenDescriptors(), 0);
    }
    ExpectSameSound(m_store, model);
}

} // namespace
} // namespace ek
