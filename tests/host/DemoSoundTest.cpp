// SPDX-License-Identifier: GPL-3.0-or-later
#include "Scratch.h"

#include "ekdatapr/EkDataPr.h"
#include "host/DemoSound.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <cstdlib>

namespace ek {
namespace {

TEST(DemoSoundTest, TheFileHoldsTheSoundOverAnOlderFileAndNothingElseStays)
{
    const Scratch folder;
    const std::filesystem::path file = folder.Write("demo.wav", "an older file");
    ASSERT_TRUE(WriteDemoSound(file));

    const std::vector<int16_t> expected = MakeDemoSound();
    WAVEFORMATEXTENSIBLE format;
    uint64_t frames = 0;
    const DecoderHandle decoder = EkOpenFile(file, format, frames, true);
    ASSERT_NE(decoder, 0u);
    ASSERT_EQ(frames, expected.size() / 2);
    std::vector<int16_t> read(expected.size());
    EXPECT_EQ(EkGetFileData(decoder, 0, frames, read.data(), read.size() * sizeof(int16_t)), frames);
    EkCloseFile(decoder);
    EXPECT_EQ(format.nSamplesPerSec, DemoRate);
    EXPECT_EQ(read, expected);
    const std::filesystem::directory_iterator all(folder.Path());
    EXPECT_EQ(std::distance(begin(all), end(all)), 1);
}

TEST(DemoSoundTest, ItUsesTheScaleWithoutClippingAndEndsInSilence)
{
    const std::vector<int16_t> samples = MakeDemoSound();
    const auto [low, high] = std::minmax_element(samples.begin(), samples.end());
    EXPECT_GT(*high, 20000);
    EXPECT_LT(*high, 32767);
    EXPECT_GT(*low, -32767);
    EXPECT_TRUE(std::all_of(samples.end() - 2000, samples.end(), [](int16_t value) { return std::abs(value) < 8; }));
}

TEST(DemoSoundTest, ATargetThatCannotBeWrittenIsReported)
{
    const Scratch folder;
    EXPECT_FALSE(WriteDemoSound(folder / "missing" / "demo.wav"));
    EXPECT_TRUE(std::filesystem::is_empty(folder.Path()));
}

} // namespace
} // namespace ek
