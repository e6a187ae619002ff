// SPDX-License-Identifier: GPL-3.0-or-later
#include "ViewFixture.h"

#include "resources/Cursors.h"
#include "waveview/ui/WaveCursors.h"

#include <random>
#include <set>

namespace ek {
namespace {

class Selecting : public ViewFixture {
protected:
    /// A sound at `ratio` frames a column, whose columns from the left edge on are multiples of it.
    void ShowAt(uint64_t frames, uint32_t channels, uint32_t ratio)
    {
        Load(frames, channels);
        Show();
        while (Geometry().FramesPerPixel > ratio)
            Run(ID_ZOOM_IN);
        ASSERT_EQ(Geometry().FramesPerPixel, ratio);
    }
    Frames Range(uint64_t from, uint64_t to) const { return {from, to}; }
};

TEST_F(Selecting, ADragInEitherDirectionEndsInOrderWithTheCursorAtThePointer)
{
    ShowAt(100'000, 1, 8);
    Press(At(100, 0.5));
    EXPECT_EQ(Selection(), Range(800, 800));
    EXPECT_EQ(Geometry().CursorFrame, 800u);
    Move(At(150, 0.5));
    EXPECT_EQ(Selection(), Range(800, 1200));
    Move(At(40, 0.5));
    EXPECT_EQ(Selection(), Range(800, 320)) << "the end follows the pointer";
    Release(At(40, 0.5));
    EXPECT_EQ(Selection(), Range(320, 800));
    EXPECT_EQ(Geometry().CursorFrame, 320u);
    EXPECT_TRUE(IsEnabled(ID_FIT_SELECTION));
    Move(At(300, 0.5));
    EXPECT_EQ(Selection(), Range(320, 800)) << "the button is up";
    Drag(At(10, 0.5), At(5000, 0.5));
    EXPECT_EQ(Selection(), Range(80, static_cast<uint64_t>(Geometry().WavePanelWidth) * 8)) << "to the edge";
    QTest::mouseClick(&View, Qt::LeftButton, {}, At(20, 0.5));
    EXPECT_EQ(Selection(), Range(160, 160));
}

TEST_F(Selecting, NothingIsSelectedBeyondTheEndOfTheSound)
{
    ShowAt(300, 1, 1);
    Press(At(400, 0.5));
    EXPECT_EQ(Selection(), Range(300, 300));
    Move(At(250, 0.5));
    Move(At(500, 0.5));
    EXPECT_EQ(Selection(), Range(300, 300));
    Move(At(-90, -2.0));
    Release(At(-90, -2.0));
    EXPECT_EQ(Selection(), Range(0, 300));
    View.resize(WindowWidth, 400);
    Sound.DeleteContents();
    Sound.Notify({.What = DocumentChange::Kind::Reset});
    Drag(At(5, 0.5), At(50, 0.5));
    EXPECT_EQ(Geometry().CursorFrame, WaveGeometry::NoFrame);
}

TEST_F(Selecting, ShiftMovesTheNearerEnd)
{
    ShowAt(100'000, 1, 8);
    const auto shiftClick = [this](int column) {
        QTest::mouseClick(&View, Qt::LeftButton, Qt::ShiftModifier, At(column, 0.5));
        return Selection();
    };
    EXPECT_EQ(shiftClick(50), Range(400, 400)) << "there is neither cursor nor selection";
    EXPECT_EQ(shiftClick(150), Range(400, 1200)) << "from the cursor";
    EXPECT_EQ(shiftClick(60), Range(480, 1200));
    EXPECT_EQ(shiftClick(140), Range(480, 1120));
    EXPECT_EQ(shiftClick(10), Range(80, 1120));
    EXPECT_EQ(shiftClick(300), Range(80, 2400));
    Press(At(290, 0.5), Qt::ShiftModifier);
    Move(At(5, 0.5));
    Release(At(5, 0.5));
    EXPECT_EQ(Selection(), Range(40, 80)) << "dragged past the other end";
}

TEST_F(Selecting, TheLaneUnderThePointerIsTheChannel)
{
    ShowAt(100'000, 2, 8);
    Press(At(100, 0.1));
    EXPECT_EQ(Geometry().SelectionChannel, ChannelLeft);
    Move(At(120, 0.5));
    EXPECT_EQ(Geometry().SelectionChannel, ChannelAll);
    Move(At(140, 5.0)); // far below the panel
    EXPECT_EQ(Geometry().SelectionChannel, ChannelRight);
    Release(At(140, 5.0));
    // Only the lower lane is inverted.
    const QImage selected = DrawnImage();
    const uint64_t end = Geometry().SelectionEnd;
    QTest::mouseClick(&View, Qt::LeftButton, {}, At(600, 0.9));
    const QImage plain = DrawnImage();
    const Rect& wave = View.Places().Wave;
    const int x = wave.Left + 110;
    ASSERT_EQ(end, 1120u);
    EXPECT_EQ(selected.pixel(x, wave.Top + 3), plain.pixel(x, wave.Top + 3));
    EXPECT_EQ(selected.pixel(x, wave.Bottom - 4), plain.pixel(x, wave.Bottom - 4) ^ 0xFFFFFF);

    for (const ChannelCode code : {ChannelAll, ChannelLeft, ChannelRight, ChannelAll}) {
        Run(ID_NEXT_CHANNEL);
        EXPECT_EQ(Geometry().SelectionChannel, code);
    }
}

TEST_F(Selecting, WhileThePointerIsBesideThePanelTheViewScrollsTenColumnsAtATime)
{
    ShowAt(20'000, 1, 4);
    QTimer& timer = Timer("AutoScroll");
    const auto width = static_cast<uint64_t>(Geometry().WavePanelWidth);
    EXPECT_EQ(timer.interval(), 10);
    EXPECT_FALSE(timer.isActive());
    Press(At(50, 0.5));
    EXPECT_TRUE(timer.isActive());
    Fire("AutoScroll");
    EXPECT_EQ(Geometry().FirstVisibleFrame, 0u) << "inside";
    const QPoint right = At(static_cast<int>(width) + 3, 0.5);
    Move(right);
    Fire("AutoScroll");
    Fire("AutoScroll");
    EXPECT_EQ(Geometry().FirstVisibleFrame, 80u);
    EXPECT_EQ(Selection(), Range(200, 80 + width * 4 - 1));
    EXPECT_EQ(Geometry().CursorFrame, Geometry().SelectionEnd);
    Move(At(static_cast<int>(width) + 3, 1.5));
    Fire("AutoScroll");
    EXPECT_EQ(Geometry().FirstVisibleFrame, 80u) << "below the panel";
    Move(right);
    for (int i = 0; i < 1000; ++i)
        Fire("AutoScroll");
    EXPECT_EQ(Selection(), Range(200, 20'000));
    EXPECT_EQ(Geometry().Position(), Geometry().MaxPosition());
    Move(At(-1, 0.5));
    for (int i = 0; i < 1000; ++i)
        Fire("AutoScroll");
    EXPECT_EQ(Selection(), Range(200, 0));
    EXPECT_EQ(DrawnImage().pixel(View.Places().Wave.Left + 20, View.Places().Wave.Top + 1),
              SkinColorOf(COLOR_EDITOR_WAVE_BG).rgb() ^ 0xFFFFFF);
    Release(At(-1, 0.5));
    EXPECT_EQ(Selection(), Range(0, 200));
    EXPECT_FALSE(timer.isActive());
}

TEST_F(Selecting, ADoubleClickSelectsTheWholeLengthOfTheChannel)
{
    ShowAt(50'000, 2, 8);
    for (const auto& [row, code] : {std::pair(0.1, ChannelLeft), {0.5, ChannelAll}, {0.9, ChannelRight}}) {
        QTest::mouseDClick(&View, Qt::LeftButton, {}, At(80, row));
        EXPECT_EQ(Selection(), Range(0, 50'000));
        EXPECT_EQ(Geometry().SelectionChannel, code);
        EXPECT_EQ(Geometry().CursorFrame, 50'000u);
        Move(At(200, 0.5));
        EXPECT_EQ(Selection(), Range(0, 50'000)) << "it is no drag";
    }
    const uint64_t first = Geometry().FirstVisibleFrame;
    QTest::mouseDClick(&View, Qt::LeftButton, {}, MiddleOf(View.Places().Overview));
    EXPECT_FALSE(Geometry().HasSelection()) << "two presses there";
    EXPECT_NE(Geometry().FirstVisibleFrame, first);
}

TEST_F(Selecting, SelectionCommandsTakeTheChannelTheyNameWhereTheSoundHasIt)
{
    Load(5000, 8);
    Show();
    Run(ID_SELECT_SIDE_RIGHT);
    EXPECT_EQ(Selection(), Range(0, 5000));
    EXPECT_EQ(Geometry().SelectionChannel, ChannelSideRight);
    for (const uint32_t absent : {ID_SELECT_LEFT, ID_SELECT_BACK_CENTER}) {
        EXPECT_TRUE(IsEnabled(absent));
        Run(absent);
        EXPECT_EQ(Geometry().SelectionChannel, ChannelSideRight);
    }
    Run(ID_SELECT_LOW_FREQUENCY);
    EXPECT_EQ(Geometry().SelectionChannel, ChannelLowFrequency);
    EXPECT_FALSE(IsEnabled(ID_NEXT_CHANNEL)) << "of two channels only";
    Run(ID_SELECT_ALL);
    EXPECT_EQ(Geometry().SelectionChannel, ChannelAll);
}

TEST_F(Selecting, WhateverMovesAllThatLooksDifferentIsPaintedAnew)
{
    Load(200'000, 4);
    Show();
    ASSERT_TRUE(QTest::qWaitForWindowExposed(&View));
    PaintedRegion painted(View);
    std::mt19937 random(3);
    QImage before = DrawnImage();
    painted.Take();
    for (int i = 0; i < 300; ++i) {
        const QPoint place = At(static_cast<int>(random() % 700) - 20, static_cast<double>(random() % 120) / 100);
        switch (random() % 6) {
        case 0:
            Press(place, random() % 2 ? Qt::ShiftModifier : Qt::NoModifier);
            break;
        case 1:
            Release(place);
            break;
        case 2:
            Fire(random() % 2 ? "Blink" : "AutoScroll");
            break;
        case 3:
            Run(random() % 8 ? ID_SELECT_FRONT_LEFT : ID_ZOOM_IN);
            break;
        default:
            Move(place);
        }
        const QRegion region = painted.Take();
        const QImage after = DrawnImage();
        const QRegion panels(0, 0, View.Places().Wave.Right, View.Places().Wave.Bottom); // the rest are widgets
        for (const QRect& rect : panels - region)
            ASSERT_EQ(after.copy(rect), before.copy(rect)) << i;
        before = after;
    }
}

TEST_F(Selecting, ThePointerNamesTheChannelAndShowsWhatCanBeDragged)
{
    Load(200'000, 8);
    Show(WindowWidth, 900);
    Run(ID_ZOOM_IN);
    const uint32_t expected[] = {CURSOR_FRONT_LEFT, CURSOR_FRONT_RIGHT, CURSOR_FRONT_CENTRE, CURSOR_LOW_FREQUENCY,
                                 CURSOR_BACK_LEFT,  CURSOR_BACK_RIGHT,  CURSOR_SIDE_LEFT,    CURSOR_SIDE_RIGHT};
    for (int lane = 0; lane < 8; ++lane) {
        PointAt(At(100, (lane + 0.5) / 8));
        EXPECT_EQ(View.PointerShape(), expected[lane]) << lane;
        EXPECT_FALSE(View.cursor().pixmap().isNull());
    }
    PointAt(At(100, 0.25));
    EXPECT_EQ(View.PointerShape(), CURSOR_ALL_CHANNELS);
    Press(At(100, 0.06));
    EXPECT_EQ(View.PointerShape(), CURSOR_ALL_CHANNELS) << "while selecting";
    Release(At(100, 0.06));
    EXPECT_EQ(View.PointerShape(), CURSOR_FRONT_LEFT);

    const QPoint box(View.Places().Overview.Left + View.Places().OverviewInset + 5, 8);
    for (const QPoint place : {MiddleOf(View.Places().Amplitude), QPoint(box / View.DisplayScale())}) {
        PointAt(place);
        EXPECT_EQ(View.PointerShape(), CURSOR_CAN_DRAG);
        Press(place);
        EXPECT_EQ(View.PointerShape(), CURSOR_DRAGGING);
        Release(place);
        EXPECT_EQ(View.PointerShape(), CURSOR_CAN_DRAG);
    }
    PointAt(MiddleOf(View.Places().Time));
    EXPECT_EQ(View.PointerShape(), 0u);
    EXPECT_EQ(View.cursor().shape(), Qt::ArrowCursor);
    EXPECT_EQ(Bar(Qt::Vertical).cursor().shape(), Qt::ArrowCursor);
}

TEST_F(Selecting, EveryShapeHasADrawingOfItsOwnWithAHotSpotInIt)
{
    std::set<QByteArray> drawings;
    for (const CursorInfo& info : CursorInfos()) {
        const QCursor cursor = LoadCursor(info.Id, 2.0);
        const QImage image = cursor.pixmap().toImage();
        EXPECT_EQ(image.size(), QSize(2 * CursorSize, 2 * CursorSize)) << info.Image;
        EXPECT_EQ(image.pixelColor(2 * info.HotX + 1, 2 * info.HotY + 1).alpha(), 255) << info.Image;
        EXPECT_EQ(cursor.hotSpot(), QPoint(info.HotX, info.HotY));
        drawings.insert(QByteArray(reinterpret_cast<const char*>(image.constBits()), image.sizeInBytes()));
    }
    EXPECT_EQ(drawings.size(), 16u);
    const uint32_t byCode[] = {1034, 1032, 1033, 1042, 1035, 1036, 1037, 1040, 1038, 1048, 1050, 1052, 1044, 1046};
    for (uint32_t code = 0; code < std::size(byCode); ++code)
        EXPECT_EQ(CursorOfChannel(static_cast<ChannelCode>(code)), byCode[code]);
}

} // namespace
} // namespace ek
