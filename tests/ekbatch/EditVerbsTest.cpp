// SPDX-License-Identifier: GPL-3.0-or-later
#include "EkbatchFixture.h"

#include <sys/stat.h>

#include <thread>

namespace {

/// Commands on the sounds that the test has made.
class EditVerbsTest : public EkbatchTest {
protected:
    RunResult RunScript(const std::string& script) { return Run("-", script); }

    /// The bytes of the sound that the script makes of "ramp.wav", 8000 mono frames a second.
    std::string Edited(const std::string& script)
    {
        const RunResult run = RunScript("open ramp.wav\n" + script + "\nsave out.wav channels=Mono\n");
        EXPECT_EQ(run.Status, 0) << script << "\n" << run.Errors;
        return SoundOf(ReadText(m_folder / "out.wav"));
    }
    std::string Ramp(uint32_t start, uint32_t end) { return Sound().substr(start * 2, (end - start) * 2); }
    std::string Sound() { return SoundOf(ReadText(m_folder / "ramp.wav")); }

    /// The line of that key in the last info.
    static std::string Value(const std::string& output, const std::string& key)
    {
        const size_t line = output.rfind("\n" + key + ": ");
        return line == std::string::npos
                   ? ""
                   : output.substr(line + 3 + key.size(), output.find('\n', line + 1) - line - 3 - key.size());
    }
};

TEST_F(EditVerbsTest, EveryFormOfATimeNamesItsFrame)
{
    MakeWave("ramp.wav", 20000);
    struct Case {
        const char* Time;
        const char* Frame;
    };
    for (const Case& c : {Case{"0", "0f"}, Case{"1.5", "12000f"}, Case{"0.00007", "1f"}, Case{"0:00:01,500", "12000f"},
                          Case{"00:00:02", "16000f"}, Case{"19999f", "19999f"}, Case{"end", "20000f"}}) {
        const RunResult run = RunScript(std::string("open ramp.wav\ncursor ") + c.Time + "\ninfo\n");
        EXPECT_EQ(Value(run.Output, "cursor"), c.Frame) << c.Time << run.Errors;
    }
    for (const char* time : {"2.6", "20001f", "0:00:03", "999999999999"})
        EXPECT_EQ(RunScript(std::string("open ramp.wav\ncursor ") + time).Status, 1) << time;
    for (const char* time : {"x", "-1", "1e3", "nan", "inf", "1.5f", "f", "0:61:00", "0:1", "0:00:01,5", "1.2.3",
                             "18446744073709551616f", "\"\""})
        EXPECT_EQ(RunScript(std::string("open ramp.wav\ncursor ") + time).Status, 2) << time;
}

TEST_F(EditVerbsTest, EachEditChangesTheSoundAsItSays)
{
    MakeWave("ramp.wav", 8000);
    EXPECT_EQ(Edited("select 100f 300f\ndelete"), Ramp(0, 100) + Ramp(300, 8000));
    EXPECT_EQ(Edited("select 100f 300f\ncut\ncursor end\npaste"), Ramp(0, 100) + Ramp(300, 8000) + Ramp(100, 300));
    EXPECT_EQ(Edited("select 100f 300f\ncopy\nselect 0 1f\npaste"), Ramp(100, 300) + Ramp(1, 8000));
    EXPECT_EQ(Edited("select 0 100f\ncopy\ncursor 0\npaste-mix\nundo"), Sound());
    EXPECT_EQ(Edited("select 7000f end\ndelete\nselect 0 100f\ndelete\nundo 2"), Sound());
    EXPECT_EQ(Edited("select 7000f end\ndelete\nselect 0 100f\ndelete\nundo 2\nredo"), Ramp(0, 7000));
    EXPECT_EQ(Edited("select all\ndelete\nselect all\nundo"), Sound());
    EXPECT_TRUE(TempFolderIsEmpty());
}

TEST_F(EditVerbsTest, SelectionAndCursorStandWhereTheEditWas)
{
    MakeWave("ramp.wav", 8000);
    struct Case {
        const char* Script;
        const char* Selection;
        const char* Cursor;
    };
    for (const Case& c :
         {Case{"", "none", "none"}, Case{"select 100f 300f left", "100f 300f left", "300f"},
          Case{"select all", "0f 8000f all", "8000f"}, Case{"select 100f 300f\ncursor 5f", "none", "5f"},
          Case{"select 100f 300f\ndelete", "none", "100f"},
          Case{"select 100f 300f\ncut\npaste\n", "100f 300f all", "100f"},
          Case{"select 100f 300f\ncopy\ncursor end\npaste-mix\n", "8000f 8200f all", "8000f"},
          Case{"select 100f 300f\ndelete\ncursor 0\nundo\n", "100f 300f all", "100f"},
          Case{"select 100f 300f\ndelete\nundo\ncursor 0\nredo\n", "none", "100f"}}) {
        const RunResult run = RunScript(std::string("open ramp.wav\n") + c.Script + "\ninfo\n");
        EXPECT_EQ(Value(run.Output, "selection"), c.Selection) << c.Script << run.Errors;
        EXPECT_EQ(Value(run.Output, "cursor"), c.Cursor) << c.Script;
    }
}

TEST_F(EditVerbsTest, OneChannelIsEditedAlone)
{
    MakeWave("ramp.wav", 8000);
    const RunResult run = RunScript("open ramp.wav\nselect all\ncopy\nnew 8000 2\npaste\nselect 1000f 2000f right\n"
                                    "delete\ninfo\nsave stereo.wav\n");
    EXPECT_EQ(Value(run.Output, "selection"), "1000f 2000f right") << run.Errors;
    const std::string stereo = SoundOf(ReadText(m_folder / "stereo.wav"));
    ASSERT_EQ(stereo.size(), 32000U);
    for (uint32_t i = 0; i < 8000; ++i) {
        EXPECT_EQ(stereo.substr(i * 4, 2), Ramp(i, i + 1));
        EXPECT_EQ(stereo.substr(i * 4 + 2, 2), i >= 1000 && i < 2000 ? U16(0) : Ramp(i, i + 1));
    }
}

TEST_F(EditVerbsTest, WhatCannotBeDoneIsRefusedWithAClearText)
{
    MakeWave("ramp.wav", 8000);
    struct Case {
        const char* Script;
        const char* Text;
    };
    for (const Case& c :
         {Case{"copy", "nothing is selected"}, Case{"paste", "nothing was copied"},
          Case{"undo", "there are 0 edits to undo"}, Case{"redo 2", "there are 0 edits to redo"},
          Case{"select 2f 1f", "2f lies after 1f"}, Case{"select 0 1f lfe", "the sound has no channel lfe"},
          Case{"select 0 2", "2 lies beyond the end of the sound, 00:00:01,000"},
          Case{"activate 2", "there is no sound 2, 1 are open"}, Case{"activate 0", "there is no sound 0, 1 are open"},
          Case{"play none/x.wav", "Can't start playing.\nCan't write none/x.wav: "},
          Case{"play \"\"", "there is no file \"\" to play into"}}) {
        const RunResult run = RunScript(std::string("open ramp.wav\n") + c.Script + "\n");
        EXPECT_EQ(run.Status, 1) << c.Script;
        EXPECT_EQ(run.Errors.rfind(std::string("-:2: ") + c.Text, 0), 0U) << run.Errors;
    }
    for (const char* script : {"select", "select 1f", "select 0 1f left more", "select all left more", "select 0 1f up",
                               "activate x", "undo x", "cut 1", "cursor"})
        EXPECT_EQ(RunScript(std::string("open ramp.wav\n") + script).Status, 2) << script;
    for (const char* script : {"select all", "cursor 0", "paste", "undo", "play", "activate 1"})
        EXPECT_EQ(RunScript(script).Status, 1) << script;
}

TEST_F(EditVerbsTest, SoundsAreCountedInTheOrderOfTheirOpening)
{
    MakeWave("ramp.wav", 8000);
    const RunResult run =
        RunScript("open ramp.wav\nnew 8000 1\nnew 8000 2\nactivate 1\nselect 0 10f\ncopy\nactivate 2\n"
                  "paste\ninfo\nactivate 1\nclose\ninfo\nactivate 2\ninfo\nclose\ninfo\n");
    EXPECT_EQ(run.Status, 0) << run.Errors;
    std::string frames;
    for (size_t at = 0; (at = run.Output.find("\nframes: ", at)) != std::string::npos; ++at)
        frames += run.Output.substr(at + 9, run.Output.find('\n', at + 1) - at - 9) + " ";
    EXPECT_EQ(frames, "10 10 0 10 ");
}

TEST_F(EditVerbsTest, WhatIsPlayedIntoAFileIsTheSelectionOrAll)
{
    MakeWave("ramp.wav", 8000);
    EXPECT_EQ(RunScript("open ramp.wav\ncursor 100f\nplay a.wav\nselect 100f 2000f\nplay b.wav\n").Status, 0);
    EXPECT_EQ(SoundOf(ReadText(m_folder / "a.wav")), Sound());
    EXPECT_EQ(SoundOf(ReadText(m_folder / "b.wav")), Ramp(100, 2000));
    const RunResult empty = RunScript("new 8000 1\nplay a.wav\n");
    EXPECT_EQ(empty.Errors, "-:2: the sound is empty\n");
    EXPECT_EQ(SoundOf(ReadText(m_folder / "a.wav")), Sound()) << "what stood there stands";
}

/// The output of the script is more than a pipe holds, so it waits before the last command until somebody reads.
TEST_F(EditVerbsTest, ASoundThatCannotBeReadToItsEndTakesNothingsPlace)
{
    MakeWave("ramp.wav", 400000);
    MakeWave("a.wav", 10);
    const std::string before = ReadText(m_folder / "a.wav");
    ASSERT_EQ(mkfifo((m_folder / "stdout").c_str(), 0600), 0);
    std::thread reader([this] {
        std::ifstream pipe(m_folder / "stdout");
        std::string line;
        std::getline(pipe, line);
        for (const auto& file : fs::directory_iterator(m_folder / "tmp"))
            fs::resize_file(file, fs::file_size(file) / 2);
        while (std::getline(pipe, line)) {
        }
        fs::remove(m_folder / "stdout");
    });
    std::string script = "open ramp.wav\n";
    for (int i = 0; i < 2000; ++i)
        script += "info\n";
    const RunResult run = RunScript(script + "play a.wav\n");
    reader.join();
    EXPECT_EQ(run.Status, 1);
    EXPECT_NE(run.Errors.find("Can't read the sound."), std::string::npos) << run.Errors;
    EXPECT_EQ(ReadText(m_folder / "a.wav"), before);
    for (const auto& file : fs::directory_iterator(m_folder))
        EXPECT_EQ(file.path().filename().string().find("ekplay"), std::string::npos) << file.path();
}

TEST_F(EditVerbsTest, WithoutASoundDeviceItIsSaidThatNothingIsHeard)
{
    if (fs::exists("/dev/snd"))
        GTEST_SKIP() << "this machine has a sound card";
    MakeWave("ramp.wav", 800);
    const RunResult run = RunScript("open ramp.wav\nplay\n");
    EXPECT_EQ(run.Status, 0) << run.Errors;
    EXPECT_EQ(run.Errors.rfind("There is no sound device", 0), 0U) << run.Errors;
}

} // namespace
