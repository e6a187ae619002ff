// SPDX-License-Identifier: GPL-3.0-or-later
#include "StoreTest.h"
#include "support/CancelAt.h"
#include "support/FaultyFileCalls.h"

#include <cerrno>
#include <map>

namespace ek {
namespace {

namespace fs = std::filesystem;

constexpr uint64_t PageValues = CWaveData::PageSize / 2;

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
            calls.FailCall(faults + 1, ENOSPC);
            const bool saved = m_store.SaveFile(m_target, true, nullptr);
            const bool failed = calls.HasFailed();
            calls.StopFailing();
            ASSERT_EQ(saved, !failed);
            if (saved)
                break;
            ASSERT_EQ(m_prompts.Messages().size(), told + 1);
            ASSERT_EQ(ReadBytes(m_target), old);
            ASSERT_EQ(m_folder.EntryCount(), 1U);
        }
        EXPECT_GT(faults, 3U);
        ExpectSaved(m_target, model);
    }
}

} // namespace
} // namespace ek
