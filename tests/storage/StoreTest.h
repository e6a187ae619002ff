// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "debugmanager/DebugManager.h"
#include "servicefuncs/Channels.h"
#include "storage/WaveData.h"
#include "support/ScriptedPrompts.h"
#include "support/Signals.h"
#include "support/SoundModel.h"
#include "support/TestFolder.h"

#include <gtest/gtest.h>

#include <string>
#include <vector>

namespace ek {

/// A folder, prompts that answer from a script, the log, and sounds made for the test.
class StoreTest : public testing::Test {
protected:
    StoreTest()
    {
        enDebugManager().CollectLines();
        enDebugManager().TakeLines();
    }

    /// Fills an empty store with the model's sound, peaks included.
    static void Fill(CWaveData& store, const SoundModel& model)
    {
        store.SetFormat(MakePcm16Format(44100, model.Channels), nullptr);
        ASSERT_TRUE(store.InsertSpace(0, 0, model.Values.size() * 2));
        ASSERT_TRUE(store.WriteData(model.Values.data(), 0, model.Values.size() * 2));
        ASSERT_TRUE(store.BuildPeakCache());
    }

    /// The texts logged since the last call, without those about files made.
    static std::vector<std::string> LoggedTexts()
    {
        std::vector<std::string> texts;
        for (const CDebugManager::Line& line : enDebugManager().TakeLines()) {
            if (!line.Text.starts_with("Created temporary file"))
                texts.push_back(line.Text);
        }
        return texts;
    }

    static SoundBuffer BlockOf(std::vector<int16_t>& values, const WAVEFORMATEXTENSIBLE& format,
                               ChannelCode code = ChannelAll)
    {
        return {code, format, reinterpret_cast<uint8_t*>(values.data()), values.size() * 2 / format.nBlockAlign, 0};
    }

    TestFolder m_folder;
    ScriptedPrompts m_prompts;
};

} // namespace ek
