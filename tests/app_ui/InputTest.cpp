// SPDX-License-Identifier: GPL-3.0-or-later
#include "FrameFixture.h"

#include "app/ui/AcceleratorKeys.h"
#include "app/ui/MainToolBar.h"
#include "resources/Accelerators.h"
#include "xml/enXml.h"

#include <QComboBox>
#include <QKeyEvent>
#include <QLineEdit>
#include <QMessageBox>
#include <QStatusTipEvent>
#include <QTest>
#include <QToolButton>

namespace ek {
namespace {

class InputTest : public FrameFixture {
protected:
    bool Press(int key, Qt::KeyboardModifiers modifiers, QWidget* receiver = nullptr)
    {
        QKeyEvent event(QEvent::KeyPress, key, modifiers);
        event.ignore();
        const bool translated = m_frame->PreTranslate({receiver ? receiver : m_frame.data(), &event});
        EXPECT_EQ(translated, event.isAccepted());
        return translated;
    }

    QAction* Button(uint32_t id)
    {
        const auto actions = m_frame->findChild<CommandToolBar*>()->findChildren<QAction*>();
        return *std::ranges::find_if(actions, [id](const QAction* action) { return CommandOf(*action) == id; });
    }
};

TEST_F(InputTest, AKeyOfTheTableRunsItsCommandOnceWhilePressed)
{
    EXPECT_FALSE(Press(Qt::Key_V, Qt::ControlModifier)) << "there is no view that handles it";
    QKeyEvent announced(QEvent::ShortcutOverride, Qt::Key_N, Qt::ControlModifier);
    announced.ignore();
    EXPECT_TRUE(m_frame->PreTranslate({m_frame.data(), &announced}));
    EXPECT_TRUE(announced.isAccepted());
    EXPECT_TRUE(m_app.Documents().empty());
    EXPECT_TRUE(Press(Qt::Key_N, Qt::ControlModifier));
    EXPECT_EQ(m_app.Documents().size(), 1U);
    EXPECT_FALSE(Press(Qt::Key_N, Qt::ControlModifier | Qt::AltModifier));
}

TEST_F(InputTest, ShiftedNewSaysThatSessionsAreMissingAndShiftedSaveAsksForAName)
{
    EXPECT_TRUE(Press(Qt::Key_N, Qt::ControlModifier | Qt::ShiftModifier));
    EXPECT_TRUE(m_app.Documents().empty());
    EXPECT_EQ(m_host.Calls.Count("ShowStatusText(Multitrack sessions are not available in this version., 3000)"), 1U);
    EXPECT_FALSE(IsEnabled(ID_NEW_MULTITRACK));
    Open("one.wav");
    EXPECT_TRUE(Press(Qt::Key_S, Qt::ControlModifier | Qt::ShiftModifier));
    ASSERT_EQ(m_prompts.Questions().size(), 1U);
    EXPECT_TRUE(m_prompts.Questions()[0].starts_with("save"));
}

TEST_F(InputTest, ZoomKeysComeFromTheKeypadOnly)
{
    const auto command = [](int key, Qt::KeyboardModifiers modifiers) {
        const Accelerator* found = FindAccelerator(MainAccelerators(), QKeyEvent(QEvent::KeyPress, key, modifiers));
        return found ? found->Command : 0;
    };
    EXPECT_EQ(command(Qt::Key_Plus, Qt::KeypadModifier), ID_ZOOM_IN);
    EXPECT_EQ(command(Qt::Key_Minus, Qt::KeypadModifier), ID_ZOOM_OUT);
    EXPECT_EQ(command(Qt::Key_Asterisk, Qt::KeypadModifier), ID_FIT_SELECTION);
    EXPECT_EQ(command(Qt::Key_Slash, Qt::KeypadModifier), ID_ZOOM_FULL);
    EXPECT_EQ(command(Qt::Key_Plus, Qt::NoModifier), 0U);
    EXPECT_EQ(command(Qt::Key_Backtab, Qt::ControlModifier | Qt::ShiftModifier), ID_PREVIOUS_WINDOW);
    EXPECT_EQ(command(Qt::Key_F4, Qt::ControlModifier), ID_CLOSE_WINDOW);
}

TEST_F(InputTest, FurtherKeysOfTheViewComeAfterThoseOfTheTable)
{
    m_frame->OpenFile(MakeSound("one.wav", 200000));
    const QAction* overview = SubMenu(2)->actions().last();
    EXPECT_TRUE(Press(Qt::Key_O, Qt::ControlModifier | Qt::ShiftModifier));
    emit SubMenu(2)->aboutToShow();
    EXPECT_TRUE(overview->isChecked());
    EXPECT_TRUE(Press(Qt::Key_O, Qt::ControlModifier | Qt::ShiftModifier));
    emit SubMenu(2)->aboutToShow();
    EXPECT_FALSE(overview->isChecked());
    EXPECT_TRUE(Press(Qt::Key_Plus, Qt::ControlModifier | Qt::ShiftModifier)) << "where Shift makes the plus";
    EXPECT_TRUE(IsEnabled(ID_ZOOM_OUT));
    EXPECT_TRUE(Press(Qt::Key_0, Qt::ControlModifier));
    EXPECT_FALSE(IsEnabled(ID_ZOOM_OUT));
    EXPECT_TRUE(Press(Qt::Key_R, Qt::ControlModifier | Qt::ShiftModifier));
    EXPECT_TRUE(IsEnabled(ID_EDIT_CUT)) << "the right channel is selected";
}

TEST_F(InputTest, KeysAreTakenInTheHostsWindowWhileTheModuleIsShownAndNoDialogIsUp)
{
    QWidget other;
    EXPECT_FALSE(Press(Qt::Key_N, Qt::ControlModifier, &other));
    m_frame->ChangeState(false);
    EXPECT_FALSE(Press(Qt::Key_N, Qt::ControlModifier));
    m_frame->ChangeState(true);
    EXPECT_TRUE(Press(Qt::Key_N, Qt::ControlModifier, &m_window));
    QMessageBox box;
    box.setModal(true);
    box.show();
    EXPECT_FALSE(Press(Qt::Key_N, Qt::ControlModifier));
}

TEST_F(InputTest, AFieldForTypingKeepsItsKeys)
{
    const QLineEdit line;
    const QComboBox fixed;
    const QKeyEvent plus(QEvent::KeyPress, Qt::Key_Plus, Qt::KeypadModifier);
    EXPECT_TRUE(IsKeyOfTextEntry(&line, plus));
    EXPECT_TRUE(IsKeyOfTextEntry(&line, QKeyEvent(QEvent::KeyPress, Qt::Key_V, Qt::ControlModifier)));
    EXPECT_FALSE(IsKeyOfTextEntry(&line, QKeyEvent(QEvent::KeyPress, Qt::Key_O, Qt::ControlModifier)));
    EXPECT_FALSE(IsKeyOfTextEntry(&fixed, plus));
    EXPECT_FALSE(IsKeyOfTextEntry(nullptr, plus));
}

TEST_F(InputTest, ButtonsThatWorkAreEnabledInIdleTimeAndMenuLinesAsTheirMenuOpens)
{
    const QAction* save = SubMenu(0)->actions()[2];
    emit SubMenu(0)->aboutToShow();
    EXPECT_FALSE(save->isEnabled());
    m_frame->OnIdle();
    for (const uint32_t id : {ID_FILE_SAVE, ID_CLOSE_WINDOW, ID_NEW_MULTITRACK, ID_EDIT_UNDO, ID_EDIT_CUT, ID_ZOOM_IN})
        EXPECT_FALSE(Button(id)->isEnabled()) << id;
    m_frame->OpenFile(MakeSound("one.wav", 200000));
    m_frame->OnIdle();
    for (const uint32_t id : {ID_FILE_OPEN, ID_FILE_NEW, ID_FILE_SAVE, ID_CLOSE_WINDOW, ID_ZOOM_IN})
        EXPECT_TRUE(Button(id)->isEnabled()) << id;
    EXPECT_FALSE(Button(ID_PASTE_MIX)->isEnabled());
    emit SubMenu(0)->aboutToShow();
    EXPECT_TRUE(save->isEnabled());
}

TEST_F(InputTest, AButtonRunsItsCommandAndAMenuLeavesThatToTheHost)
{
    Button(ID_FILE_NEW)->trigger();
    SubMenu(0)->actions()[0]->trigger();
    EXPECT_EQ(m_app.Documents().size(), 1U);
    EXPECT_EQ(Button(ID_FILE_OPEN)->toolTip(), "Open File (Ctrl+O)");
    EXPECT_EQ(Button(ID_PASTE_MIX)->toolTip(), "Paste Mix (Ctrl+Shift+V)");
}

TEST_F(InputTest, WhatThePointerRestsOnIsToldInTheStatusBar)
{
    EXPECT_EQ(SubMenu(0)->actions()[0]->statusTip(), "New Wave File") << "which the window with the menu shows";
    m_host.Calls.Take();
    for (const QString& text : {Button(ID_FILE_OPEN)->statusTip(), QString()}) {
        QStatusTipEvent pointed(text);
        QCoreApplication::sendEvent(m_frame, &pointed);
    }
    EXPECT_EQ(m_host.Calls.Take(), Names{"ShowStatusText(Open File, 3000)"});
}

TEST_F(InputTest, TheArrowAndTheRightButtonAskForTheHistoryOnlyWhileUndoWorks)
{
    auto* bar = m_frame->findChild<CommandToolBar*>();
    std::vector<uint32_t> asked;
    QObject::connect(bar, &CommandToolBar::HistoryRequested, bar, [&](uint32_t id) { asked.push_back(id); });
    QAction* undo = Button(ID_EDIT_UNDO);
    const auto buttons = bar->findChildren<QToolButton*>();
    auto* button = *std::ranges::find(buttons, undo, &QToolButton::defaultAction);
    undo->setEnabled(false);
    QTest::mouseClick(button, Qt::RightButton, {}, QPoint(3, 8));
    EXPECT_TRUE(asked.empty());
    undo->setEnabled(true);
    QTest::mouseClick(button, Qt::RightButton, {}, QPoint(3, 8));
    QTest::mouseClick(button, Qt::LeftButton, {}, QPoint(button->width() - 3, button->height() / 2));
    std::vector<QAction*> run;
    QObject::connect(bar, &QToolBar::actionTriggered, bar, [&](QAction* action) { run.push_back(action); });
    QTest::mouseClick(button, Qt::LeftButton, {}, QPoint(4, button->height() / 2));
    EXPECT_EQ(run, std::vector<QAction*>{undo});
    EXPECT_EQ(asked, (std::vector<uint32_t>{ID_UNDO_HISTORY, ID_UNDO_HISTORY}));
}

TEST_F(InputTest, TheSkinGivesTheWorkspaceAndTheButtonsTheirLook)
{
    QPixmap red(16, 16);
    red.fill(Qt::red);
    const auto image = m_folder.Path() / "save.png";
    ASSERT_TRUE(red.save(QString::fromStdString(image.string())));
    enXml main("Main");
    for (const auto& [command, file] : {std::pair("57603", image.string()), std::pair("57601", std::string("/none"))}) {
        auto* entry = new enXml("Image");
        entry->AddAttribute("command", command);
        entry->AddAttribute("file", file);
        main.AddChild(entry);
    }
    m_host.Skin.Elements[u"Main"] = &main;
    m_host.Skin.Colors[COLOR_EDITOR_WORKSPACE] = 0x00204060;
    m_frame->LoadSkin();
    EXPECT_EQ(m_frame->findChild<QMdiArea*>()->background().color(), QColor(0x60, 0x40, 0x20));
    EXPECT_EQ(Button(ID_FILE_SAVE)->icon().pixmap(16).toImage().pixelColor(8, 8), QColor(Qt::red));
}

} // namespace
} // namespace ek
