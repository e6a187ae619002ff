// SPDX-License-Identifier: GPL-3.0-or-later
#include "EkbatchFixture.h"

namespace {

TEST_F(EkbatchTest, InfoTellsWhatIsOpen)
{
    MakeWave("ramp.wav", 20000);
    const RunResult run = Run("-e 'open ramp.wav' -e info");
    EXPECT_EQ(run.Status, 0) << run.Errors;
    for (const char* line : {"/ramp.wav\n", "rate: 8000\n", "channels: 1\n", "bits: 16\n", "frames: 20000\n",
                             "duration: 00:00:02,500\n", "modified: no\n"})
        EXPECT_NE(run.Output.find(line), std::string::npos) << line << run.Output;
    EXPECT_TRUE(TempFolderIsEmpty());
}

TEST_F(EkbatchTest, ASavedSoundIsTheOpenedOneByteForByte)
{
    MakeWave("ramp.wav", 300000);
    EXPECT_EQ(Run("-e 'open ramp.wav' -e 'save copy.flac' -e close -e 'open copy.flac' "
                  "-e 'save copy.wav channels=Mono'")
                  .Status,
              0);
    const std::string original = ReadText(m_folder / "ramp.wav");
    const std::string copy = ReadText(m_folder / "copy.wav");
    ASSERT_GE(copy.size(), 600000U);
    EXPECT_EQ(original.substr(original.size() - 600000), copy.substr(copy.size() - 600000));
    EXPECT_TRUE(TempFolderIsEmpty());
}

TEST_F(EkbatchTest, RealRecordingsSurviveFlacAndBack)
{
    const fs::path recordings = "/usr/share/sounds/alsa";
    if (!fs::is_directory(recordings))
        GTEST_SKIP() << "the recordings of alsa-utils are not installed";
    for (const auto& entry : fs::directory_iterator(recordings)) {
        const std::string name = entry.path().string();
        const RunResult run = Run("-e 'open " + name + "' -e 'save x.flac' -e close -e 'open x.flac' -e 'save x.wav'");
        ASSERT_EQ(run.Status, 0) << name << run.Errors;
        const std::string sound = SoundOf(ReadText(entry.path()));
        EXPECT_GT(sound.size(), 10000U);
        EXPECT_EQ(SoundOf(ReadText(m_folder / "x.wav")), sound) << name;
    }
    EXPECT_TRUE(TempFolderIsEmpty());
}

TEST_F(EkbatchTest, AScriptIsReadWithCommentsAndQuotedNames)
{
    const RunResult run = Run("-", "# a new sound\n\n  new 48000 6   # surround\nsave \"5.1 \\\"mix\\\".wav\" "
                                   "channels=\"5.1 Surround Mode\" subtype=pcm_24\ninfo\n");
    EXPECT_EQ(run.Status, 0) << run.Errors;
    EXPECT_TRUE(fs::exists(m_folder / "5.1 \"mix\".wav"));
    EXPECT_NE(run.Output.find("channels: 6\n"), std::string::npos);
}

TEST_F(EkbatchTest, AFailingCommandEndsTheScriptAndSaysWhere)
{
    std::ofstream(m_folder / "noise.wav") << "this is no sound";
    std::ofstream(m_folder / "job") << "new 8000 1\n\nopen noise.wav\nsave never.wav\n";
    const RunResult run = Run("job");
    EXPECT_EQ(run.Status, 1);
    EXPECT_EQ(run.Errors, "job:3: Can't open file noise.wav\n");
    EXPECT_FALSE(fs::exists(m_folder / "never.wav"));
    EXPECT_TRUE(TempFolderIsEmpty());
}

TEST_F(EkbatchTest, ChannelsThatDoNotFitAreRefusedWithTheUsersText)
{
    const RunResult run = Run("-e 'new 44100 6' -e 'save out.wav channels=Stereo'");
    EXPECT_EQ(run.Status, 1);
    EXPECT_EQ(run.Errors, "-e:2: You can not save file out.wav,\nbecause it is not possible to convert mono/stereo "
                          "files to multichannel and vice versa\n");
    EXPECT_FALSE(fs::exists(m_folder / "out.wav"));
}

TEST_F(EkbatchTest, BadUsageHasAStatusOfItsOwn)
{
    for (const char* arguments :
         {"", "--no-such-option", "missing-script", "-e explode", "-e 'new 8000'", "-e 'new 0 1'", "-e 'new 8000 9'",
          "-e 'open \"unclosed'", "-e 'new 8000 1' -e 'save x.wav oops'"})
        EXPECT_EQ(Run(arguments).Status, 2) << arguments;
    EXPECT_EQ(Run("-e info").Status, 1);
    EXPECT_EQ(Run("-e 'new 8000 1' -e save").Status, 1);
    EXPECT_EQ(Run("-e 'new 8000 1' -e 'save x.wav subtype=nonsense'").Status, 1);
}

TEST_F(EkbatchTest, NamesThatNameNothingAreFailuresAndOddOnesStayOnOneLine)
{
    EXPECT_EQ(Run("-e 'open \"\"'").Status, 1);
    EXPECT_EQ(Run("-e 'new 8000 1' -e 'save \"\"'").Status, 1);
    MakeWave("two\nlines.wav", 10);
    const RunResult odd = Run("-e 'open \"two\nlines.wav\"' -e info");
    EXPECT_EQ(odd.Status, 0) << odd.Errors;
    EXPECT_NE(odd.Output.find("two\\x0Alines.wav\n"), std::string::npos) << odd.Output;
}

TEST_F(EkbatchTest, ANameWithoutExtensionBecomesAWaveAndAnUnknownOneIsRefused)
{
    EXPECT_EQ(Run("-e 'new 8000 1' -e 'save out'").Status, 0);
    EXPECT_TRUE(fs::exists(m_folder / "out.wav"));
    const RunResult run = Run("-e 'new 8000 1' -e 'save out.xyz'");
    EXPECT_EQ(run.Status, 1);
    EXPECT_NE(run.Errors.find("xyz"), std::string::npos) << run.Errors;
    EXPECT_FALSE(fs::exists(m_folder / "out.xyz"));
}

TEST_F(EkbatchTest, SavingAgainRepeatsTheChosenSettings)
{
    MakeWave("ramp.wav", 100);
    const RunResult run = Run("-e 'open ramp.wav' -e 'save a.wav channels=Stereo subtype=pcm_24' -e save -e close "
                              "-e 'open a.wav' -e info");
    EXPECT_NE(run.Output.find("channels: 2\nbits: 24\n"), std::string::npos) << run.Output << run.Errors;
}

TEST_F(EkbatchTest, InfoIsThatOfTheFileThatWasSaved)
{
    const RunResult run = Run("-e 'new 8000 1' -e 'save a.wav subtype=pcm_24' -e info");
    EXPECT_NE(run.Output.find("bits: 24\n"), std::string::npos) << run.Output;
}

TEST_F(EkbatchTest, SettingsOfOneRunDoNotReachTheNext)
{
    MakeWave("ramp.wav", 100);
    EXPECT_EQ(Run("-e 'open ramp.wav' -e 'save a.wav subtype=pcm_24'").Status, 0);
    EXPECT_EQ(Run("-e 'open ramp.wav' -e 'save b.wav'").Status, 0);
    EXPECT_NE(Run("-e 'open a.wav' -e info").Output.find("bits: 24\n"), std::string::npos);
    EXPECT_NE(Run("-e 'open b.wav' -e info").Output.find("bits: 16\n"), std::string::npos);
}

} // namespace
