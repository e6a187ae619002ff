// SPDX-License-Identifier: GPL-3.0-or-later
//
// What the editor plays, heard at the other end of a sound server of the test's own.
#include "EditorFixture.h"
#include "Sounds.h"

#include <algorithm>
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
        for (const char* program : {"pulseaudio", "parec"}) {
            Need(program);
            if (HasFatalFailure() || IsSkipped())
                return;
        }
        EditorFixture::SetUp();
        if (HasFatalFailure() || IsSkipped())
            return;
        StartServer();
        if (!Eventually([&] { return m_server->HasEnded() || HearsSilence(); }) || m_server->HasEnded())
            GTEST_SKIP() << "the sound server does not start: " << m_server->Output();
    }

    void TearDown() override
    {
        m_ear.reset();
        m_server.reset();
        EditorFixture::TearDown();
    }

    void StartServer()
    {
        const std::string socket = m_folder / "runtime" / "sound";
        m_desktop->SetVariable("PULSE_SERVER", "unix:" + socket);
        m_server = m_desktop->Run({"pulseaudio", "-n", "--daemonize=no", "--exit-idle-time=-1", "--use-pid-file=no",
                                   "--realtime=no", "--high-priority=no", "--disable-shm=yes",
                                   "--load=module-native-protocol-unix auth-anonymous=1 socket=" + socket,
                                   "--load=module-null-sink sink_name=ear rate=44100 channels=2 format=s16le"},
                                  "pulseaudio");
    }

    /// The ear is opened again until the server is there to hear.
    bool HearsSilence()
    {
        if (!m_ear || m_ear->HasEnded())
            m_ear = m_desktop->Run({"sh", "-c",
                                    "exec parec --device=ear.monitor --rate=44100 --channels=2 --format=s16le --raw >" +
                                        HeardFile().native()},
                                   "parec");
        std::error_code error;
        return std::filesystem::file_size(HeardFile(), error) > 0 && !error;
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
    EXPECT_TRUE(Eventually([&] { return CountHeardBlocks(Heard(), sound) >= enough; }))
        << CountHeardBlocks(Heard(), sound) << " blocks of " << sound.size() / BlockSamples << " were heard";
    QuitEditor();
}

} // namespace
} // namespace ek
