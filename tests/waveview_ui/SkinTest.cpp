// SPDX-License-Identifier: GPL-3.0-or-later
#include "skincontrols/Skin.h"

#include <gtest/gtest.h>

#include <QFile>
#include <QImage>
#include <QTemporaryDir>

namespace ek {
namespace {

class RedSkin final : public CHostSkin {
public:
    SkinColor GetColor(uint32_t colorId) override { return colorId == COLOR_EDITOR_WAVE ? 0x0000FF : 0xFF0000; }
    void SkinWindow(QWidget*, int) override {}
    const enXml* GetSkinXml(const char16_t*, const char16_t*) override { return nullptr; }
};

TEST(Skin, ColoursComeFromTheSkinWithRedInTheLowestByte)
{
    RedSkin skin;
    SetCurrentSkin(&skin);
    EXPECT_EQ(SkinColorOf(COLOR_EDITOR_WAVE), QColor(255, 0, 0));
    EXPECT_EQ(SkinPalette().color(QPalette::Window), QColor(0, 0, 255));
    SetCurrentSkin(nullptr);
    EXPECT_NE(SkinPalette().color(QPalette::Window), QColor(0, 0, 255));
}

TEST(Skin, IconsTakeTheColourAndArePalerWhenDisabled)
{
    QTemporaryDir folder;
    const QString name = folder.filePath("icon.svg");
    QFile file(name);
    ASSERT_TRUE(file.open(QIODevice::WriteOnly));
    file.write("<svg xmlns='http://www.w3.org/2000/svg' viewBox='0 0 16 16'>"
               "<rect width='8' height='16' fill='currentColor'/></svg>");
    file.close();
    const QIcon icon = MakeIcon(name, QColor(10, 200, 30));
    const QImage image = icon.pixmap(QSize(48, 48)).toImage();
    EXPECT_EQ(image.pixelColor(23, 24), QColor(10, 200, 30));
    EXPECT_EQ(image.pixelColor(24, 24).alpha(), 0); // sharp at the edge
    const int alpha = icon.pixmap(QSize(48, 48), QIcon::Disabled).toImage().pixelColor(5, 5).alpha();
    EXPECT_GT(alpha, 0);
    EXPECT_LT(alpha, 128);
    EXPECT_TRUE(MakeIcon(folder.filePath("missing.svg"), Qt::red).isNull());
}

} // namespace
} // namespace ek
