// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "EditModel.h"
#include "support/ScriptedPrompts.h"
#include "support/Signals.h"
#include "support/TestFolder.h"
#include "waveedit/WEDoc.h"

#include <gtest/gtest.h>

#include <memory>
#include <string>
#include <vector>

namespace ek {

/// Documents made for the test. When all of them and the clipboard are gone, no temporary file may be left.
class EditTest : public testing::Test {
protected:
    static constexpr uint32_t All = SoundModel::AllChannels;

    ~EditTest() override
    {
        SoundClipboard().Free();
        EXPECT_EQ(m_folder.TempFileCount(), 0U);
    }

    static std::unique_ptr<CWEDoc> MakeDocument(const SoundModel& sound, const WAVEFORMATEXTENSIBLE& format)
    {
        CSoundBlock block;
        EXPECT_TRUE(block.Create(sound.FrameCount(), format, sound.Values.data(), ChannelAll));
        auto document = std::make_unique<CWEDoc>();
        EXPECT_TRUE(document->NewFromBlock(block));
        document->SetModified(false);
        return document;
    }
    static std::unique_ptr<CWEDoc> MakeDocument(const EditModel& model)
    {
        return MakeDocument(model.Sound, MakePcm16Format(44100, model.Sound.Channels));
    }

    static EditModel Noise(uint32_t seed, uint32_t channels, uint64_t frames)
    {
        return {{channels, MakeNoise(seed, frames * channels)}, {}, 0};
    }
    static ChannelCode CodeOf(const CWEDoc& document, uint32_t channel)
    {
        return channel == All ? ChannelAll : GetChannelByIndex(document.Format(), channel);
    }
    static std::vector<int16_t> ClipboardValues()
    {
        const auto* values = reinterpret_cast<const int16_t*>(SoundClipboard().Data);
        return {values, values + SoundClipboard().ByteSize() / 2};
    }
    /// The sound of a document that is closed again is on the clipboard.
    static void CopyAll(const SoundModel& sound, const WAVEFORMATEXTENSIBLE& format)
    {
        const auto document = MakeDocument(sound, format);
        ASSERT_TRUE(document->Copy(0, sound.FrameCount(), ChannelAll));
    }
    /// The files that these and the clipboard need.
    static size_t FilesOf(CWEDoc& document)
    {
        return document.Store().TempFiles().size() + document.UndoStack().Count() + (SoundClipboard().Data ? 1 : 0);
    }

    TestFolder m_folder;
    ScriptedPrompts m_prompts;
};

} // namespace ek
