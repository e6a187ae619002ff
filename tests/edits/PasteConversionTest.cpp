// SPDX-License-Identifier: GPL-3.0-or-later
#include "EditTest.h"
#include "support/CancelAt.h"
#include "support/FaultyFileCalls.h"

#include <cerrno>
#include <cmath>
#include <numbers>

namespace ek {
namespace {

using Texts = std::vector<std::string>;

/// Pastes of a sound in another format than that of the document, which is stereo at 48 kHz.
class PasteConversion : public EditTest {
protected:
    void Copy(const EditModel& model, const WAVEFORMATEXTENSIBLE& format) { CopyAll(model.Sound, format); }
    bool Paste(uint64_t frame, ChannelCode code)
    {
        m_start = m_end = frame;
        return m_document->Paste(m_start, m_end, code);
    }
    /// What a refused paste leaves.
    void ExpectAsBefore()
    {
        ExpectSame(*m_document, m_model);
        EXPECT_FALSE(m_document->IsModified());
        EXPECT_EQ(m_folder.TempFileCount(), FilesOf(*m_document));
    }

    uint64_t m_start = 0;
    uint64_t m_end = 0;
    EditModel m_model = Noise(1, 2, 3000);
    const std::unique_ptr<CWEDoc> m_document = MakeDocument(m_model.Sound, MakePcm16Format(48000, 2));
};

TEST_F(PasteConversion, ASoundOfAnotherRateKeepsItsPitchAndTheClipboardItsSound)
{
    constexpr double Tone = 2 * std::numbers::pi * 1000;
    SoundModel sine{2, {}};
    for (int i = 0; i < 22000; ++i)
        sine.Values.insert(sine.Values.end(), 2, static_cast<int16_t>(std::lround(16000 * std::sin(Tone * i / 44100))));
    CopyAll(sine, MakePcm16Format(44100, 2));
    ASSERT_TRUE(Paste(1000, ChannelAll));
    EXPECT_EQ(m_end - m_start, 24000U); // 12 for 11
    EXPECT_EQ(ClipboardValues(), sine.Values);
    EXPECT_EQ(SoundClipboard().Format, MakePcm16Format(44100, 2));

    // The power at the tone's frequency, at the rate that 12 for 11 makes of 44.1 kHz, is all of the power.
    const std::vector<int16_t> pasted = ReadFrames(m_document->Store(), 5000, 15000);
    double inPhase = 0;
    double quadrature = 0;
    double power = 0;
    for (size_t i = 0; i < 10000; ++i) {
        const double phase = Tone * static_cast<double>(i) * 11 / 12 / 44100;
        ASSERT_EQ(pasted[2 * i], pasted[2 * i + 1]);
        inPhase += pasted[2 * i] * std::cos(phase) / 10000;
        quadrature += pasted[2 * i] * std::sin(phase) / 10000;
        power += pasted[2 * i] * static_cast<double>(pasted[2 * i]) / 10000;
    }
    EXPECT_NEAR(2 * (inPhase * inPhase + quadrature * quadrature) / power, 1, 0.001);
    EXPECT_NEAR(std::sqrt(2 * power) / 16000, 1, 0.05);
    ASSERT_TRUE(m_document->Undo(m_start, m_end));
    ExpectSameSound(m_document->Store(), m_model.Sound);
}

TEST_F(PasteConversion, EqualRateAndWidthAreBitExact)
{
    const EditModel mono = Noise(2, 1, 5000);
    const EditModel stereo = Noise(3, 2, 5000);
    const auto expectPasted = [&](uint32_t channel, uint64_t frame, const std::vector<int16_t>& values) {
        ASSERT_TRUE(Paste(frame, CodeOf(*m_document, channel)));
        m_model.Paste(channel, frame, frame, values);
        ExpectSame(*m_document, m_model);
    };
    Copy(mono, MakePcm16Format(48000, 1));
    expectPasted(All, 500, *ClipModel{1, mono.Sound.Values}.As(2));
    Copy(stereo, MakePcm16Format(48000, 2));
    expectPasted(0, 1000, *ClipModel{2, stereo.Sound.Values}.As(1));
    Copy(stereo, MakePcm16Format(48000, 2, 0x30)); // the same but for the places of the loudspeakers
    expectPasted(All, 3000, stereo.Sound.Values);

    EditModel six = Noise(4, 6, 5000); // frames that do not fit evenly into what is converted at a time
    const EditModel pasted = Noise(5, 6, 2000);
    const auto document = MakeDocument(six.Sound, MakePcm16Format(48000, 6, 0x3F));
    Copy(pasted, MakePcm16Format(48000, 6, 0x60F));
    ASSERT_TRUE(document->Paste(m_start = 10, m_end = 20, ChannelAll));
    six.Paste(All, 10, 20, pasted.Sound.Values);
    ExpectSame(*document, six);
}

TEST_F(PasteConversion, AnEightBitClipboardIsPastedAndMixedAsSixteenBit)
{
    WAVEFORMATEXTENSIBLE narrow = MakePcm16Format(48000, 2);
    narrow.wBitsPerSample = 8;
    narrow.nBlockAlign = 2;
    narrow.nAvgBytesPerSec = 96000;
    const uint8_t bytes[] = {0, 128, 129, 255};
    ASSERT_TRUE(SoundClipboard().Create(2, narrow, bytes, ChannelAll));
    ASSERT_TRUE(Paste(0, ChannelAll));
    m_model.Paste(All, 0, 0, {-32768, 0, 256, 127 * 256});
    ASSERT_TRUE(m_document->PasteMix(m_start = 10, m_end, ChannelAll));
    m_model.Mix(All, 10, {-32768, 0, 256, 127 * 256});
    ExpectSame(*m_document, m_model);
}

TEST_F(PasteConversion, ASoundThatCannotBeConvertedIsRefusedWithAMessage)
{
    Copy(Noise(2, 6, 1000), MakePcm16Format(48000, 6));
    EXPECT_FALSE(Paste(0, ChannelAll));
    EXPECT_FALSE(m_document->PasteMix(m_start, m_end, ChannelAll));
    EXPECT_EQ(m_prompts.Messages(), Texts(2, "Can't resample data"));
    EXPECT_EQ(m_prompts.Icons(), std::vector(2, MessageIcon::Error));
    EXPECT_EQ(m_end, 0U);
    ExpectAsBefore();
}

TEST_F(PasteConversion, AFullDiskOrABadOneIsToldOnceAndLeavesNothingBehind)
{
    Copy(Noise(2, 2, 30000), MakePcm16Format(44100, 2));
    FaultyFileCalls calls(".ekesb", FaultyFileCalls::Opens | FaultyFileCalls::Writes);
    for (const bool lasting : {false, true}) {
        for (uint64_t nth : {1, 2, 5, 20}) {
            if (lasting)
                calls.FailFrom(nth, ENOSPC);
            else
                calls.FailCall(nth, EIO);
            EXPECT_FALSE(Paste(100, ChannelAll));
            EXPECT_TRUE(calls.HasFailed());
            calls.StopFailing();
            ExpectSame(*m_document, m_model);
            EXPECT_FALSE(m_document->IsModified());
        }
    }
    EXPECT_EQ(m_prompts.Messages(), Texts(8, "Can't resample data"));
}

TEST_F(PasteConversion, ACancelledConversionIsNoPaste)
{
    Copy(Noise(2, 2, 30000), MakePcm16Format(44100, 2));
    {
        const CancelAt cancel(".ekesb", 1, CancelAt::Call::Write);
        EXPECT_FALSE(Paste(100, ChannelAll));
        EXPECT_EQ(cancel.Captions(), Texts{"Resampling"});
    }
    EXPECT_TRUE(m_prompts.Messages().empty());
    ExpectAsBefore();
}

} // namespace
} // namespace ek
