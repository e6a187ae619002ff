// SPDX-License-Identifier: GPL-3.0-or-later
#include "host/HeardDisplay.h"
#include "host/TransportActions.h"
#include "host/TransportBar.h"
#include "host/TransportKeys.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <QAction>
#include <QApplication>
#include <QComboBox>
#include <QDialog>
#include <QLineEdit>
#include <QMainWindow>
#include <QMenu>
#include <QPushButton>
#include <QSlider>
#include <QTest>
#include <QToolButton>
#include <QVBoxLayout>
#include <QWindow>

namespace ek {
namespace {

using testing::ElementsAre;
using testing::IsEmpty;

constexpr uint32_t Range = 1000;

/// A window with a transport, whose player is whatever the test says.
class TransportTest : public testing::Test {
protected:
    TransportTest()
    {
        m_window.addToolBar(Qt::BottomToolBarArea, &m_bar);
        m_window.addAction(m_actions.Loop());
        m_window.setCentralWidget(&m_page);
        m_page.setFocusPolicy(Qt::StrongFocus);
        new QVBoxLayout(&m_page);
        QObject::connect(&m_actions, &TransportActions::CommandChosen,
                         [this](uint32_t command) { m_commands.push_back(command); });
        QObject::connect(&m_actions, &TransportActions::LoopChosen, [this](bool on) { m_loops.push_back(on); });
        QObject::connect(&m_bar, &TransportBar::SeekWanted, [this](int percent) { m_seeks.push_back(percent); });
        m_actions.AssignKeys([](int, Qt::KeyboardModifiers) { return true; });
        m_window.resize(1200, 300);
        m_window.show();
        m_window.activateWindow();
        Focus(m_page);
    }

    void Focus(QWidget& widget)
    {
        widget.setFocus();
        QCoreApplication::processEvents();
        ASSERT_EQ(QApplication::focusWidget(), &widget);
    }

    void Play(int device, uint32_t progress = 0)
    {
        Show({.Device = device, .CanPlay = true, .Progress = progress, .ProgressRange = Range});
    }

    void Show(const TransportState& state)
    {
        m_actions.Show(state);
        m_bar.Show(state);
    }

    void Press(int key, Qt::KeyboardModifiers modifiers = Qt::NoModifier)
    {
        QTest::keyClick(m_window.windowHandle(), static_cast<Qt::Key>(key), modifiers);
    }

    std::vector<uint32_t> Take() { return std::exchange(m_commands, {}); }

    std::vector<uint32_t> EnabledCommands() const
    {
        std::vector<uint32_t> enabled;
        for (const TransportCommand command : {TransportToStart, TransportBack, TransportPlay, TransportPause,
                                               TransportStop, TransportForward, TransportToEnd, TransportRecord}) {
            if (m_actions.Of(command)->isEnabled())
                enabled.push_back(command);
        }
        return enabled;
    }

    QSlider& Slider() { return *m_bar.findChild<QSlider*>(); }

    QPoint OnSlider(int percent)
    {
        const int margin = 7;
        return {margin + (Slider().width() - 2 * margin) * percent / 100, Slider().height() / 2};
    }

    QMainWindow m_window;
    QWidget m_page;
    TransportActions m_actions{nullptr};
    TransportKeys m_keys;
    TransportBar m_bar{m_actions, nullptr};
    std::vector<uint32_t> m_commands;
    std::vector<int> m_seeks;
    std::vector<bool> m_loops;
};

TEST_F(TransportTest, ButtonsAreEnabledWhereTheirCommandsMeanSomething)
{
    Show({});
    EXPECT_THAT(EnabledCommands(), IsEmpty());
    Show({.CanPlay = true, .CanRecord = true});
    EXPECT_THAT(EnabledCommands(), ElementsAre(TransportToStart, TransportBack, TransportPlay, TransportForward,
                                               TransportToEnd, TransportRecord));
    EXPECT_FALSE(Slider().isEnabled());
    for (const int device : {CHostAudioDevice::Running, CHostAudioDevice::Paused}) {
        Play(device);
        EXPECT_THAT(EnabledCommands(), ElementsAre(TransportToStart, TransportBack, TransportPlay, TransportPause,
                                                   TransportStop, TransportForward, TransportToEnd));
        EXPECT_TRUE(Slider().isEnabled());
        EXPECT_EQ(m_actions.Of(TransportPause)->isChecked(), device == CHostAudioDevice::Paused);
    }
    Show({.Device = CHostAudioDevice::Running});
    EXPECT_FALSE(m_actions.Of(TransportPlay)->isEnabled()) << "another module plays";
}

TEST_F(TransportTest, EveryButtonSendsItsCommand)
{
    Show({.Device = CHostAudioDevice::Running, .CanPlay = true, .CanRecord = true, .ProgressRange = Range});
    m_actions.SetIcons(Qt::black);
    for (QToolButton* button : m_bar.findChildren<QToolButton*>()) {
        if (!button->defaultAction())
            continue;
        EXPECT_FALSE(button->icon().isNull()) << button->text().toStdString();
        EXPECT_FALSE(button->toolTip().isEmpty());
        button->click();
    }
    EXPECT_THAT(Take(), testing::UnorderedElementsAre(13000, 13005, 13010, 13015, 13020, 13025, 13030, 13090));
    EXPECT_THAT(m_loops, ElementsAre(true));
    Show({.IsLoop = true});
    m_actions.Loop()->trigger();
    EXPECT_THAT(m_loops, ElementsAre(true, false));
}

TEST_F(TransportTest, TheSpaceBarPlaysAndStops)
{
    Play(CHostAudioDevice::Stopped);
    Press(Qt::Key_Space);
    EXPECT_THAT(Take(), ElementsAre(TransportPlay));
    Play(CHostAudioDevice::Running);
    Press(Qt::Key_Space);
    EXPECT_THAT(Take(), ElementsAre(TransportStop));
    Press(Qt::Key_Space, Qt::ShiftModifier);
    Press(Qt::Key_Space, Qt::ControlModifier);
    EXPECT_THAT(Take(), ElementsAre(TransportPause, TransportPause));
    Play(CHostAudioDevice::Paused);
    Press(Qt::Key_Space);
    EXPECT_THAT(Take(), ElementsAre(TransportPlay));
    Show({});
    Press(Qt::Key_Space);
    EXPECT_THAT(Take(), IsEmpty());
}

TEST_F(TransportTest, JumpsHaveTheirKeysWhereverThereIsSomethingToPlay)
{
    const auto pressAll = [this] {
        Press(Qt::Key_Home);
        Press(Qt::Key_Left, Qt::ControlModifier);
        Press(Qt::Key_Right, Qt::ControlModifier);
        Press(Qt::Key_End);
    };
    Show({});
    pressAll();
    EXPECT_THAT(Take(), IsEmpty());
    for (const int device : {CHostAudioDevice::Stopped, CHostAudioDevice::Running}) {
        Play(device);
        pressAll();
        EXPECT_THAT(Take(), ElementsAre(TransportToStart, TransportBack, TransportForward, TransportToEnd));
    }
    Press(Qt::Key_L);
    EXPECT_THAT(m_loops, ElementsAre(true));
}

TEST_F(TransportTest, AKeyOfTheModuleIsNotTaken)
{
    m_actions.AssignKeys([](int key, Qt::KeyboardModifiers modifiers) {
        return !(key == Qt::Key_Space && modifiers != Qt::ControlModifier) && key != Qt::Key_Home;
    });
    Play(CHostAudioDevice::Stopped);
    Press(Qt::Key_Space);
    Play(CHostAudioDevice::Running);
    Press(Qt::Key_Space);
    Press(Qt::Key_Space, Qt::ShiftModifier);
    Press(Qt::Key_Home);
    EXPECT_THAT(Take(), IsEmpty());
    Press(Qt::Key_Space, Qt::ControlModifier);
    EXPECT_THAT(Take(), ElementsAre(TransportPause));
    EXPECT_EQ(m_actions.Of(TransportPause)->toolTip(), "Pause (Ctrl+Space)");
    EXPECT_EQ(m_actions.Of(TransportPlay)->toolTip(), "Play");
}

TEST_F(TransportTest, WidgetsThatNeedAKeyKeepIt)
{
    QLineEdit edit("abc", &m_page);
    QComboBox box(&m_page);
    box.addItems({"one", "Last"});
    QPushButton button(&m_page);
    for (QWidget* widget : std::initializer_list<QWidget*>{&edit, &box, &button})
        m_page.layout()->addWidget(widget);
    Play(CHostAudioDevice::Running);

    Focus(edit);
    Press(Qt::Key_Home);
    QTest::keyClick(m_window.windowHandle(), Qt::Key_Space);
    QTest::keyClick(m_window.windowHandle(), Qt::Key_L);
    Press(Qt::Key_Right, Qt::ControlModifier);
    EXPECT_EQ(edit.text(), " labc");
    Focus(box);
    Press(Qt::Key_L);
    EXPECT_EQ(box.currentText(), "Last");
    Press(Qt::Key_Home);
    EXPECT_EQ(box.currentText(), "one");
    int clicks = 0;
    QObject::connect(&button, &QPushButton::clicked, [&clicks] { ++clicks; });
    Focus(button);
    Press(Qt::Key_Space);
    EXPECT_EQ(clicks, 1);
    EXPECT_THAT(Take(), IsEmpty());
    EXPECT_THAT(m_loops, IsEmpty());

    Press(Qt::Key_Home);
    EXPECT_THAT(Take(), ElementsAre(TransportToStart)) << "which means nothing to a button";

    QDialog dialog(&m_window);
    dialog.show();
    dialog.activateWindow();
    QCoreApplication::processEvents();
    QTest::keyClick(dialog.windowHandle(), Qt::Key_Space);
    EXPECT_THAT(Take(), IsEmpty());
}

TEST_F(TransportTest, TheSliderFollowsUnlessItIsDragged)
{
    Play(CHostAudioDevice::Running, 250);
    EXPECT_EQ(Slider().value(), 250);
    QTest::mousePress(&Slider(), Qt::LeftButton, {}, OnSlider(50));
    EXPECT_NEAR(Slider().sliderPosition(), 500, 3) << "a press takes the handle along";
    Play(CHostAudioDevice::Running, 300);
    EXPECT_NEAR(Slider().sliderPosition(), 500, 3);
    QTest::mouseMove(&Slider(), OnSlider(80));
    QTest::mouseRelease(&Slider(), Qt::LeftButton, {}, OnSlider(80));
    EXPECT_EQ(m_seeks.back(), 80);
    EXPECT_LE(m_seeks.size(), 3u) << "it may seek on the way";
    Play(CHostAudioDevice::Running, 820);
    EXPECT_EQ(Slider().value(), 820);
    EXPECT_EQ(m_seeks.back(), 80) << "following is not seeking";
    Show({});
    EXPECT_EQ(Slider().value(), 0);
}

TEST_F(TransportTest, ADragDuringAPauseSeeksOnceAndOneThatStoppingEndsNever)
{
    const auto drag = [this] {
        QTest::mousePress(&Slider(), Qt::LeftButton, {}, OnSlider(20));
        QTest::mouseMove(&Slider(), OnSlider(60));
        QTest::mouseMove(&Slider(), OnSlider(30));
    };
    Play(CHostAudioDevice::Paused, 100);
    drag();
    EXPECT_THAT(m_seeks, IsEmpty());
    Show({.CanPlay = true, .ProgressRange = Range});
    QTest::mouseRelease(&Slider(), Qt::LeftButton, {}, OnSlider(30));
    EXPECT_THAT(m_seeks, IsEmpty());

    Play(CHostAudioDevice::Paused, 100);
    drag();
    QTest::mouseRelease(&Slider(), Qt::LeftButton, {}, OnSlider(30));
    EXPECT_THAT(m_seeks, ElementsAre(30));
    Focus(Slider());
    Play(CHostAudioDevice::Running, 500);
    Press(Qt::Key_Right);
    Press(Qt::Key_End);
    EXPECT_THAT(m_seeks, ElementsAre(30, 51, 100));
}

TEST_F(TransportTest, TheTimeIsWhatWasHeard)
{
    Show({.Device = CHostAudioDevice::Paused, .HeardMilliseconds = 3723004});
    EXPECT_EQ(m_bar.findChild<HeardDisplay*>()->Text(), "1:02:03,004");
    EXPECT_EQ(HeardText(100ULL * 3600 * 1000 - 1), "99:59:59,999");
}

} // namespace
} // namespace ek
