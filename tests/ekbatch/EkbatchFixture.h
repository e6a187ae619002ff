// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <gtest/gtest.h>

#include <sys/wait.h>

#include <cstdlib>
#include <filesystem>
#include <fstream>
#include <sstream>
#include <string>

namespace fs = std::filesystem;

struct RunResult {
    int Status;
    std::string Output;
    std::string Errors;
};

inline std::string ReadText(const fs::path& path)
{
    std::ifstream file(path, std::ios::binary);
    std::ostringstream text;
    text << file.rdbuf();
    return text.str();
}

/// Runs ekbatch in a folder of its own, with its settings, its log and its temporary files inside it.
class EkbatchTest : public testing::Test {
protected:
    void SetUp() override
    {
        std::string pattern = (fs::temp_directory_path() / "ekbatch-test-XXXXXX").string();
        m_folder = mkdtemp(pattern.data());
        fs::create_directory(m_folder / "tmp");
    }

    void TearDown() override { fs::remove_all(m_folder); }

    /// `arguments` as typed into a shell inside the folder.
    RunResult Run(const std::string& arguments, const std::string& input = {})
    {
        std::ofstream(m_folder / "stdin") << input;
        const std::string command =
            "cd '" + m_folder.string() + "' && TMPDIR=\"$PWD/tmp\" XDG_DATA_HOME=\"$PWD/data\"" +
            " XDG_CONFIG_HOME=\"$PWD/config\" XDG_STATE_HOME=\"$PWD/state\"" + " PULSE_SERVER=unix:/nowhere " +
            EK_BIN_DIR + "/ekbatch " + arguments + " <stdin >stdout 2>stderr";
        const int status = std::system(command.c_str());
        return {WIFEXITED(status) ? WEXITSTATUS(status) : -1, ReadText(m_folder / "stdout"),
                ReadText(m_folder / "stderr")};
    }

    bool TempFolderIsEmpty() const { return fs::is_empty(m_folder / "tmp"); }

    /// A mono 16-bit WAV of a ramp.
    void MakeWave(const std::string& name, uint32_t frames, uint32_t rate = 8000)
    {
        std::string header = "RIFF" + U32(36 + frames * 2) + "WAVEfmt " + U32(16) + U16(1) + U16(1) + U32(rate) +
                             U32(rate * 2) + U16(2) + U16(16) + "data" + U32(frames * 2);
        std::ofstream file(m_folder / name, std::ios::binary);
        file << header;
        for (uint32_t i = 0; i < frames; ++i)
            file << U16(static_cast<uint16_t>(i * 7));
    }

    static std::string U16(uint16_t value) { return {static_cast<char>(value), static_cast<char>(value >> 8)}; }
    static std::string U32(uint32_t value)
    {
        return U16(static_cast<uint16_t>(value)) + U16(static_cast<uint16_t>(value >> 16));
    }

    fs::path m_folder;
};

/// The bytes of the data chunk.
inline std::string SoundOf(const std::string& wave)
{
    const size_t chunk = wave.find("data", 36);
    if (chunk == std::string::npos || chunk + 8 > wave.size())
        return {};
    const auto byte = [&](size_t i) { return static_cast<uint32_t>(static_cast<unsigned char>(wave[chunk + 4 + i])); };
    return wave.substr(chunk + 8, byte(0) | byte(1) << 8 | byte(2) << 16 | byte(3) << 24);
}
