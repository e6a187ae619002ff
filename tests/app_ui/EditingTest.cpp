// SPDX-License-Identifier: GPL-3.0-or-later
#include "FrameFixture.h"

#include "framework/ui/CommandToolBar.h"
#include "framework/ui/View.h"
#include "waveedit/WEDoc.h"
#include "waveedit/ui/ClipboardManager.h"
#include "waveedit/ui/UndoPopupDlg.h"

#include <QDropEvent>
#include <QListWidget>
#include <QMimeData>
#include <QTest>
#include <QToolButton>

namespace ek {
namespace {

/// The real view of a real document in the main frame.
class EditingTest : public FrameFixture {
protected:
    CWEDoc& OpenSound() { return static_cast<CWEDoc&>(*Open("one.wav")); }
    QToolButton* ButtonOf(uint32_t id)
    {
        for (auto* button : m_frame->findChild<CommandToolBar*>()->findChildren<QToolButton*>()) {
            if (button->isVisible() && button->defaultAction() && CommandOf(*button->defaultAction()) == id)
                return button;
        }
        return nullptr;
    }
    bool Send(uint32_t id, uintptr_t wParam = 0, intptr_t lParam = 0)
    {
        MessageEvent message(id, wParam, lParam);
        QCoreApplication::sendEvent(m_frame, &message);
        return message.isAccepted();
    }
};

TEST_F(EditingTest, TheArrowOfUndoOpensItsListBelowTheButton)
{
    CWEDoc& sound = OpenSound();
    for (int i = 0; i < 3; ++i) {
        EXPECT_TRUE(Run(ID_SELECT_ALL));
        Run(ID_EDIT_COPY);
        Run(ID_EDIT_PASTE);
    }
    EXPECT_TRUE(sound.IsModified());
    m_page->resize(4000, 700); // room for every button
    Settle();
    m_frame->OnIdle();
    QToolButton* button = ButtonOf(ID_EDIT_UNDO);
    ASSERT_NE(button, nullptr);
    QTest::mouseClick(button, Qt::RightButton);
    auto* list = m_frame->findChild<CUndoPopupDlg*>();
    ASSERT_NE(list, nullptr);
    EXPECT_EQ(list->y(), button->mapToGlobal(QPoint(0, button->height())).y());
    auto* lines = list->findChild<QListWidget*>();
    EXPECT_EQ(lines->count(), 3);
    QTest::mouseClick(lines->viewport(), Qt::LeftButton, {}, lines->visualItemRect(lines->item(1)).center());
    Settle();
    EXPECT_EQ(sound.UndoStack().Current(), 0);
    m_frame->OnIdle();
    EXPECT_TRUE(ButtonOf(ID_EDIT_REDO)->isEnabled());
    delete m_frame;
    EXPECT_EQ(SoundClipboard().Data, nullptr) << "nor does its file stay";
}

TEST_F(EditingTest, TakingThePlayerAnewLeavesTheViewThatPlaysInItsPlace)
{
    OpenSound();
    const CView* first = m_frame->ActiveView();
    Send(EK_WM_TAKE_PLAYER);
    EXPECT_TRUE(m_frame->OpenFile(MakeSound("two.wav")));
    int grants = 0;
    m_host.Player.OnGranted = [&] { grants += Send(EK_WM_TAKE_PLAYER) ? 1 : 0; };
    Send(EK_WM_COMMAND, ID_TRANSPORT_POSITION, 50);
    EXPECT_EQ(grants, 1);
    EXPECT_EQ(m_frame->CurrentView(), first) << "it was just being started";
    m_host.Calls.Take();
    Send(EK_WM_TAKE_PLAYER); // another device
    EXPECT_EQ(m_frame->CurrentView(), first);
    EXPECT_EQ(m_host.Calls.Count("Player.Stop()"), 0u);
    EXPECT_TRUE(first->IsPlaying());
    Send(EK_WM_COMMAND, ID_TRANSPORT_STOP);
    Send(EK_WM_TAKE_PLAYER);
    EXPECT_EQ(m_frame->CurrentView(), m_frame->ActiveView()) << "nothing plays";
}

TEST_F(EditingTest, ClosingTheWindowThatPlaysGivesThePlayerBack)
{
    OpenSound();
    Send(EK_WM_COMMAND, ID_TRANSPORT_PLAY);
    m_host.Calls.Take();
    EXPECT_TRUE(m_frame->TryClose());
    EXPECT_EQ(m_host.Calls.Count("Player.Stop()"), 1u);
    EXPECT_EQ(m_host.Calls.Count("Player.Release(Ek Wave Editor)"), 1u);
    EXPECT_EQ(m_frame->CurrentView(), nullptr);
    m_host.Calls.Take();
    m_frame->OnIdle();
    EXPECT_EQ(m_host.Calls.Count("Player.UpdateControls(Ek Wave Editor, 0)"), 1u);
}

TEST_F(EditingTest, FilesThatAreDroppedOnAViewOpenAndADraggedEffectIsRefused)
{
    OpenSound();
    EXPECT_FALSE(m_frame->ActiveView()->acceptDrops()) << "so the drag is the frame's";
    QMimeData effect;
    CClipboardManager::GetInstance().PutValue(17'103, &effect);
    QDropEvent drop(QPointF(5, 5), Qt::MoveAction | Qt::CopyAction, &effect, Qt::LeftButton, Qt::NoModifier);
    QCoreApplication::sendEvent(m_frame, &drop);
    EXPECT_FALSE(drop.isAccepted());
}

} // namespace
} // namespace ek
