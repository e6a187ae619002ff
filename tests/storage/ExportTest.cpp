// SPDX-License-Identifier: GPL-3.0-or-later
#include "StoreTest.h"
#include "support/CancelAt.h"
#include "support/FaultyFileCalls.h"

#include <atomic>
#include <cerrno>
#include <cstring>
#include <fcntl.h>
#include <fstream>
#include <map>

namespace ek {
namespace {

namespace fs = std::filesystem;

constexpr uint64_t PageValues = CWaveData::PageSize / 2;

/// Presses Cancel while the n-th portion of sound is written to the new file.
class CancelAtWrite final : public ProgressPresenter, public FileCalls {
public:
    explicit CancelAtWrite(int nth) : m_left(nth), m_installed(*this) { SetProgressPresenter(this); }
    ~CancelAtWrite() { SetProgressPresenter(nullptr); }
    bool IsPressed() const { return m_left <= 0; }

    WorkResult Show(CProgressDlg& progress) override
    {
        m_progress = &progress;
        progress.Begin();
        const WorkResult result = progress.WaitResult();
        m_progress = nullptr;
        progress.End();
        return result;
    }
    ssize_t PWrite(int descriptor, const void* data, size_t length, off_t position) override
    {
        CProgressDlg* const progress = m_progress;
        if (progress && --m_left == 0)
            progress->Cancel();
        return FileCalls::PWrite(descriptor, data, length, position);
    }

private:
    std::atomic<int> m_left;
    std::atomic<CProgressDlg*> m_progress = nullptr;
    ScopedFileCalls m_installed;
};

/// Another process that takes the first name of a new file just before it is created.
class NameTaker final : public FileCalls {
public:
    int Open(const char* path, int flags, mode_t mode) override
    {
        if (Taken.empty() && std::strstr(path, "ekewdm") && (flags & O_CREAT) != 0)
            std::ofstream(Taken = path) << "of another";
        return FileCalls::Open(path, flags, mode);
    }
    fs::path Taken;
};

class ExportTest : public StoreTest {
protected:
    ExportTest() : m_target(m_folder.Path() / "target.wav") {}

    /// A store with a sound of that length, opened from a file that is gone again.
    SoundModel Open(uint32_t channels, uint64_t values)
    {
        SoundModel model{channels, MakeNoise(channels, values)};
        WriteWav(m_folder.Path() / "source.wav", channels, model.Values);
        EXPECT_TRUE(m_store.OpenFile(m_folder.Path() / "source.wav"));
        fs::remove(m_folder.Path() / "source.wav");
        return model;
    }
    void ExpectSaved(const fs::path& path, const SoundModel& model)
    {
        CWaveData saved;
        ASSERT_TRUE(saved.OpenFile(path));
        ExpectSameSound(saved, model);
    }
    static std::function<bool(std::string_view)> SettingOptions(const std::map<std::string, std::string>& options)
    {
        return [options](std::string_view extension) {
            std::string error;
            return EkSetCoderOptions(extension, options, error);
        };
    }

    const fs::path m_target;
    CWaveData m_store;
};

TEST_F(ExportTest, ChangesThatAreStillInMemoryAreSaved)
{
    SoundModel model = Open(2, 3 * PageValues);
    const int16_t frame[] = {123, -123};
    m_store.WriteData(frame, 4000, 4);
    model.Write(1000, frame);
    ASSERT_TRUE(m_store.SaveFile(m_target, true, nullptr));
    ExpectSaved(m_target, model);
    EXPECT_EQ(m_folder.EntryCount(), 1U);
}

TEST_F(ExportTest, ASavedFileTakesThePlaceAndThePermissionsOfTheOldOne)
{
    const SoundModel model = Open(1, 1000);
    WriteWav(m_target, 1, MakeRamp(10));
    fs::permissions(m_target, fs::perms{0640});
    const fs::path link = m_folder.Path() / "link.wav";
    fs::create_symlink("target.wav", link);
    ASSERT_TRUE(m_store.SaveFile(link, true, nullptr));
    EXPECT_TRUE(fs::is_symlink(link));
    EXPECT_EQ(fs::status(m_target).permissions(), fs::perms{0640});
    ExpectSaved(m_target, model);

    fs::remove(m_target); // the link leads nowhere now
    ASSERT_TRUE(m_store.SaveFile(link, true, nullptr));
    ExpectSaved(m_target, model);
    EXPECT_EQ(m_folder.EntryCount(), 2U);
}

TEST_F(ExportTest, ChosenSettingsAreRepeatedByTheNextSave)
{
    Open(1, 1000);
    m_prompts.AnswerSoundFormat(SettingOptions({{"subtype", "pcm_24"}}));
    bool openAfter = true;
    ASSERT_TRUE(m_store.SaveFile(m_target, false, &openAfter));
    EXPECT_FALSE(openAfter);
    EXPECT_EQ(m_prompts.Questions(), std::vector<std::string>{"format wav"});
    EXPECT_EQ(m_store.SourceFormat().wBitsPerSample, 16);
    fs::remove(m_target);

    m_prompts.AnswerSoundFormat(SettingOptions({{"subtype", "pcm_16"}})); // nobody asks
    ASSERT_TRUE(m_store.SaveFile(m_target, true, nullptr));
    StreamInfo info;
    StreamProperties properties;
    ASSERT_TRUE(EkGetStreamInfo(m_target, info, properties));
    EXPECT_EQ(info.BitsPerSample, 24U);
}

TEST_F(ExportTest, TheFormatQuestionEndsTheSaveWhenItIsCancelled)
{
    Open(2, 1000);
    EXPECT_FALSE(m_store.SaveFile(m_target, false, nullptr));
    EXPECT_TRUE(m_prompts.Messages().empty());
    EXPECT_EQ(m_folder.EntryCount(), 0U);
}

TEST_F(ExportTest, ALayoutThatDoesNotFitIsToldAndAskedAgain)
{
    SoundModel model = Open(6, 6000);
    m_prompts.AnswerSoundFormat(SettingOptions({{"channels", "Stereo"}}));
    m_prompts.AnswerSoundFormat(SettingOptions({{"channels", "5.1 Surround Mode"}}));
    ASSERT_TRUE(m_store.SaveFile(m_target, false, nullptr));
    EXPECT_EQ(m_prompts.Messages(),
              std::vector<std::string>{"You can not save file target.wav,\nbecause it is not possible to convert "
                                       "mono/stereo files to multichannel and vice versa"});
    ExpectSaved(m_target, model);
    fs::remove(m_target);

    model = Open(1, 1000);
    m_prompts.AnswerSoundFormat(true); // the layout that fits was set before the question
    ASSERT_TRUE(m_store.SaveFile(m_target, false, nullptr));
    ExpectSaved(m_target, model);
    m_prompts.AnswerSoundFormat(SettingOptions({{"channels", "Stereo"}}));
    ASSERT_TRUE(m_store.SaveFile(m_target, false, nullptr));
    EXPECT_EQ(m_prompts.Messages().size(), 1U);
}

TEST_F(ExportTest, ATargetThatCannotBeReplacedIsToldAtOnce)
{
    Open(1, 1000);
    EXPECT_FALSE(m_store.SaveFile(m_folder.Path() / "missing" / "target.wav", true, nullptr));
    fs::create_directory(m_folder.Path() / "folder.wav");
    EXPECT_FALSE(m_store.SaveFile(m_folder.Path() / "folder.wav", true, nullptr));
    WriteWav(m_target, 1, MakeRamp(10));
    const std::vector<char> old = ReadBytes(m_target);
    {
        FaultyFileCalls calls("target.wav", FaultyFileCalls::Opens);
        calls.FailFrom(1, EACCES);
        EXPECT_FALSE(m_store.SaveFile(m_target, true, nullptr));
    }
    EXPECT_EQ(m_prompts.Messages(), std::vector<std::string>(3, "Can't create file"));
    EXPECT_EQ(ReadBytes(m_target), old);
    EXPECT_EQ(m_folder.EntryCount(), 2U);
}

TEST_F(ExportTest, ACancelledSaveLeavesTheOldFileAndNothingElse)
{
    Open(2, 3 * PageValues);
    WriteWav(m_target, 2, MakeRamp(10));
    const std::vector<char> old = ReadBytes(m_target);
    {
        CancelAt cancel("ekewdm", 1, CancelAt::Call::Sync); // when all of the sound has been written
        EXPECT_FALSE(m_store.SaveFile(m_target, true, nullptr));
        EXPECT_EQ(cancel.Captions(), std::vector<std::string>{"Saving: target.wav"});
    }
    EXPECT_EQ(ReadBytes(m_target), old);
    EXPECT_EQ(m_folder.EntryCount(), 1U);
    EXPECT_TRUE(m_prompts.Messages().empty());
}

TEST_F(ExportTest, ASaveIsCancelledAtAnyPortion)
{
    const SoundModel model = Open(2, 3 * PageValues);
    WriteWav(m_target, 2, MakeRamp(10));
    const std::vector<char> old = ReadBytes(m_target);
    for (int nth = 1;; nth *= 2) {
        const CancelAtWrite cancel(nth);
        if (m_store.SaveFile(m_target, true, nullptr)) {
            EXPECT_FALSE(cancel.IsPressed());
            EXPECT_GT(nth, 2);
            break;
        }
        ASSERT_TRUE(cancel.IsPressed());
        ASSERT_EQ(ReadBytes(m_target), old);
        ASSERT_EQ(m_folder.EntryCount(), 1U);
    }
    ExpectSaved(m_target, model);
    EXPECT_TRUE(m_prompts.Messages().empty());
}

TEST_F(ExportTest, ANameThatAnotherProcessTakesIsLeftToIt)
{
    const SoundModel model = Open(1, 1000);
    {
        NameTaker taker;
        const ScopedFileCalls installed(taker);
        ASSERT_TRUE(m_store.SaveFile(m_target, true, nullptr));
        EXPECT_EQ(ReadBytes(taker.Taken).size(), 10U);
    }
    ExpectSaved(m_target, model);
    EXPECT_EQ(m_folder.EntryCount(), 2U);
}

TEST_F(ExportTest, AFolderThatCannotBeSyncedIsLoggedAndTheSoundIsSaved)
{
    const SoundModel model = Open(1, 1000);
    FaultyFileCalls calls(m_folder.Path().string(), FaultyFileCalls::Syncs);
    ASSERT_TRUE(m_store.SaveFile(m_target, true, nullptr));
    LoggedTexts();
    calls.FailCall(calls.CallCount(), EIO);
    EXPECT_TRUE(m_store.SaveFile(m_target, true, nullptr));
    EXPECT_TRUE(calls.HasFailed());
    EXPECT_EQ(LoggedTexts(),
              std::vector<std::string>{"Error: Failed to sync the folder of \"" + m_target.string() + "\"."});
    ExpectSaved(m_target, model);
    EXPECT_TRUE(m_prompts.Messages().empty());
}

TEST_F(ExportTest, AFaultAtAnyFileCallLeavesTheOldFileAndIsTold)
{
    FaultyFileCalls calls(".eke"); // of the new file and of the store
    for (const uint64_t values : {uint64_t{0}, 2 * PageValues}) {
        const SoundModel model = Open(2, values);
        WriteWav(m_target, 2, MakeRamp(10));
        const std::vector<char> old = ReadBytes(m_target);
        uint64_t faults = 0;
        for (;; ++faults) {
            SCOPED_TRACE(testing::Message() << values << " values, fault " << faults + 1);
            const size_t told = m_prompts.Messages().size();
            calls.FailCall(faults + 1, EIO);
            const bool saved = m_store.SaveFile(m_target, true, nullptr);
            const bool failed = calls.HasFailed();
            calls.StopFailing();
            ASSERT_EQ(m_prompts.Messages().size(), saved ? told : told + 1);
            ASSERT_EQ(m_folder.EntryCount(), 1U);
            if (saved) {
                ExpectSaved(m_target, model);
                if (!failed)
                    break;
                WriteWav(m_target, 2, MakeRamp(10)); // the fault did no harm: of closing what was only read
            }
            ASSERT_TRUE(failed);
            ASSERT_EQ(ReadBytes(m_target), old);
        }
        EXPECT_GT(faults, 3U);
    }
}

} // namespace
} // namespace ek
