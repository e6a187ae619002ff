// SPDX-License-Identifier: GPL-3.0-or-later
#include "ViewFixture.h"

#include "waveedit/ui/UndoPopupDlg.h"

#include <QListWidget>

namespace ek {
namespace {

QStringList Texts(const QMenu& menu)
{
    QStringList texts;
    for (const QAction* action : menu.actions()) {
        texts.append(action->text().section('\t', 0, 0));
        if (action->menu())
            texts += Texts(*action->menu());
    }
    return texts;
}

class Editing : public ViewFixture {
protected:
    ~Editing() override { SoundClipboard().Free(); }

    /// 40,000 frames, some of which are selected in all channels (the middle row) or one.
    void Select(uint32_t channels, double row, int fromColumn, int toColumn)
    {
        Load(40'000, channels,
             [](uint64_t frame, uint32_t channel) { return static_cast<int>(frame % 30'000 + channel); });
        Show();
        Run(ID_ZOOM_RATIO_FIRST + 3);
        Drag(At(fromColumn, row), At(toColumn, row));
        m_start = Geometry().SelectionStart;
        m_end = Geometry().SelectionEnd;
    }
    int SampleAt(uint64_t frame, uint32_t channel = 0)
    {
        return Sound.Store().SampleAt(frame * Sound.ChannelCount() + channel);
    }
    void PressKey(int key, Qt::KeyboardModifiers modifiers = {}) { QTest::keyClick(&View, Qt::Key(key), modifiers); }
    CUndoPopupDlg* OpenHistory(uint32_t id)
    {
        Run(id);
        return View.findChild<CUndoPopupDlg*>();
    }

    uint64_t m_start = 0;
    uint64_t m_end = 0;
};

TEST_F(Editing, EditsShowWhereTheyTookPlaceAndKeepWhatIsShown)
{
    Select(2, 0.5, 100, 200);
    EXPECT_FALSE(IsEnabled(ID_EDIT_PASTE));
    EXPECT_FALSE(IsEnabled(ID_EDIT_UNDO));
    Bar(Qt::Horizontal).setValue(5);
    const QImage original = DrawnImage();
    const uint64_t length = m_end - m_start;

    EXPECT_TRUE(Run(ID_EDIT_CUT));
    EXPECT_EQ(Sound.FrameCount(), 40'000 - length);
    EXPECT_EQ(Selection(), Frames(m_start, m_start));
    EXPECT_EQ(Geometry().CursorFrame, m_start);
    EXPECT_EQ(Geometry().Length, Sound.FrameCount());
    EXPECT_EQ(Geometry().FirstVisibleFrame, 40u);
    EXPECT_EQ(Geometry().FramesPerPixel, 8u);
    EXPECT_EQ(SampleAt(m_start), static_cast<int>(m_end));
    EXPECT_FALSE(IsEnabled(ID_EDIT_COPY));
    EXPECT_NE(DrawnImage(), original) << "the columns are those of the sound as it is now";

    EXPECT_TRUE(Run(ID_EDIT_PASTE));
    EXPECT_EQ(Sound.FrameCount(), 40'000u);
    EXPECT_EQ(Selection(), Frames(m_start, m_end));
    EXPECT_EQ(SampleAt(m_start + 7), static_cast<int>(m_start + 7));
    EXPECT_TRUE(Run(ID_PASTE_MIX));
    EXPECT_EQ(SampleAt(m_start + 7), 2 * static_cast<int>(m_start + 7));
    for (int i = 0; i < 3; ++i)
        EXPECT_TRUE(Run(ID_EDIT_UNDO));
    EXPECT_FALSE(IsEnabled(ID_EDIT_UNDO));
    EXPECT_EQ(Selection(), Frames(m_start, m_end));
    EXPECT_EQ(Sound.FrameCount(), 40'000u);
    EXPECT_TRUE(Run(ID_EDIT_REDO));
    EXPECT_EQ(Sound.FrameCount(), 40'000 - length);
}

TEST_F(Editing, DeletingOneChannelKeepsLengthAndSelection)
{
    Select(2, 0.1, 100, 200);
    PressKey(Qt::Key_Delete);
    EXPECT_EQ(Sound.FrameCount(), 40'000u);
    EXPECT_EQ(Selection(), Frames(m_start, m_end));
    EXPECT_EQ(SampleAt(m_start), 0);
    EXPECT_EQ(SampleAt(m_start, 1), static_cast<int>(m_start) + 1);
}

TEST_F(Editing, TheOnlyChannelOfASoundIsAllOfIt)
{
    Select(1, 0.5, 100, 200);
    Run(ID_EDIT_COPY);
    Drag(At(300, 0.5), At(500, 0.5));
    Run(ID_EDIT_PASTE);
    EXPECT_EQ(Sound.FrameCount(), 40'000u - 800u) << "800 frames in the place of 1600";
    EXPECT_EQ(SampleAt(2400 + 800), 4000);
    EXPECT_EQ(Selection(), Frames(2400, 3200));
}

TEST_F(Editing, TheKeysOfTheViewRunTheirCommands)
{
    Select(1, 0.5, 100, 200);
    const uint64_t length = m_end - m_start;
    PressKey(Qt::Key_Insert, Qt::ControlModifier);
    EXPECT_EQ(SoundClipboard().FrameCount, length);
    EXPECT_EQ(Sound.FrameCount(), 40'000u);
    PressKey(Qt::Key_Delete, Qt::ShiftModifier);
    EXPECT_EQ(Sound.FrameCount(), 40'000 - length);
    EXPECT_EQ(Sound.UndoStack().LastName(), "Cut");
    PressKey(Qt::Key_Insert, Qt::ShiftModifier);
    EXPECT_EQ(Sound.FrameCount(), 40'000u);
    PressKey(Qt::Key_Delete, Qt::ControlModifier); // nobody's
    PressKey(Qt::Key_Delete, Qt::KeypadModifier);
    EXPECT_EQ(Sound.FrameCount(), 40'000 - length);
}

TEST_F(Editing, AnEditEndsADragAndWorksOnWhatWasSelectedByThen)
{
    Select(1, 0.5, 0, 1);
    Press(At(200, 0.5));
    Move(At(100, 0.5));
    const uint64_t length = Geometry().SelectionStart - Geometry().SelectionEnd;
    Run(ID_DELETE);
    EXPECT_EQ(Sound.FrameCount(), 40'000 - length);
    EXPECT_FALSE(Timer("AutoScroll").isActive());
    Move(At(300, 0.5));
    EXPECT_FALSE(Geometry().HasSelection());
}

TEST_F(Editing, EverythingCanBeDeletedAndPastedBack)
{
    Select(2, 0.5, 0, 1);
    Run(ID_SELECT_ALL);
    Run(ID_EDIT_CUT);
    EXPECT_EQ(Geometry().Length, 0u);
    EXPECT_EQ(DrawnImage().pixelColor(View.Places().Wave.Left + 5, View.Places().Wave.Top + 5),
              SkinColorOf(COLOR_EDITOR_WORKSPACE));
    EXPECT_FALSE(IsEnabled(ID_SELECT_ALL));
    EXPECT_TRUE(Run(ID_EDIT_PASTE));
    EXPECT_EQ(Selection(), Frames(0, 40'000));
    EXPECT_GE(Geometry().Span(), 40'000u) << "shown whole";

    Sound.DeleteContents();
    Sound.Notify({.What = DocumentChange::Kind::Reset});
    EXPECT_TRUE(Run(ID_EDIT_PASTE)) << "a document without sound takes the clipboard's format";
    EXPECT_EQ(Geometry().Length, 40'000u);
    EXPECT_EQ(Selection(), Frames(0, 40'000));
    EXPECT_EQ(ActiveFormat.nChannels, 2);
}

TEST_F(Editing, TheMenuOfTheLanesHasALineForEachChannel)
{
    const QStringList common = {"Zoom", "Fit Selection", "Zoom Out Full", "Zoom In", "Zoom Out",
                                "Cut",  "Copy",          "Paste",         "Delete",  "Select All"};
    const std::pair<uint32_t, QStringList> menus[] = {
        {1, {}},
        {2, {"Left", "Right"}},
        {4, {"Front Left", "Front Right", "Back Left", "Back Right"}},
        {5, {"Front Left", "Front Right", "Front Center", "Back Center", "Low Frequency"}},
        {6, {"Front Left", "Front Right", "Front Center", "Back Left", "Back Right", "Low Frequency"}},
        {8,
         {"Front Left", "Front Right", "Front Center", "Side Left", "Side Right", "Back Left", "Back Right",
          "Low Frequency"}},
    };
    Show();
    EXPECT_EQ(Texts(*MenuAt(At(5, 0.5))), common + QStringList({"Select All Left", "Select All Right"}));
    for (const auto& [channels, names] : menus) {
        Load(1000, channels);
        Sound.Notify({.What = DocumentChange::Kind::Reset});
        QStringList expected = common;
        for (const QString& name : names)
            expected.append("Select All " + name);
        const auto reason = channels % 4 ? QContextMenuEvent::Mouse : QContextMenuEvent::Keyboard;
        const QMenu* menu = MenuAt(At(5, 0.5), reason);
        ASSERT_NE(menu, nullptr) << channels;
        EXPECT_EQ(Texts(*menu), expected) << channels;
        EXPECT_FALSE(menu->actions()[1]->isEnabled()) << "nothing is selected";
        if (names.empty())
            continue;
        for (int line = 0; line < names.size(); ++line) {
            menu->actions()[6 + line]->trigger();
            EXPECT_EQ(QString::fromStdString(GetChannelName(Geometry().SelectionChannel)).replace("Centre", "Center"),
                      names[line]);
        }
    }
    Load(
        1000, 4, [](uint64_t, uint32_t) { return 0; }, 0x107); // front left, right, centre, back centre
    Sound.Notify({.What = DocumentChange::Kind::Reset});
    const QMenu* menu = MenuAt(At(5, 0.5));
    EXPECT_TRUE(menu->actions()[7]->isEnabled());
    EXPECT_FALSE(menu->actions()[8]->isEnabled()) << "there is no back left";
    for (const uint32_t channels : {3u, 7u}) {
        Load(1000, channels);
        Sound.Notify({.What = DocumentChange::Kind::Reset});
        EXPECT_EQ(MenuAt(At(5, 0.5)), nullptr);
    }
    EXPECT_EQ(Texts(*MenuAt(MiddleOf(View.Places().Amplitude))).first(), "Center View");
    EXPECT_EQ(MenuAt(MiddleOf(View.Places().Time)), nullptr);
}

TEST_F(Editing, TheHistoryTakesBackAsManyEditsAsAreSelected)
{
    Select(1, 0.5, 100, 200);
    Run(ID_EDIT_COPY);
    for (int i = 0; i < 3; ++i)
        Run(ID_EDIT_PASTE);
    Run(ID_DELETE);
    const uint64_t afterAll = Sound.FrameCount();
    CUndoPopupDlg* list = OpenHistory(ID_UNDO_HISTORY);
    ASSERT_NE(list, nullptr);
    const auto* lines = list->findChild<QListWidget*>("1001");
    ASSERT_EQ(lines->count(), 4);
    EXPECT_EQ(lines->item(0)->text(), "Deleting...");
    EXPECT_EQ(lines->item(3)->text(), "Pasting...");
    QTest::mouseClick(lines->viewport(), Qt::LeftButton, {}, lines->visualItemRect(lines->item(2)).center());
    QCoreApplication::processEvents();
    EXPECT_EQ(Sound.UndoStack().Current(), 0);
    QCoreApplication::sendPostedEvents(nullptr, QEvent::DeferredDelete);

    list = OpenHistory(ID_REDO_HISTORY);
    ASSERT_EQ(list->findChild<QListWidget*>()->count(), 3);
    QTest::keyClick(list->findChild<QListWidget*>(), Qt::Key_End);
    QTest::keyClick(list->findChild<QListWidget*>(), Qt::Key_Return);
    QCoreApplication::processEvents();
    EXPECT_EQ(Sound.FrameCount(), afterAll);
    EXPECT_FALSE(IsEnabled(ID_REDO_HISTORY));
}

} // namespace
} // namespace ek
