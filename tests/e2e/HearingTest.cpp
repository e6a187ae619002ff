// SPDX-License-Identifier: GPL-3.0-or-later
//
// What the editor plays, heard at the other end of a sound server of the test's own.
#include "EditorFixture.h"
#include "Sounds.h"

#include <algorithm>
#include <csignal>
#include <cstdlib>
#include <fstream>
#include <iterator>

namespace ek {
namespace {

constexpr size_t BlockSamples = 4410 * 2;
constexpr int Tolerance = 2; ///< of a sample: it goes through floating point numbers

bool IsAt(const std::vector<int16_t>& heard, size_t position, const int16_t* block)
{
    return std::equal(block, block + BlockSamples, heard.begin() + static_cast<ptrdiff_t>(position),
                      [](int a, int b) { return std::abs(a - b) <= Tolerance; });
}

/// How many of the sound's blocks were heard, in their order. A machine that is too busy may tear some apart.
size_t CountHeardBlocks(const std::vector<int16_t>& heard, const std::vector<int16_t>& sound)
{
    size_t count = 0;
    size_t next = 0;
    for (size_t block = 0; block + BlockSamples <= sound.size(); block += BlockSamples) {
        size_t position = next;
        while (position + BlockSamples <= heard.size() && !IsAt(heard, position, &sound[block]))
            position += 2;
        if (position + BlockSamples > heard.size())
            continue;
        ++count;
        next = position + BlockSamples;
    }
    return count;
}

class HearingTest : public EditorFixture {
protected:
    void SetUp() override
    {
        for (const char* program : {"pulseaudio", "parec", "pactl"}) {
            Need(program);
            if (HasFatalFailure() || IsSkipped())
                return;
        }
        EditorFixture::SetUp();
        if (HasFatalFailure() || IsSkipped())
            return;
        m_desktop->SetVariable("PULSE_SERVER", "unix:" + Socket());
        if (!StartServer() || !ListenTo("ear"))
            GTEST_SKIP() << "the sound server does not start: " << m_server->Output();
    }

    void TearDown() override
    {
        m_ear.reset();
        m_server.reset();
        EditorFixture::TearDown();
    }

    std::string Socket() const { return m_folder / "runtime" / "sound"; }

    /// With two devices, of which "ear" is the default one.
    bool StartServer()
    {
        std::error_code ignored;
        std::filesystem::remove(Socket(), ignored); // one that was killed leaves it
        const std::string shape = " rate=44100 channels=2 format=s16le";
        m_server =
            m_desktop->Run({"pulseaudio", "-n", "--daemonize=no", "--exit-idle-time=-1", "--use-pid-file=no",
                            "--realtime=no", "--high-priority=no", "--disable-shm=yes",
                            "--load=module-null-sink sink_name=ear sink_properties=device.description=Ear" + shape,
                            "--load=module-null-sink sink_name=other sink_properties=device.description=Other" + shape,
                            "--load=module-native-protocol-unix auth-anonymous=1 socket=" + Socket()},
                           "pulseaudio");
        return Eventually([&] { return m_server->HasEnded() || MakeDefault("ear"); }) && !m_server->HasEnded();
    }

    bool MakeDefault(const std::string& device) const
    {
        const std::unique_ptr<Process> process = m_desktop->Run({"pactl", "set-default-sink", device}, "pactl");
        return Eventually([&] { return process->HasEnded(); }) && process->ExitStatus() == 0;
    }

    /// From now on what comes to the device is what is heard.
    bool ListenTo(const std::string& device)
    {
        m_ear.reset();
        std::error_code error;
        std::filesystem::remove(HeardFile(), error);
        m_ear = m_desktop->Run({"sh", "-c",
                                "exec parec --latency-msec=100 --device=" + device +
                                    ".monitor --rate=44100 --channels=2 --format=s16le --raw >" + HeardFile().native()},
                               "parec");
        return Eventually([&] {
                   return m_ear->HasEnded() || (std::filesystem::file_size(HeardFile(), error) > 0 && !error);
               }) &&
               !m_ear->HasEnded();
    }

    bool Hears(const std::vector<int16_t>& sound, size_t blocks) const
    {
        return Eventually([&] { return CountHeardBlocks(Heard(), sound) >= blocks; });
    }

    /// The editor with the files open plays the last one, round and round.
    bool PlayInLoop(const std::vector<std::string>& files)
    {
        std::vector<std::string> arguments{"--audio-system", "pulse"};
        for (const std::string& file : files)
            arguments.push_back(Music(file));
        if (!BringUpEditor(arguments) || !ShowsFile(files.back()) || !m_desktop->Focus("Ek Wave Editor"))
            return false;
        m_desktop->Key("l");
        m_desktop->Key("space");
        return true;
    }

    /// What the editor wrote down of the troubles of its devices, which it shows for some seconds only.
    bool TellsOfTrouble() const
    {
        return Eventually([&] {
            std::ifstream log(m_folder / "home/state/ek-wave-editor/editor.log");
            const std::string text{std::istreambuf_iterator<char>(log), {}};
            return text.find("audio: ") != std::string::npos;
        });
    }

    std::filesystem::path HeardFile() const { return m_folder / "heard"; }

    std::vector<int16_t> Heard() const
    {
        std::ifstream file(HeardFile(), std::ios::binary);
        const std::string bytes{std::istreambuf_iterator<char>(file), {}};
        std::vector<int16_t> samples(bytes.size() / sizeof(int16_t) / 2 * 2);
        std::copy_n(bytes.begin(), samples.size() * sizeof(int16_t), reinterpret_cast<char*>(samples.data()));
        return samples;
    }

    std::unique_ptr<Process> m_server;
    std::unique_ptr<Process> m_ear;
};

TEST_F(HearingTest, TheSpaceBarMakesTheSoundHeard)
{
    const std::vector<int16_t> sound = MakeSound(5);
    ASSERT_TRUE(WriteSound(Music("sound.wav"), sound));
    ASSERT_TRUE(BringUpEditor({"--audio-system", "pulse", Music("sound.wav")}));
    ASSERT_TRUE(ShowsFile("sound.wav"));
    ASSERT_TRUE(m_desktop->Focus("Ek Wave Editor"));
    EXPECT_EQ(CountHeardBlocks(Heard(), sound), 0u);
    m_desktop->Key("space");
    const size_t enough = sound.size() / BlockSamples * 8 / 10;
    EXPECT_TRUE(Hears(sound, enough)) << CountHeardBlocks(Heard(), sound) << " blocks of "
                                      << sound.size() / BlockSamples << " were heard";
    QuitEditor();
}

TEST_F(HearingTest, PlayingOutlivesTheSoundServer)
{
    const std::vector<int16_t> sound = MakeSound(6);
    ASSERT_TRUE(WriteSound(Music("sound.wav"), sound));
    ASSERT_TRUE(PlayInLoop({"sound.wav"}));
    ASSERT_TRUE(Hears(sound, 3));
    m_server->Send(SIGKILL);
    EXPECT_TRUE(TellsOfTrouble());
    ASSERT_TRUE(StartServer() && ListenTo("ear"));
    EXPECT_TRUE(Hears(sound, 3)) << "nobody pressed a key";
    QuitEditor();
}

TEST_F(HearingTest, TheSoundFollowsTheDefaultDeviceWhileAnotherDocumentIsInFront)
{
    const std::vector<int16_t> sound = MakeSound(7);
    ASSERT_TRUE(WriteSound(Music("front.wav"), MakeSound(8)));
    ASSERT_TRUE(WriteSound(Music("sound.wav"), sound));
    ASSERT_TRUE(PlayInLoop({"front.wav", "sound.wav"}));
    ASSERT_TRUE(Hears(sound, 3));
    m_desktop->Key("ctrl+Tab");
    ASSERT_TRUE(ShowsFile("front.wav"));
    ASSERT_TRUE(MakeDefault("other"));
    EXPECT_TRUE(TellsOfTrouble());
    ASSERT_TRUE(ListenTo("other"));
    EXPECT_TRUE(Hears(sound, 3));
    QuitEditor();
}

TEST_F(HearingTest, AScriptThatPlaysFailsWhenItsDeviceGoes)
{
    if (std::filesystem::exists("/dev/snd"))
        return; // a sound card would take over, and be heard; skipped, this would hide what the other tests find
    std::vector<int16_t> sound;
    for (const std::vector<int16_t> part = MakeSound(9); sound.size() < part.size() * 60;)
        sound.insert(sound.end(), part.begin(), part.end());
    ASSERT_TRUE(WriteSound(Music("sound.wav"), sound));
    const auto script =
        m_desktop->Run({EK_BIN_DIR "/ekbatch", "-e", "open " + Music("sound.wav").native(), "-e", "play"}, "ekbatch");
    ASSERT_TRUE(Hears(MakeSound(9), 3));
    m_server->Send(SIGKILL);
    ASSERT_TRUE(Eventually([&] { return script->HasEnded(); }));
    EXPECT_EQ(script->ExitStatus(), 1);
    EXPECT_NE(script->Output().find("playing was stopped"), std::string::npos) << script->Output();
}

} // namespace
} // namespace ek
