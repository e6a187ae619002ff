// SPDX-License-Identifier: GPL-3.0-or-later
#include "waveedit/ui/ClipboardManager.h"

#include <gtest/gtest.h>

#include <QApplication>
#include <QClipboard>
#include <QGuiApplication>
#include <QLabel>
#include <QMimeData>
#include <QRegularExpression>

#include <cstdlib>

namespace ek {
namespace {

CClipboardManager& Manager()
{
    return CClipboardManager::GetInstance();
}

TEST(ClipboardManager, OneValueGoesThroughTheSystemClipboard)
{
    Manager().PutValue(0x80012345);
    EXPECT_TRUE(Manager().HasValue());
    EXPECT_EQ(Manager().GetValue(), 0x80012345u);
    Manager().PutValue(7);
    EXPECT_EQ(Manager().GetValue(), 7u);
    QGuiApplication::clipboard()->setText("somebody else's");
    EXPECT_FALSE(Manager().HasValue());
    EXPECT_EQ(Manager().GetValue(), 0u);
    Manager().PutValue(7);
    Manager().ClearClipboard();
    EXPECT_FALSE(Manager().HasValue());
    EXPECT_TRUE(QGuiApplication::clipboard()->text().isEmpty());
}

TEST(ClipboardManager, ADragCarriesItsOwnValue)
{
    Manager().ClearClipboard();
    QMimeData drag;
    drag.setText("node");
    EXPECT_FALSE(Manager().HasValue(&drag));
    Manager().PutValue(17'101, &drag);
    EXPECT_EQ(Manager().GetValue(&drag), 17'101u);
    EXPECT_EQ(drag.text(), "node");
    EXPECT_FALSE(Manager().HasValue()) << "the clipboard is not touched";
    drag.setData(Manager().FormatName(), "123"); // cut off on its way
    EXPECT_EQ(Manager().GetValue(&drag), 0u);
    EXPECT_TRUE(QRegularExpression("^NCDF:Ek Wave Editor:[0-9a-f]+$").match(Manager().FormatName()).hasMatch())
        << Manager().FormatName().toStdString();
}

TEST(ClipboardManager, ThePictureFollowsTheDragThroughTheWindows)
{
    QWidget first;
    QWidget second;
    const auto pictureIn = [](const QWidget& window) { return window.findChild<QLabel*>(); };
    Manager().BeginDrag(0, {});
    Manager().DragEnter(first, {5, 5});
    EXPECT_EQ(pictureIn(first), nullptr) << "there are no images";

    QPixmap red(16, 16);
    red.fill(Qt::red);
    Manager().SetDragImageList(std::make_unique<DragImageList>(DragImageList{QPixmap(8, 8), red}));
    EXPECT_TRUE(Manager().HasDragImage());
    Manager().BeginDrag(2, {});
    Manager().DragEnter(first, {5, 5});
    EXPECT_EQ(pictureIn(first), nullptr) << "no such image";
    Manager().BeginDrag(1, {3, 4});
    Manager().DragEnter(first, {50, 60});
    ASSERT_NE(pictureIn(first), nullptr);
    EXPECT_EQ(pictureIn(first)->geometry(), QRect(47, 56, 16, 16));
    Manager().DragMove({70, 60});
    EXPECT_EQ(pictureIn(first)->pos(), QPoint(67, 56));
    Manager().DragEnter(second, {10, 10});
    EXPECT_EQ(pictureIn(first), nullptr);
    EXPECT_NE(pictureIn(second), nullptr);
    Manager().DragLeave();
    EXPECT_EQ(pictureIn(second), nullptr);
    {
        QWidget passing;
        Manager().DragEnter(passing, {});
    }
    Manager().DragMove({1, 1}); // its window has gone
    Manager().DragEnter(first, {1, 1});
    Manager().SetDragImageList(nullptr);
    EXPECT_EQ(pictureIn(first), nullptr);
    EXPECT_FALSE(Manager().HasDragImage());
}

TEST(ClipboardManagerDeathTest, TheImagesGoWithTheApplicationObject)
{
    GTEST_FLAG_SET(death_test_style, "threadsafe"); // another process, whose application may go
    const auto end = [] {
        Manager().SetDragImageList(std::make_unique<DragImageList>(DragImageList{QPixmap(8, 8)}));
        static_cast<QApplication*>(qApp)->~QApplication();
        std::_Exit(Manager().HasDragImage() ? 1 : 0);
    };
    EXPECT_EXIT(end(), testing::ExitedWithCode(0), "");
}

} // namespace
} // namespace ek
