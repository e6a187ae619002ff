// SPDX-License-Identifier: GPL-3.0-or-later
#include "waveview/ui/PanelPainters.h"

#include <gtest/gtest.h>

#include <QImage>

namespace ek {
namespace {

constexpr int Width = 40;
constexpr int Height = 62;
constexpr Rect Panel{0, 0, Width, Height};

ViewColors MakeColors()
{
    ViewColors colors;
    colors.Wave = 0x0000AA;
    colors.FullScaleLines = 0x00BB00;
    colors.WaveBackground = 0xEEEEEE;
    colors.Workspace = 0x777777;
    colors.PanelLines = 0x111111;
    return colors;
}
const ViewColors Colors = MakeColors();

class Painters : public testing::Test {
protected:
    Painters()
    {
        for (int i = 0; i < 30; ++i) // a square wave of half scale, and silence
            m_square.push_back(i / 5 % 2 ? PeakPair{16384, 16384} : PeakPair{-16384, -16384});
        m_silence.resize(30);
        Picture.Format = MakePcm16Format(44100, 2);
        Picture.Lanes = {m_square, m_silence};
    }

    QImage Drawn(const Rect& clip = Panel)
    {
        QImage image(Width, Height, QImage::Format_RGB32);
        image.fill(Qt::red);
        QPainter painter(&image);
        painter.setClipRect(ToQRect(clip));
        DrawWave(painter, Panel, Colors, Picture);
        return image;
    }

    static QColor At(const QImage& image, int x, int y) { return image.pixelColor(x, y); }

    WavePicture Picture;

private:
    std::vector<PeakPair> m_square;
    std::vector<PeakPair> m_silence;
};

// Lanes of 31 rows. The upper one: zero line in row 15, full scale in rows 5 and 25, half scale in rows 10 and 20.
TEST_F(Painters, ASquareWaveIsDrawnRowByRow)
{
    const QImage image = Drawn();
    EXPECT_EQ(At(image, 2, 20), Colors.Wave);
    EXPECT_EQ(At(image, 2, 19), Colors.WaveBackground);
    EXPECT_EQ(At(image, 7, 10), Colors.Wave);
    EXPECT_EQ(At(image, 7, 11), Colors.WaveBackground);
    for (int y = 10; y <= 20; ++y) // the edge between the fifth and the sixth column
        EXPECT_EQ(At(image, y > 15 ? 4 : 5, y), y == 15 ? Colors.FullScaleLines : Colors.Wave) << y;
    for (const int y : {5, 15, 25})
        EXPECT_EQ(At(image, 12, y), Colors.FullScaleLines) << y;
}

TEST_F(Painters, LanesAreSeparatedAndTheDataEndsAtTheWorkspace)
{
    const QImage image = Drawn();
    EXPECT_EQ(At(image, 3, 31), Colors.PanelLines);
    EXPECT_EQ(At(image, 39, 31), Colors.PanelLines);
    EXPECT_EQ(At(image, 29, 1), Colors.WaveBackground);
    for (const int y : {1, 15, 40, 61})
        EXPECT_EQ(At(image, 30, y), Colors.Workspace) << y;
    const Rect lower{0, 32, Width, 62}; // 30 rows: the silent lane shows its zero line only
    EXPECT_EQ(At(image, 3, (lower.Top + lower.Bottom) / 2), Colors.FullScaleLines);
    EXPECT_EQ(At(image, 3, (lower.Top + lower.Bottom) / 2 + 1), Colors.WaveBackground);
}

TEST_F(Painters, ASmallerScaleMovesTheFullScaleLinesOutOfTheLane)
{
    Picture.AmplitudeScale = 40; // the span becomes 52 rows
    const QImage image = Drawn();
    for (int y = 0; y < 31; ++y)
        EXPECT_EQ(At(image, 12, y) == Colors.FullScaleLines, y == 15) << y;
    EXPECT_EQ(At(image, 2, 28), Colors.Wave);
}

TEST_F(Painters, AnExposedPartIsDrawnLikeThePartOfTheWhole)
{
    Picture.SelectionLeft = 3;
    Picture.SelectionRight = 17;
    const QImage whole = Drawn();
    for (const Rect& part : {Rect{5, 6, 10, 40}, Rect{28, 30, 33, 33}, Rect{35, 0, 40, 62}}) {
        const QImage image = Drawn(part);
        EXPECT_EQ(image.copy(ToQRect(part)), whole.copy(ToQRect(part)));
        EXPECT_EQ(At(image, part.Left - 1, part.Top), QColor(Qt::red));
    }
}

TEST_F(Painters, ASelectionOfOneChannelInvertsItsLaneOnly)
{
    const QImage plain = Drawn();
    Picture.SelectionLeft = 10;
    Picture.SelectionRight = 20;
    Picture.SelectionChannel = ChannelRight;
    const QImage selected = Drawn();
    for (int y = 0; y < Height; ++y) {
        for (int x = 0; x < Width; ++x) {
            const bool inverted = y >= 32 && x >= 10 && x < 20;
            const QRgb expected = inverted ? plain.pixel(x, y) ^ 0xFFFFFF : plain.pixel(x, y);
            ASSERT_EQ(selected.pixel(x, y), expected) << x << ", " << y;
        }
    }
}

TEST_F(Painters, TheLitCursorInvertsOneColumnOfItsChannels)
{
    const QImage plain = Drawn();
    Picture.CursorOffset = 35;
    EXPECT_EQ(Drawn(), plain);
    Picture.CursorLit = true;
    EXPECT_EQ(CursorRect(Panel, Picture), (Rect{35, 0, 36, Height}));
    EXPECT_EQ(Drawn().pixel(35, 50), plain.pixel(35, 50) ^ 0xFFFFFF);
    EXPECT_EQ(Drawn().pixel(36, 50), plain.pixel(36, 50));
    Picture.SelectionChannel = ChannelLeft;
    EXPECT_EQ(Drawn().pixel(35, 50), plain.pixel(35, 50));
    Picture.CursorOffset = Width;
    EXPECT_EQ(Drawn(), plain);
}

} // namespace
} // namespace ek
