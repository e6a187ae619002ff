// SPDX-License-Identifier: GPL-3.0-or-later
#include "EditorFixture.h"
#include "Sounds.h"

#include <gtest/gtest.h>

#include <sndfile.h>

#include <csignal>

namespace ek {
namespace {

constexpr int SecondEntry = 40; ///< of a menu, from its upper edge
constexpr int LastEntry = -16;  ///< from its lower edge
constexpr char SoundFormat[] = "Sound Format";

double ShareOfChangedPixels(const QImage& before, const QImage& after)
{
    qint64 changed = 0;
    for (int y = 0; y < before.height(); ++y) {
        for (int x = 0; x < before.width(); ++x)
            changed += before.pixel(x, y) != after.pixel(x, y);
    }
    return static_cast<double>(changed) / (static_cast<double>(before.width()) * before.height());
}

class EditorTest : public EditorFixture {
protected:
    /// From the helper's window in the corner onto the middle of the editor.
    void DragOntoEditor(const std::vector<std::string>& files) const
    {
        std::vector<std::string> arguments{EK_BIN_DIR "/e2e-helper", "drag"};
        arguments.insert(arguments.end(), files.begin(), files.end());
        const auto source = m_desktop->Run(arguments, "drag");
        ASSERT_TRUE(Eventually([&] { return m_desktop->HasWindow("e2e drag source"); }));
        const auto hasSaid = [&](const char* line) { return source->Output().find(line) != std::string::npos; };
        m_desktop->MovePointer(40, 40);
        m_desktop->Press();
        int y = 60;
        ASSERT_TRUE(Eventually([&] {
            y = y < 500 ? y + 20 : 450; // it goes on moving, as a hand does
            m_desktop->MovePointer(500, y);
            return hasSaid("offered copy");
        }));
        m_desktop->Release();
        ASSERT_TRUE(Eventually([&] { return hasSaid("dropped"); }));
        EXPECT_TRUE(hasSaid("dropped copy"));
    }

    /// A negative y counts from the lower edge of the menu.
    void ClickInFileMenu(int y) const
    {
        const std::string window = m_desktop->FindWindow(" - Ek Wave Editor");
        const QPoint corner = m_desktop->Area(window).topLeft();
        m_desktop->Click(corner.x() + 28, corner.y() + 12);
        m_desktop->MovePointer(corner.x() + 60, corner.y() + 40);
        ASSERT_TRUE(Eventually([&] { return m_desktop->WindowUnderPointer() != window; }));
        const QRect menu = m_desktop->Area(m_desktop->WindowUnderPointer());
        const int entry = y < 0 ? menu.bottom() + y : menu.y() + y;
        m_desktop->MovePointer(menu.x() + 60, entry - 4); // a menu that has just opened wants to see a movement
        m_desktop->Click(menu.x() + 60, entry);
    }

    void AnswerFileDialog(const std::string& title, const std::filesystem::path& file) const
    {
        ASSERT_TRUE(m_desktop->Focus(title));
        m_desktop->Key("ctrl+a");
        m_desktop->Type(file);
        m_desktop->Key("Return");
    }
};

TEST_F(EditorTest, ASoundIsOpenedZoomedSavedAndLeavesNoTemporaryFiles)
{
    const std::vector<int16_t> dragged = MakeSound(1);
    const std::vector<int16_t> typed = MakeSound(2);
    ASSERT_TRUE(WriteSound(Music("dragged.wav"), dragged));
    ASSERT_TRUE(WriteSound(Music("before.wav"), dragged));
    ASSERT_TRUE(WriteSound(Music("typed.wav"), typed));
    ASSERT_TRUE(BringUpEditor());

    ASSERT_NO_FATAL_FAILURE(DragOntoEditor({Music("before.wav"), Music("dragged.wav")}));
    ASSERT_TRUE(ShowsFile("dragged.wav"));
    ASSERT_TRUE(m_desktop->Focus("Ek Wave Editor"));
    m_desktop->Key("ctrl+F4");
    ASSERT_TRUE(ShowsFile("before.wav")) << "of two dropped files the second lies in front";

    ASSERT_NO_FATAL_FAILURE(ClickInFileMenu(SecondEntry));
    ASSERT_NO_FATAL_FAILURE(AnswerFileDialog("^Open$", Music("typed.wav")));
    ASSERT_TRUE(ShowsFile("typed.wav"));

    const QImage whole = m_desktop->Picture();
    m_desktop->MovePointer(640, 500);
    m_desktop->TurnWheelUp(12);
    EXPECT_TRUE(Eventually([&] { return ShareOfChangedPixels(whole, m_desktop->Picture()) > 0.2; }));

    ASSERT_TRUE(m_desktop->Focus("Ek Wave Editor"));
    const ino_t original = FileNumber(Music("typed.wav"));
    m_desktop->Key("ctrl+s");
    EXPECT_TRUE(Eventually([&] { return FileNumber(Music("typed.wav")) != original; }));

    ASSERT_TRUE(Eventually([&] { return m_desktop->Focus("Ek Wave Editor"); }));
    m_desktop->Key("ctrl+shift+s");
    ASSERT_NO_FATAL_FAILURE(AnswerFileDialog("^Save As$", Music("saved.flac")));
    ASSERT_TRUE(m_desktop->Focus(SoundFormat));
    m_desktop->Key("Return");
    ASSERT_TRUE(ShowsFile("saved.flac"));

    ASSERT_TRUE(m_desktop->Focus("Ek Wave Editor"));
    ASSERT_NO_FATAL_FAILURE(ClickInFileMenu(LastEntry));
    ASSERT_TRUE(Eventually([&] { return m_editor->HasEnded(); }));
    EXPECT_EQ(m_editor->ExitStatus(), 0);
    EXPECT_EQ(ReadSound(Music("typed.wav"), SF_FORMAT_WAV), typed);
    EXPECT_EQ(ReadSound(Music("saved.flac"), SF_FORMAT_FLAC), typed);
    EXPECT_EQ(ReadSound(Music("dragged.wav"), SF_FORMAT_WAV), dragged);
    EXPECT_EQ(FilesBelow(m_folder / "temporary"), std::vector<std::string>());
    EXPECT_EQ(FilesBelow(m_folder / "music"),
              (std::vector<std::string>{"before.wav", "dragged.wav", "saved.flac", "typed.wav"}));
}

TEST_F(EditorTest, ASecondStartHandsItsFileToTheRunningEditorWhichLeavesNothingWhenItIsEnded)
{
    ASSERT_TRUE(WriteSound(Music("first.wav"), MakeSound(3)));
    ASSERT_TRUE(WriteSound(Music("a second \xc3\xa4.wav"), MakeSound(4)));
    m_editor = StartEditor({Music("first.wav")}, "editor");
    ASSERT_TRUE(ShowsFile("first.wav"));
    const auto second = StartEditor({Music("a second \xc3\xa4.wav")}, "second");
    ASSERT_TRUE(Eventually([&] { return second->HasEnded(); }));
    EXPECT_EQ(second->ExitStatus(), 0);
    EXPECT_TRUE(ShowsFile("a second \xc3\xa4.wav"));
    EXPECT_FALSE(m_editor->HasEnded());

    const auto temporaryFiles = [this] { return FilesBelow(m_folder / "temporary"); };
    const size_t before = temporaryFiles().size();
    ASSERT_TRUE(m_desktop->Focus("Ek Wave Editor"));
    m_desktop->Key("ctrl+a");
    m_desktop->Key("ctrl+c");
    ASSERT_TRUE(Eventually([&] { return temporaryFiles().size() > before; }));
    m_editor->Send(SIGHUP);
    ASSERT_TRUE(Eventually([&] { return m_editor->HasEnded(); }));
    EXPECT_EQ(m_editor->ExitStatus(), 128 + SIGHUP);
    EXPECT_EQ(temporaryFiles(), std::vector<std::string>());
}

} // namespace
} // namespace ek
