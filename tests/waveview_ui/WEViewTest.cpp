// SPDX-License-Identifier: GPL-3.0-or-later
#include "ViewFixture.h"

#include <QLabel>
#include <QToolButton>

#include <random>

namespace ek {
namespace {

class WEView : public ViewFixture {
protected:
    std::vector<uint32_t> EnabledCommands()
    {
        std::vector<uint32_t> enabled;
        for (const CommandEntry& entry : View.CommandTable()) {
            CommandUi ui{.Id = entry.FirstId};
            View.OnCmdMsg(entry.FirstId, CN_UPDATE_COMMAND_UI, &ui);
            if (ui.Enabled)
                enabled.push_back(entry.FirstId);
        }
        return enabled;
    }
    /// Whatever this test pressed before.
    void MoveWithRightButton(QPoint place)
    {
        QMouseEvent event(QEvent::MouseMove, place, View.mapToGlobal(place), Qt::NoButton, Qt::RightButton, {});
        QCoreApplication::sendEvent(&View, &event);
    }
};

TEST_F(WEView, ANewSoundIsShownWholeInTheSizeThatTheViewGets)
{
    Load(100'000, 2);
    View.resize(200, 200);
    Show(1500);
    const auto width = static_cast<uint64_t>(Geometry().WavePanelWidth);
    EXPECT_GE(Geometry().Span(), 100'000u);
    EXPECT_LT(width * Geometry().FramesPerPixel / 2, 100'000u);
    EXPECT_EQ(View.findChild<QLabel*>()->text(), QString("1:%1").arg(Geometry().FramesPerPixel));
    EXPECT_EQ(ActiveFormat, Sound.Format());

    const uint32_t before = Geometry().FramesPerPixel;
    View.resize(WindowWidth / 4, 400); // seen already: the zoom stays
    EXPECT_EQ(Geometry().FramesPerPixel, before);
}

TEST_F(WEView, AnEmptyDocumentShowsWorkspaceAndOffersNothing)
{
    View.OnInitialUpdate();
    Show();
    const QPoint middle = MiddleOf(View.Places().Wave);
    EXPECT_EQ(View.grab().toImage().pixelColor(middle), SkinColorOf(COLOR_EDITOR_WORKSPACE));
    EXPECT_FALSE(Bar(Qt::Horizontal).isEnabled());
    EXPECT_FALSE(View.findChild<QToolButton*>()->isEnabled());
    const std::vector<uint32_t> always = {ID_SELECT_BACK_LEFT}; // and the like
    EXPECT_EQ(EnabledCommands(), always);
    Wheel(middle, {0, 120});
    QTest::mouseClick(&View, Qt::LeftButton, {}, MiddleOf(View.Places().Overview));
    EXPECT_EQ(Geometry().CursorFrame, WaveGeometry::NoFrame);

    Load(100'000, 2);
    Sound.Notify({.What = DocumentChange::Kind::Reset});
    EXPECT_EQ(ActiveFormat.nChannels, 2);
    Run(ID_ZOOM_IN);
    EXPECT_EQ(EnabledCommands().size(),
              View.CommandTable().size() - 12); // no selection, clipboard or history; all lanes, full scale
    Sound.DeleteContents();
    ASSERT_TRUE(Sound.SetFormat(MakePcm16Format(44100, 2), nullptr)); // no frames, but channels
    EXPECT_EQ(View.findChild<QLabel*>()->text(), "1:1");
    EXPECT_EQ(EnabledCommands(), (std::vector<uint32_t>{ID_ZOOM_IN_VERTICAL, ID_SCALE_IN, ID_CENTER_VIEW, ID_SCALE_FULL,
                                                        ID_OVERVIEW, ID_SELECT_BACK_LEFT}));
    Load(100'000, 2);
    Sound.Notify({.What = DocumentChange::Kind::Reset});
    Run(ID_ZOOM_IN);
    Sound.DeleteContents(); // the view does not know yet
    EXPECT_EQ(EnabledCommands(), always);
}

TEST_F(WEView, ZoomCommandsFollowTheirUpdateRules)
{
    Load(300, 1); // shorter than the panel
    Show();
    EXPECT_EQ(Geometry().FramesPerPixel, 1u);
    EXPECT_FALSE(Run(ID_ZOOM_IN));
    EXPECT_FALSE(Run(ID_ZOOM_OUT));
    EXPECT_TRUE(Run(ID_ZOOM_RATIO_FIRST + 3));
    EXPECT_EQ(Geometry().FramesPerPixel, 8u);
    EXPECT_TRUE(Run(ID_ZOOM_IN));
    EXPECT_EQ(Geometry().FramesPerPixel, 4u);
    // 75 columns of data, then workspace
    const QImage image = DrawnImage();
    const Rect& wave = View.Places().Wave;
    EXPECT_EQ(image.pixelColor(wave.Left + 74, wave.Top), SkinColorOf(COLOR_EDITOR_WAVE_BG));
    EXPECT_EQ(image.pixelColor(wave.Left + 75, wave.Top), SkinColorOf(COLOR_EDITOR_WORKSPACE));
}

TEST_F(WEView, WheelZoomsAtThePointerAlsoInFractionsOfANotch)
{
    Load(200'000, 1);
    Show();
    const uint32_t whole = Geometry().FramesPerPixel;
    const QPoint place(View.Places().Wave.Left + 50, 200);
    const auto frame = static_cast<double>(Geometry().XToFrame(place.x()));
    for (int i = 0; i < 16; ++i)
        Wheel(place, {0, 30}); // a touchpad's four notches
    EXPECT_EQ(Geometry().FramesPerPixel, whole / 16);
    EXPECT_NEAR(static_cast<double>(Geometry().XToFrame(place.x())), frame, 2.0 * whole);
    Wheel(place, {0, -240});
    EXPECT_EQ(Geometry().FramesPerPixel, whole / 4);

    const QPoint overBar = MiddleOf(View.Places().HorizontalBar);
    for (const auto end : {QAbstractSlider::SliderToMinimum, QAbstractSlider::SliderToMaximum}) {
        Bar(Qt::Horizontal).triggerAction(end);
        const auto shown = static_cast<double>(Geometry().XToFrame(overBar.x()));
        Wheel(overBar, {0, 120});
        EXPECT_EQ(Geometry().FramesPerPixel, whole / 8);
        EXPECT_NEAR(static_cast<double>(Geometry().XToFrame(overBar.x())), shown, whole);
        Wheel(overBar, {0, -120});
        EXPECT_EQ(Geometry().FramesPerPixel, whole / 4);
    }
    Wheel(MiddleOf(View.Places().VerticalBar), {0, -120});
    EXPECT_EQ(Geometry().FramesPerPixel, whole / 2);
}

TEST_F(WEView, ShiftAndTheHorizontalWheelScroll)
{
    Load(200'000, 1);
    Show();
    Run(ID_ZOOM_RATIO_FIRST);
    const QPoint place = MiddleOf(View.Places().Wave);
    const uint64_t notch = 3 * Geometry().LineStep();
    Wheel(place, {0, -120}, Qt::ShiftModifier);
    EXPECT_EQ(Geometry().FirstVisibleFrame, notch);
    Wheel(place, {-60, 10});
    Wheel(place, {-60, 0});
    EXPECT_EQ(Geometry().FirstVisibleFrame, 2 * notch);
    EXPECT_EQ(Geometry().FramesPerPixel, 1u);
    Wheel(place, {0, 12'000}, Qt::ShiftModifier);
    EXPECT_EQ(Geometry().FirstVisibleFrame, 0u);
}

TEST_F(WEView, HorizontalScrollBarMovesByStepPageAndToBothEnds)
{
    Load(100'001, 1);
    Show();
    Run(ID_ZOOM_RATIO_FIRST + 2);
    QScrollBar& bar = Bar(Qt::Horizontal);
    const auto width = static_cast<int>(Geometry().WavePanelWidth);
    EXPECT_EQ(bar.maximum(), 25'001 - width);
    EXPECT_EQ(bar.pageStep(), width);
    bar.triggerAction(QAbstractSlider::SliderSingleStepAdd);
    EXPECT_EQ(Geometry().FirstVisibleFrame, 4u * static_cast<uint64_t>(width / 20));
    bar.triggerAction(QAbstractSlider::SliderToMaximum);
    EXPECT_EQ(Geometry().FirstVisibleFrame, 4u * static_cast<uint64_t>(25'001 - width));
    bar.triggerAction(QAbstractSlider::SliderPageStepSub);
    EXPECT_EQ(Geometry().FirstVisibleFrame, 4u * static_cast<uint64_t>(25'001 - 2 * width));
}

TEST_F(WEView, VerticalZoomAndScrollBarShowMoreOrFewerChannels)
{
    Load(1000, 6);
    Show();
    EXPECT_EQ(Sound.VisibleChannelCount, 6u);
    EXPECT_FALSE(Run(ID_ZOOM_OUT_VERTICAL));
    for (int i = 0; i < 4; ++i)
        EXPECT_TRUE(Run(ID_ZOOM_IN_VERTICAL));
    EXPECT_EQ(Bar(Qt::Vertical).maximum(), 4);
    Bar(Qt::Vertical).setValue(4);
    EXPECT_EQ(Sound.FirstVisibleChannel, 4u);
    Run(ID_ZOOM_OUT_VERTICAL); // at the last channel: the first one moves up
    EXPECT_EQ(Sound.FirstVisibleChannel, 3u);
    EXPECT_EQ(Bar(Qt::Vertical).value(), 3);
}

TEST_F(WEView, AmplitudePanelScalesByWheelAndShiftsByDragging)
{
    Load(1000, 4);
    Show();
    const QPoint place = MiddleOf(View.Places().Amplitude);
    Wheel(place, {0, 120});
    EXPECT_EQ(Sound.AmplitudeScale, 80u);
    EXPECT_TRUE(Run(ID_SCALE_IN));
    const auto limit = [this](int scale) {
        const int half = View.Places().Wave.Height() / 4 / 2 - 5;
        return half * 100 / scale - half;
    };

    QTest::mousePress(&View, Qt::LeftButton, {}, place);
    QTest::mouseMove(&View, place + QPoint(0, 10));
    EXPECT_EQ(View.VerticalOffset(), 10);
    QTest::mouseMove(&View, place + QPoint(0, 3000));
    const int offset = limit(60);
    EXPECT_EQ(View.VerticalOffset(), offset);
    QTest::mouseRelease(&View, Qt::LeftButton, {}, place);

    const QImage before = DrawnImage();
    View.resize(WindowWidth, 180); // what the lanes cannot show now is not forgotten
    const Rect low = Lanes{View.Places().Wave, 0, 4}.Lane(0);
    ASSERT_LT(limit(60), offset);
    EXPECT_EQ(DrawnImage().pixelColor(low.Left, (low.Top + low.Bottom) / 2 + limit(60)),
              SkinColorOf(COLOR_EDITOR_WAVE_HOR_LINES));
    View.resize(WindowWidth, 400);
    EXPECT_EQ(DrawnImage(), before);

    auto* button = View.findChild<QToolButton*>();
    QTest::mouseClick(button, Qt::LeftButton);
    EXPECT_TRUE(button->isChecked());
    EXPECT_EQ(View.Places().Overview.Height(), 12 * 4 + 2);
    EXPECT_LT(View.VerticalOffset(), offset);
    EXPECT_EQ(View.VerticalOffset(), limit(60));
    QTest::mouseClick(button, Qt::LeftButton);
    EXPECT_FALSE(button->isChecked());
    EXPECT_EQ(View.Places().Overview.Height(), 16);
    EXPECT_LT(View.VerticalOffset(), offset);
    Wheel(place, {0, -120});
    EXPECT_EQ(View.VerticalOffset(), limit(80));
    Run(ID_CENTER_VIEW);
    EXPECT_EQ(View.VerticalOffset(), 0);
    Run(ID_SCALE_FULL);
    EXPECT_EQ(Sound.AmplitudeScale, 100u);
    EXPECT_FALSE(Run(ID_SCALE_OUT));
}

TEST_F(WEView, ADragEndsWithItsButtonAlsoWhenTheReleaseWasLost)
{
    Load(1000, 1);
    Show();
    Run(ID_SCALE_IN);
    const QPoint place = MiddleOf(View.Places().Amplitude);
    const auto offsetAfterDragInterruptedBy = [&](const std::function<void()>& interrupt) {
        Run(ID_CENTER_VIEW);
        QTest::mousePress(&View, Qt::LeftButton, {}, place);
        interrupt();
        QTest::mouseMove(&View, place + QPoint(0, 9));
        return View.VerticalOffset();
    };
    const auto send = [this](QEvent::Type type) {
        QEvent event(type);
        QCoreApplication::sendEvent(&View, &event);
    };
    EXPECT_EQ(offsetAfterDragInterruptedBy([&] { EXPECT_EQ(MenuAt(place), nullptr); }), 9);
    EXPECT_EQ(offsetAfterDragInterruptedBy([&] { MoveWithRightButton(place + QPoint(0, 5)); }), 0);
    EXPECT_EQ(offsetAfterDragInterruptedBy([&] { send(QEvent::WindowDeactivate); }), 0);
    EXPECT_EQ(offsetAfterDragInterruptedBy([&] { View.hide(); }), 0);
    View.show();
    const auto pressAgain = [&] { QTest::mousePress(&View, Qt::LeftButton, {}, place + QPoint(0, 4)); };
    EXPECT_EQ(offsetAfterDragInterruptedBy(pressAgain), 5);
    const auto newSound = [&] {
        Sound.Notify({.What = DocumentChange::Kind::Reset});
        Run(ID_SCALE_IN);
    };
    EXPECT_EQ(offsetAfterDragInterruptedBy(newSound), 0);
    QTest::mouseRelease(&View, Qt::LeftButton, {}, place);
    EXPECT_NE(MenuAt(place), nullptr);
}

TEST_F(WEView, TheCursorBlinksAndIsLitWhereItWasPut)
{
    Load(2000, 1);
    Show();
    Run(ID_ZOOM_RATIO_FIRST);
    ASSERT_TRUE(QTest::qWaitForWindowExposed(&View));
    PaintedRegion painted(View);
    const auto blink = [this] { Fire("Blink"); };
    const auto place = [this] {
        return QPoint(static_cast<int>(Geometry().FrameToX(Geometry().CursorFrame)), View.Places().Wave.Top + 1);
    };
    const QRgb dark = SkinColorOf(COLOR_EDITOR_WAVE_BG).rgb();
    for (const int x : {400, 60}) { // the second one while the cursor is dark
        QTest::mouseClick(&View, Qt::LeftButton, {}, {x, 8});
        EXPECT_EQ(DrawnImage().pixel(place()), dark ^ 0xFFFFFF) << x;
        painted.Take();
        blink();
        EXPECT_TRUE(painted.Take().contains(place()));
        EXPECT_EQ(DrawnImage().pixel(place()), dark) << x;
    }
    blink();
    EXPECT_EQ(DrawnImage().pixel(place()), dark ^ 0xFFFFFF);
}

TEST_F(WEView, OverviewMovesTheCursorAndDragsTheVisibleRange)
{
    Load(1'000'000, 2);
    Show();
    Run(ID_ZOOM_RATIO_FIRST + 5);
    const Rect strip = View.Places().Overview;
    QTest::mouseClick(&View, Qt::LeftButton, {}, MiddleOf(strip));
    EXPECT_NEAR(static_cast<double>(Geometry().CursorFrame), 479'000, 3000); // the data starts at the inset
    EXPECT_GT(Geometry().FirstVisibleFrame, 400'000u);

    const uint64_t before = Geometry().FirstVisibleFrame;
    const QPoint box(static_cast<int>(OverviewStrip{strip, 28}.FrameToX(before + 2000, 1'000'000)), 8);
    QTest::mousePress(&View, Qt::LeftButton, {}, box);
    QTest::mouseMove(&View, box + QPoint(50, 100));
    QTest::mouseRelease(&View, Qt::LeftButton, {}, box);
    EXPECT_EQ(Geometry().FirstVisibleFrame, (before + 50u * 1'000'000 / strip.Width()) / 32 * 32);
}

TEST_F(WEView, AfterAnyScrollTheColumnsShownAreThoseOfTheSound)
{
    Load(60'000, 1);
    Show();
    std::mt19937 random(7);
    QScrollBar& bar = Bar(Qt::Horizontal);
    for (int i = 0; i < 200; ++i) {
        if (random() % 4 == 0)
            Run(ID_ZOOM_RATIO_FIRST + random() % 8);
        bar.setValue(static_cast<int>(random() % static_cast<unsigned>(bar.maximum() + 1)));
        const uint64_t first = Geometry().FirstVisibleFrame;
        ASSERT_EQ(first % Geometry().FramesPerPixel, 0u);
        const int16_t value = Sound.Store().SampleAt(first);
        const PeakPair column = Sound.Columns().Columns(0)[0];
        ASSERT_LE(column.Min, value);
        ASSERT_GE(column.Max, value);
        ASSERT_TRUE(Geometry().FramesPerPixel > 1 || column.Min == column.Max);
    }
}

TEST_F(WEView, TheRatioMenuDisablesWhatWouldShowTooLittle)
{
    Load(10'000, 1);
    Show();
    QTest::mousePress(View.findChild<QLabel*>(), Qt::LeftButton);
    auto* menu = View.findChild<QMenu*>();
    ASSERT_NE(menu, nullptr);
    ASSERT_EQ(menu->actions().size(), 20);
    EXPECT_FALSE(menu->actions().first()->isEnabled());
    EXPECT_TRUE(menu->actions().last()->isEnabled());
    menu->actions().last()->trigger();
    EXPECT_EQ(Geometry().FramesPerPixel, 1u);
}

} // namespace
} // namespace ek
