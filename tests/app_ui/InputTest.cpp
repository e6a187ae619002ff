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

#include <fstream>

namespace ek {
namespace {

class InputTest : public FrameFixture {
protected:
    bool Translate(QEvent::Type type, int key, Qt::KeyboardModifiers modifiers, bool* accepted = nullptr)
    {
        QKeyEvent event(type, key, modifiers);
        event.ignore();
        const bool translated = m_frame->PreTranslate({m_frame.data(), &event});
        if (accepted)
            *accepted = event.isAccepted();
        return translated;
    }

    bool Press(int key, Qt::KeyboardModifiers modifiers = Qt::NoModifier)
    {
        return Translate(QEvent::KeyPress, key, modifiers);
    }

    QAction* Button(uint32_t id)
    {
        for (QAction* action : m_frame->findChild<QToolBar*>()->findChildren<QAction*>()) {
            if (CommandOf(*action) == id)
                return action;
        }
        return nullptr;
    }
};

TEST_F(InputTest, AKeyOfTheTableRunsItsCommandOnceWhilePressed)
{
    bool accepted = false;
    EXPECT_TRUE(Translate(QEvent::ShortcutOverride, Qt::Key_N, Qt::ControlModifier, &accepted));
    EXPECT_TRUE(accepted);
    EXPECT_TRUE(m_app.Documents().empty());
    EXPECT_TRUE(Press(Qt::Key_N, Qt::ControlModifier));
    EXPECT_FALSE(Translate(QEvent::KeyRelease, Qt::Key_N, Qt::ControlModifier));
    EXPECT_EQ(m_app.Documents().size(), 1U);
}

TEST_F(InputTest, AKeyWhoseCommandNobodyHandlesIsDelivered)
{
    bool accepted = true;
    EXPECT_FALSE(Translate(QEvent::KeyPress, Qt::Key_V, Qt::ControlModifier, &accepted));
    EXPECT_FALSE(accepted);
    EXPECT_FALSE(Press(Qt::Key_S, Qt::ControlModifier)) << "no document";
    EXPECT_FALSE(Press(Qt::Key_N));
    EXPECT_FALSE(Press(Qt::Key_N, Qt::ControlModifier | Qt::AltModifier));
}

TEST_F(InputTest, ShiftedNewSaysThatSessionsAreMissing)
{
    m_host.Calls.Take();
    EXPECT_TRUE(Press(Qt::Key_N, Qt::ControlModifier | Qt::ShiftModifier));
    EXPECT_TRUE(m_app.Documents().empty());
    EXPECT_EQ(m_host.Calls.Count("ShowStatusText(Multitrack sessions are not available in this version., 3000)"), 1U);
    EXPECT_FALSE(IsEnabled(ID_NEW_MULTITRACK));
}

TEST_F(InputTest, ShiftedSaveIsSaveAs)
{
    OpenModified("one.wav");
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
    EXPECT_EQ(command(Qt::Key_Plus, Qt::KeypadModifier | Qt::ControlModifier), 0U);
    EXPECT_EQ(command(Qt::Key_Backtab, Qt::ControlModifier | Qt::ShiftModifier), ID_PREVIOUS_WINDOW);
    EXPECT_EQ(command(Qt::Key_F4, Qt::ControlModifier), ID_CLOSE_WINDOW);
}

TEST_F(InputTest, KeysOfOtherWindowsOrOfAHiddenModuleAreLeftAlone)
{
    QWidget other;
    QKeyEvent event(QEvent::KeyPress, Qt::Key_N, Qt::ControlModifier);
    EXPECT_FALSE(m_frame->PreTranslate({&other, &event}));
    m_frame->ChangeState(false);
    EXPECT_FALSE(Press(Qt::Key_N, Qt::ControlModifier));
    m_frame->ChangeState(true);
    EXPECT_TRUE(m_frame->PreTranslate({&m_window, &event})) << "the host's window around the frame";
}

TEST_F(InputTest, NoKeyIsTranslatedBehindAModalDialog)
{
    QMessageBox box;
    box.setModal(true);
    box.show();
    EXPECT_FALSE(Press(Qt::Key_N, Qt::ControlModifier));
    box.hide();
    EXPECT_TRUE(Press(Qt::Key_N, Qt::ControlModifier));
}

TEST_F(InputTest, AFieldForTypingKeepsItsKeys)
{
    const QLineEdit line;
    QComboBox editable;
    editable.setEditable(true);
    const QComboBox fixed;
    const QKeyEvent plus(QEvent::KeyPress, Qt::Key_Plus, Qt::KeypadModifier);
    const QKeyEvent paste(QEvent::KeyPress, Qt::Key_V, Qt::ControlModifier);
    const QKeyEvent open(QEvent::KeyPress, Qt::Key_O, Qt::ControlModifier);
    const QKeyEvent close(QEvent::KeyPress, Qt::Key_F4, Qt::ControlModifier);
    for (const QWidget* field : {static_cast<const QWidget*>(&line), static_cast<const QWidget*>(&editable)}) {
        EXPECT_TRUE(IsKeyOfTextEntry(field, plus));
        EXPECT_TRUE(IsKeyOfTextEntry(field, paste));
        EXPECT_FALSE(IsKeyOfTextEntry(field, open));
        EXPECT_FALSE(IsKeyOfTextEntry(field, close));
    }
    EXPECT_FALSE(IsKeyOfTextEntry(&fixed, plus));
    EXPECT_FALSE(IsKeyOfTextEntry(nullptr, plus));
}

TEST_F(InputTest, IdleTimeEnablesTheButtonsThatWork)
{
    m_frame->OnIdle();
    for (const uint32_t id : {ID_FILE_OPEN, ID_FILE_NEW})
        EXPECT_TRUE(Button(id)->isEnabled()) << id;
    for (const uint32_t id : {ID_FILE_SAVE, ID_CLOSE_WINDOW, ID_NEW_MULTITRACK, ID_EDIT_UNDO, ID_EDIT_CUT, ID_ZOOM_IN})
        EXPECT_FALSE(Button(id)->isEnabled()) << id;
    m_frame->OpenFile(MakeSound("one.wav", 200000));
    m_frame->OnIdle();
    for (const uint32_t id : {ID_FILE_SAVE, ID_CLOSE_WINDOW, ID_ZOOM_IN})
        EXPECT_TRUE(Button(id)->isEnabled()) << id;
    EXPECT_FALSE(Button(ID_PASTE_MIX)->isEnabled());
}

TEST_F(InputTest, AButtonRunsItsCommandAndTellsItsKey)
{
    m_prompts.AnswerOpen({MakeSound("one.wav")});
    Button(ID_FILE_OPEN)->trigger();
    EXPECT_EQ(DocumentNames(), Names{"one.wav"});
    EXPECT_EQ(Button(ID_FILE_OPEN)->toolTip(), "Open File (Ctrl+O)");
    EXPECT_EQ(Button(ID_PASTE_MIX)->toolTip(), "Paste Mix");
}

TEST_F(InputTest, WhatThePointerRestsOnIsToldInTheStatusBar)
{
    m_host.Calls.Take();
    QStatusTipEvent enter(Button(ID_FILE_OPEN)->statusTip());
    QCoreApplication::sendEvent(m_frame, &enter);
    QStatusTipEvent leave{QString()};
    QCoreApplication::sendEvent(m_frame, &leave);
    QMenu* file = SubMenu("File");
    m_host.Calls.Take();
    QCoreApplication::sendEvent(m_frame, &enter);
    QCoreApplication::sendEvent(m_frame, &leave);
    emit file->hovered(file->actions()[0]);
    EXPECT_EQ(m_host.Calls.Take(), (Names{"ShowStatusText(Open File, 3000)", "ShowStatusText(New Wave File, 3000)"}));
}

TEST_F(InputTest, TheArrowAndTheRightButtonAskForTheHistoryOnlyWhileUndoWorks)
{
    auto* bar = m_frame->findChild<CommandToolBar*>();
    std::vector<uint32_t> asked;
    QObject::connect(bar, &CommandToolBar::HistoryRequested, bar, [&](uint32_t id) { asked.push_back(id); });
    const auto buttons = bar->findChildren<QToolButton*>();
    const auto found = std::ranges::find(buttons, Button(ID_EDIT_UNDO), &QToolButton::defaultAction);
    ASSERT_NE(found, buttons.end());
    std::cerr << (*found)->geometry().width() << " " << (*found)->isVisible() << (*found)->isEnabled() << "\n";
    const auto click = [&](Qt::MouseButton button, QPoint at) { QTest::mouseClick(*found, button, {}, at); };
    Button(ID_EDIT_UNDO)->setEnabled(false);
    click(Qt::RightButton, QPoint(3, 8));
    EXPECT_TRUE(asked.empty());
    Button(ID_EDIT_UNDO)->setEnabled(true);
    click(Qt::RightButton, QPoint(3, 8));
    click(Qt::LeftButton, QPoint((*found)->width() - 3, (*found)->height() / 2));
    click(Qt::LeftButton, QPoint(4, (*found)->height() / 2));
    EXPECT_EQ(asked, (std::vector<uint32_t>{ID_UNDO_HISTORY, ID_UNDO_HISTORY}));
}

TEST_F(InputTest, AMenuShowsTheStateOfItsCommandsAsItOpens)
{
    QMenu* file = SubMenu("File");
    emit file->aboutToShow();
    EXPECT_EQ(file->actions()[0]->text(), "New\tCtrl+N");
    EXPECT_TRUE(file->actions()[0]->isEnabled());
    EXPECT_FALSE(file->actions()[2]->isEnabled()) << "Save without a document";
    m_frame->OpenFile(MakeSound("one.wav"));
    emit file->aboutToShow();
    EXPECT_TRUE(file->actions()[2]->isEnabled());
    emit SubMenu("View")->aboutToShow();
    EXPECT_FALSE(SubMenu("View")->actions()[0]->isEnabled());
    EXPECT_FALSE(SubMenu("Morph")->actions()[0]->isEnabled());
}

TEST_F(InputTest, TheMenuItselfRunsNothing)
{
    SubMenu("File")->actions()[0]->trigger();
    EXPECT_TRUE(m_app.Documents().empty());
}

TEST_F(InputTest, TheSkinGivesTheWorkspaceAndTheButtonsTheirLook)
{
    QPixmap red(16, 16);
    red.fill(Qt::red);
    const auto image = m_folder.Path() / "save.png";
    ASSERT_TRUE(red.save(QString::fromStdString(image.string())));
    enXml main("Main");
    auto* own = new enXml("Image");
    own->AddAttribute("command", "57603");
    own->AddAttribute("file", image.string());
    main.AddChild(own);
    auto* broken = new enXml("Image");
    broken->AddAttribute("command", "57601");
    broken->AddAttribute("file", "/no/such/file.png");
    main.AddChild(broken);
    m_host.Skin.Elements["Main"] = &main;
    m_host.Skin.Colors[COLOR_EDITOR_WORKSPACE] = 0x00204060;
    const QIcon before = Button(ID_FILE_OPEN)->icon();
    m_frame->LoadSkin();
    EXPECT_EQ(m_frame->findChild<QMdiArea*>()->background().color(), QColor(0x60, 0x40, 0x20));
    EXPECT_EQ(Button(ID_FILE_SAVE)->icon().pixmap(16).toImage().pixelColor(8, 8), QColor(Qt::red));
    EXPECT_EQ(Button(ID_FILE_OPEN)->icon().isNull(), before.isNull()) << "the built-in image stays";
}

} // namespace
} // namespace ek
