// SPDX-License-Identifier: GPL-3.0-or-later
#include "waveedit/ui/UndoPopupDlg.h"

#include <gtest/gtest.h>

#include <QListWidget>
#include <QPointer>
#include <QScreen>
#include <QtTest>

#include <optional>

namespace ek {
namespace {

class UndoPopup : public testing::Test {
protected:
    void Open(const QRect& button = {200, 100, 20, 20})
    {
        m_answer.reset();
        m_popup = new CUndoPopupDlg({"Cut", "Pasting...", "Deleting...", "Morph"}, "Edits to undo", nullptr);
        QObject::connect(m_popup, &QDialog::finished, m_popup, [this](int result) {
            EXPECT_FALSE(m_answer.has_value()) << "once";
            m_answer = result == QDialog::Accepted ? m_popup->SelectedCount() : 0;
        });
        m_popup->PopUp(button);
    }
    ~UndoPopup() override { delete m_popup; }

    QListWidget& List() { return *m_popup->findChild<QListWidget*>("1001"); }
    QPoint Line(int index) { return List().visualItemRect(List().item(index)).center(); }
    void Point(QPoint place)
    {
        QMouseEvent event(QEvent::MouseMove, place, List().viewport()->mapToGlobal(place), Qt::NoButton, {}, {});
        QCoreApplication::sendEvent(List().viewport(), &event);
    }
    void Click(Qt::MouseButton button, int line) { QTest::mouseClick(List().viewport(), button, {}, Line(line)); }
    void Key(Qt::Key key) { QTest::keyClick(&List(), key); }
    std::string Selected()
    {
        std::string selected;
        for (int i = 0; i < List().count(); ++i)
            selected += List().item(i)->isSelected() ? 'x' : '-';
        return selected;
    }
    /// What a fresh list answers to that: how many, 0 for cancelled, nothing for still open.
    std::optional<int> AnswerTo(const std::function<void()>& act)
    {
        delete m_popup;
        Open();
        act();
        return m_answer;
    }

    QPointer<CUndoPopupDlg> m_popup;
    std::optional<int> m_answer; // how many; 0: cancelled
};

TEST_F(UndoPopup, PointingSelectsFromTheFirstLineToThePointer)
{
    Open();
    EXPECT_EQ(Selected(), "----");
    Point(Line(2));
    EXPECT_EQ(Selected(), "xxx-");
    Point(Line(0));
    EXPECT_EQ(Selected(), "x---");
    Point(Line(3) + QPoint(0, 200));
    EXPECT_EQ(Selected(), "xxxx") << "below the last line";
    EXPECT_FALSE(m_answer.has_value());
}

TEST_F(UndoPopup, TheLeftButtonAcceptsAndEverythingElseCancels)
{
    EXPECT_EQ(AnswerTo([this] { Click(Qt::LeftButton, 1); }), 2);
    EXPECT_EQ(AnswerTo([this] { Click(Qt::RightButton, 1); }), 0);
    EXPECT_EQ(AnswerTo([this] { QTest::mouseClick(m_popup, Qt::LeftButton, {}, QPoint(-40, -40)); }), 0);
    EXPECT_EQ(AnswerTo([this] {
                  QFocusEvent out(QEvent::FocusOut);
                  QCoreApplication::sendEvent(&List(), &out);
              }),
              0);
    EXPECT_EQ(AnswerTo([this] { Key(Qt::Key_Escape); }), 0);
}

TEST_F(UndoPopup, TheArrowKeysSelectAndEnterAccepts)
{
    EXPECT_EQ(AnswerTo([this] {
                  Key(Qt::Key_Down);
                  Key(Qt::Key_Down);
                  Key(Qt::Key_Down);
                  EXPECT_EQ(Selected(), "xxx-");
                  Key(Qt::Key_Up);
                  EXPECT_EQ(Selected(), "xx--");
                  EXPECT_EQ(List().currentRow(), 1);
                  Key(Qt::Key_Enter);
              }),
              2);
    EXPECT_EQ(AnswerTo([this] {
                  Key(Qt::Key_End);
                  Key(Qt::Key_Down);
                  EXPECT_EQ(Selected(), "xxxx");
                  Key(Qt::Key_Return);
              }),
              4);
    EXPECT_EQ(AnswerTo([this] { Key(Qt::Key_Return); }), 0) << "nothing is selected";
}

TEST_F(UndoPopup, TheListIsAtItsButtonAndWholeOnTheScreen)
{
    const QRect screen = QGuiApplication::primaryScreen()->availableGeometry();
    Open({200, 100, 20, 20});
    EXPECT_EQ(m_popup->pos(), QPoint(200, 120));
    EXPECT_EQ(List().verticalScrollBar()->maximum(), 0) << "every line is visible";
    for (const QRect& button :
         {QRect(screen.right() - 10, 100, 20, 20), QRect(-30, 100, 20, 20), QRect(200, screen.bottom() - 25, 20, 20)}) {
        delete m_popup;
        Open(button);
        EXPECT_TRUE(screen.contains(m_popup->geometry()));
        EXPECT_FALSE(m_popup->geometry().intersects(button));
    }
}

} // namespace
} // namespace ek
