// SPDX-License-Identifier: GPL-3.0-or-later
#include "skincontrols/LevelMeter.h"

#include <gtest/gtest.h>

#include <QImage>
#include <QPainter>
#include <QTest>

#include <cmath>

namespace ek {
namespace {

constexpr double FallMilliseconds = 1700; ///< for 20 dB
constexpr int Width = 208;
constexpr int BarWidth = 200;
constexpr QRgb ClipColor = qRgb(0xD8, 0x4B, 0x45);

void Feed(MeterLevels& levels, std::vector<float> peaks, double milliseconds)
{
    levels.Feed(peaks, milliseconds);
}

QImage Painted(std::span<const MeterChannel> channels, int height = 16)
{
    QImage image(Width, height, QImage::Format_RGB32);
    QPainter painter(&image);
    PaintLevelMeter(painter, image.rect(), channels);
    return image;
}

/// Where the first colour of a row ends.
int LengthOfFirst(const QImage& image, int y)
{
    int x = 0;
    while (x < image.width() && image.pixel(x, y) == image.pixel(0, y))
        ++x;
    return x;
}

TEST(MeterLevelsTest, TheLevelRisesAtOnceAndFallsWithTheTimeThatPassed)
{
    MeterLevels levels;
    levels.SetChannels(2);
    Feed(levels, {1.0F, 0.25F}, 0);
    EXPECT_FLOAT_EQ(levels.Channels()[0].Level, 1);
    EXPECT_FLOAT_EQ(levels.Channels()[1].Level, 0.25F);
    for (int i = 0; i < 17; ++i)
        Feed(levels, {0, 0.25F}, FallMilliseconds / 17);
    EXPECT_NEAR(levels.Channels()[0].Level, 0.1, 1e-4);
    EXPECT_FLOAT_EQ(levels.Channels()[1].Level, 0.25F);
    Feed(levels, {0.5F}, 1);
    EXPECT_FLOAT_EQ(levels.Channels()[0].Level, 0.5F);
    EXPECT_LT(levels.Channels()[1].Level, 0.25F) << "a channel that is not fed is silent";
    Feed(levels, {}, 3 * FallMilliseconds);
    EXPECT_EQ(levels.Channels()[0].Level, 0);
}

TEST(MeterLevelsTest, ThePeakRestsBeforeItFalls)
{
    MeterLevels levels;
    levels.SetChannels(1);
    Feed(levels, {0.8F}, 0);
    Feed(levels, {0}, 1500);
    EXPECT_FLOAT_EQ(levels.Channels()[0].Peak, 0.8F);
    Feed(levels, {0}, FallMilliseconds);
    EXPECT_NEAR(levels.Channels()[0].Peak, 0.08, 1e-4);
    Feed(levels, {0.8F}, 1);
    Feed(levels, {0.9F}, 1400);
    Feed(levels, {0}, 1400);
    EXPECT_FLOAT_EQ(levels.Channels()[0].Peak, 0.9F) << "a higher peak rests anew";
}

TEST(MeterLevelsTest, AClipLightStaysOnUntilItIsPutOut)
{
    MeterLevels levels;
    levels.SetChannels(2);
    Feed(levels, {0.9999F, 1.0F}, 0);
    Feed(levels, {0, 0}, 100000);
    EXPECT_FALSE(levels.Channels()[0].IsClipped);
    EXPECT_TRUE(levels.Channels()[1].IsClipped);
    levels.PutLightsOut();
    EXPECT_FALSE(levels.Channels()[1].IsClipped);
}

TEST(MeterPaintingTest, BarsAreAsLongAsTheirLevelsInDecibels)
{
    for (const double decibels : {-45.0, -30.0, -15.0}) {
        const MeterChannel channel{.Level = static_cast<float>(std::pow(10, decibels / 20))};
        const QImage image = Painted(std::vector{MeterChannel{.Level = 1}, channel});
        EXPECT_EQ(LengthOfFirst(image, 12), std::lround(BarWidth * (1 + decibels / 60))) << decibels;
        EXPECT_NE(image.pixel(0, 3), image.pixel(BarWidth - 1, 3)) << "loud parts have a colour of their own";
    }
    EXPECT_EQ(MeterPosition(0), 0);
    EXPECT_EQ(MeterPosition(4), 1);
}

TEST(MeterPaintingTest, PeakMarkAndClipLightStandApartForEachChannel)
{
    const QImage image = Painted(std::vector{MeterChannel{.Peak = 0.0316228F}, MeterChannel{.IsClipped = true}});
    EXPECT_EQ(LengthOfFirst(image, 3), BarWidth / 2 - 2);
    EXPECT_EQ(LengthOfFirst(image, 12), BarWidth);
    EXPECT_NE(image.pixel(Width - 1, 3), ClipColor);
    EXPECT_EQ(image.pixel(Width - 1, 12), ClipColor);
}

TEST(MeterPaintingTest, EightChannelsHaveARowEachInAToolBarsHeight)
{
    for (size_t i = 0; i < 8; ++i) {
        std::vector<MeterChannel> channels(8);
        channels[i].IsClipped = true;
        const QImage image = Painted(channels);
        int rows = 0;
        for (int y = 0; y < image.height(); ++y)
            rows += image.pixel(Width - 1, y) == ClipColor;
        EXPECT_GE(rows, 1) << i;
        EXPECT_EQ(image.pixel(Width - 1, static_cast<int>(i * 17 / 8)), ClipColor) << i;
    }
}

TEST(LevelMeterTest, OnlyAMeterThatIsOnShowsLevelsAndAClickPutsTheLightsOut)
{
    CSCLevelMeter meter;
    WAVEFORMATEXTENSIBLE stereo;
    stereo.nChannels = 2;
    meter.SetFormat(stereo);
    meter.resize(Width, 16);
    const QImage idle = meter.grab().toImage();
    const std::vector<float> loud{1, 1};
    meter.SetPeaks(loud, 0);
    EXPECT_EQ(meter.grab().toImage(), idle);
    meter.SetOn(true);
    meter.SetPeaks(loud, 0);
    EXPECT_NE(meter.grab().toImage(), idle);
    meter.SetOn(false);
    const QImage after = meter.grab().toImage();
    EXPECT_EQ(after.pixel(0, 3), idle.pixel(0, 3));
    EXPECT_EQ(after.pixel(Width - 1, 3), ClipColor);
    QTest::mouseClick(&meter, Qt::LeftButton);
    EXPECT_EQ(meter.grab().toImage(), idle);
}

} // namespace
} // namespace ek
