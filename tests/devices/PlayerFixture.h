// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "Fakes.h"

#include "servicefuncs/Channels.h"
#include "support/Signals.h"
#include "support/TestFolder.h"

#include <gtest/gtest.h>

#include <cmath>
#include <cstring>
#include <filesystem>
#include <vector>

namespace ek {

inline constexpr uint32_t Rate = 44100;

class PlayerTest : public testing::Test {
protected:
    PlayerTest()
    {
        m_player.SetListener(&m_told);
        m_player.Choose({"cards"});
    }

    void SetUpFor(FakeModule& module, uint32_t blockFrames = 1024, uint32_t blocks = 5)
    {
        module.Player = &m_player;
        const WAVEFORMATEXTENSIBLE format = MakePcm16Format(Rate, module.Channels);
        m_player.SetFormat(&format);
        m_player.SetBufferCount(blocks);
        m_player.SetBufferSize(blockFrames * format.nBlockAlign);
        m_player.SetCallback(&FakeModule::Callback, &module);
    }

    /// The values of the module's frames [start, end), of a sound that repeats.
    static std::vector<int16_t> Sound(const FakeModule& module, uint64_t start, uint64_t end)
    {
        std::vector<int16_t> values;
        for (uint64_t frame = start; frame < end; ++frame)
            for (uint32_t channel = 0; channel < module.Channels; ++channel)
                values.push_back(module.Value(frame % module.Frames, channel));
        return values;
    }

    static std::vector<int16_t> WithoutSilence(const std::vector<float>& values)
    {
        std::vector<int16_t> heard;
        for (const float value : values)
            if (value != 0)
                heard.push_back(static_cast<int16_t>(std::lround(value * 32768)));
        return heard;
    }

    /// Takes from the card until so many values of sound have come.
    static std::vector<int16_t> PullSound(FakeCard& card, size_t values, uint32_t step = 512)
    {
        std::vector<int16_t> heard;
        while (heard.size() < values) {
            const std::vector<int16_t> more = WithoutSilence(card.Pull(step));
            heard.insert(heard.end(), more.begin(), more.end());
        }
        return heard;
    }

    static std::vector<int16_t> WavValues(const std::filesystem::path& path)
    {
        constexpr size_t HeadBytes = 12 + 36 + 24 + 8; // with the place for long sizes, and a short format
        const std::vector<char> bytes = ReadBytes(path);
        if (bytes.size() < HeadBytes || std::memcmp(bytes.data() + HeadBytes - 8, "data", 4) != 0)
            return {};
        std::vector<int16_t> values((bytes.size() - HeadBytes) / 2);
        std::memcpy(values.data(), bytes.data() + HeadBytes, values.size() * 2);
        return values;
    }

    TestFolder m_folder;
    FakeBackend m_backend;
    Told m_told;
    HostPlayer m_player{m_backend};
};

} // namespace ek
