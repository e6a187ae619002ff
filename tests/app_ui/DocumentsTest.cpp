// SPDX-License-Identifier: GPL-3.0-or-later
#include "FrameFixture.h"

#include "app/ui/WEFrame.h"
#include "waveedit/WEDoc.h"

#include <QDropEvent>
#include <QMdiArea>
#include <QMimeData>
#include <QUrl>

#include <fstream>

namespace ek {
namespace {

class DocumentsTest : public FrameFixture {
protected:
    /// The file entries of the menu, without the commands above them.
    QStringList RecentTexts()
    {
        QStringList texts;
        for (const QAction* action : SubMenu("File")->actions()) {
            const uint32_t id = CommandOf(*action);
            if (id >= ID_RECENT_FIRST && id <= ID_RECENT_LAST)
                texts.append(QString::number(id - ID_RECENT_FIRST) + " " + action->text());
        }
        return texts;
    }

    QString MenuPath(const std::string& name) const
    {
        return QString::fromStdString((m_folder.Path() / name).string());
    }

    bool Drop(const QMimeData& data, Qt::DropActions offered, Qt::DropAction& performed)
    {
        QDragEnterEvent enter(QPoint(5, 5), offered, &data, Qt::LeftButton, Qt::NoModifier);
        enter.ignore();
        QCoreApplication::sendEvent(m_frame, &enter);
        QDropEvent drop(QPointF(5, 5), offered, &data, Qt::LeftButton, Qt::NoModifier);
        drop.ignore();
        QCoreApplication::sendEvent(m_frame, &drop);
        performed = drop.dropAction();
        EXPECT_EQ(enter.isAccepted(), drop.isAccepted());
        Settle();
        return drop.isAccepted();
    }
};

TEST_F(DocumentsTest, OpenAsksForFilesAndOpensEachOfThem)
{
    m_prompts.AnswerOpen({MakeSound("one.wav"), MakeSound("two.wav")});
    m_host.Calls.Take();
    EXPECT_TRUE(Run(ID_FILE_OPEN));
    EXPECT_EQ(DocumentNames(), (Names{"one.wav", "two.wav"}));
    EXPECT_EQ(m_frame->ActiveChild()->Document().DisplayName(), "two.wav");
    EXPECT_GE(m_host.Calls.Count("RefreshMenu(Ek Wave Editor)"), 1U);
    ASSERT_EQ(m_prompts.Questions().size(), 1U);
    EXPECT_NE(m_prompts.Questions().front().find("*.mts"), std::string::npos);
}

TEST_F(DocumentsTest, NewMakesAnUntitledWave)
{
    EXPECT_TRUE(Run(ID_FILE_NEW));
    EXPECT_EQ(DocumentNames(), Names{"Untitled"});
    EXPECT_EQ(m_frame->windowTitle(), "Untitled[*] - Ek Wave Editor");
}

TEST_F(DocumentsTest, AFileThatIsNoSoundIsReportedAndLeavesNoWindow)
{
    const auto path = m_folder.Path() / "text.wav";
    std::ofstream(path) << "no sound at all";
    EXPECT_FALSE(m_frame->OpenFile(path));
    EXPECT_EQ(m_prompts.Messages(), Names{"Can't open file text.wav"});
    EXPECT_TRUE(m_frame->Children().empty());
    EXPECT_TRUE(m_app.Documents().empty());
    EXPECT_TRUE(RecentTexts().isEmpty());
}

TEST_F(DocumentsTest, TheTitleFollowsTheDocumentAndItsModifiedMark)
{
    CDocument* document = OpenModified("song [*].wav");
    QMdiSubWindow* child = m_frame->ActiveChild();
    EXPECT_EQ(child->windowTitle(), "song [*][*].wav[*]");
    EXPECT_TRUE(child->isWindowModified());
    EXPECT_EQ(m_frame->windowTitle(), "song [*][*].wav[*] - Ek Wave Editor");
    EXPECT_TRUE(m_frame->isWindowModified());
    document->SetModified(false);
    document->SetPath("/elsewhere/other.wav");
    EXPECT_EQ(child->windowTitle(), "other.wav[*]");
    EXPECT_FALSE(m_frame->isWindowModified());
}

TEST_F(DocumentsTest, TheActiveFormatIsThatOfTheActiveDocument)
{
    m_frame->OpenFile(MakeSound("stereo.wav"));
    WriteWav(m_folder.Path() / "mono.wav", 1, MakeRamp(500), 22050);
    m_frame->OpenFile(m_folder.Path() / "mono.wav");
    EXPECT_EQ(m_frame->ActiveFormat(), static_cast<CWEDoc*>(m_app.Documents()[1])->Format());
    m_frame->Children()[0]->Activate();
    EXPECT_EQ(m_frame->ActiveFormat(), static_cast<CWEDoc*>(m_app.Documents()[0])->Format());
}

TEST_F(DocumentsTest, CloseOfAnUnmodifiedDocumentAsksNothingAndFreesIt)
{
    m_frame->OpenFile(MakeSound("one.wav"));
    EXPECT_GT(m_folder.TempFileCount(), 0U);
    EXPECT_TRUE(Run(ID_CLOSE_WINDOW));
    EXPECT_EQ(m_frame->ActiveChild(), nullptr);
    EXPECT_EQ(m_frame->windowTitle(), "Ek Wave Editor");
    EXPECT_FALSE(IsEnabled(ID_CLOSE_WINDOW));
    Settle();
    EXPECT_TRUE(m_app.Documents().empty());
    EXPECT_EQ(m_folder.TempFileCount(), 0U);
    EXPECT_TRUE(m_prompts.Messages().empty());
}

TEST_F(DocumentsTest, TheWindowUsedBeforeIsActiveAtOnce)
{
    for (const char* name : {"one.wav", "two.wav", "three.wav"})
        m_frame->OpenFile(MakeSound(name));
    m_frame->Children()[0]->Activate();
    Run(ID_CLOSE_WINDOW);
    EXPECT_EQ(m_frame->ActiveChild()->Document().DisplayName(), "three.wav");
    EXPECT_EQ(m_frame->windowTitle(), "three.wav[*] - Ek Wave Editor");
    EXPECT_TRUE(IsEnabled(ID_FILE_SAVE));
    Settle();
    EXPECT_EQ(m_frame->ActiveChild()->Document().DisplayName(), "three.wav");
}

TEST_F(DocumentsTest, CloseAsksAboutAModifiedDocumentAndCancelKeepsIt)
{
    OpenModified("one.wav");
    m_prompts.AnswerMessage(MessageAnswer::Cancel);
    Run(ID_CLOSE_WINDOW);
    Settle();
    EXPECT_EQ(m_prompts.Messages(), Names{"Save changes to one.wav?"});
    EXPECT_EQ(DocumentNames(), Names{"one.wav"});
    m_prompts.AnswerMessage(MessageAnswer::No);
    Run(ID_CLOSE_WINDOW);
    Settle();
    EXPECT_TRUE(m_app.Documents().empty());
}

TEST_F(DocumentsTest, TryCloseStopsAtTheDocumentThatIsKept)
{
    m_frame->OpenFile(MakeSound("plain.wav"));
    OpenModified("discarded.wav");
    OpenModified("kept.wav");
    OpenModified("unasked.wav");
    m_prompts.AnswerMessage(MessageAnswer::No);
    m_prompts.AnswerMessage(MessageAnswer::Cancel);
    EXPECT_FALSE(m_frame->TryClose());
    EXPECT_EQ(DocumentNames(), (Names{"kept.wav", "unasked.wav"}));
    m_prompts.AnswerMessage(MessageAnswer::No);
    m_prompts.AnswerMessage(MessageAnswer::No);
    EXPECT_TRUE(m_frame->TryClose());
    EXPECT_TRUE(m_app.Documents().empty());
}

TEST_F(DocumentsTest, SaveGoesToTheActiveDocument)
{
    CDocument* document = OpenModified("one.wav");
    EXPECT_TRUE(Run(ID_FILE_SAVE));
    EXPECT_FALSE(document->IsModified());
    EXPECT_EQ(ReadBytes(m_folder.Path() / "one.wav").size(), 44U + 12000U);
}

TEST_F(DocumentsTest, AFileOpenedAfterSavingReplacesItsWindow)
{
    m_frame->OpenFile(MakeSound("old.wav"));
    m_frame->OpenFile(MakeSound("other.wav"));
    m_frame->ReopenAs(*m_app.Documents()[0], MakeSound("new.wav"));
    EXPECT_EQ(DocumentNames(), (Names{"old.wav", "other.wav"}));
    Settle();
    EXPECT_EQ(DocumentNames(), (Names{"other.wav", "new.wav"}));
}

TEST_F(DocumentsTest, RecentFilesAreLoadedOnceWithAmpersandsDoubled)
{
    auto& settings = m_host.Services.Settings;
    settings["Ek Wave Editor/RecentFile1"] = MakeSound("a & b.wav").string();
    settings["Ek Wave Editor/RecentFile2"] = (m_folder.Path() / "deleted.wav").string();
    settings["Ek Wave Editor/RecentFile3"] = MakeSound("c.wav").string();
    const QStringList expected = {"0 " + MenuPath("a && b.wav"), "1 " + MenuPath("c.wav")};
    EXPECT_EQ(RecentTexts(), expected);
    EXPECT_EQ(RecentTexts(), expected);
    EXPECT_TRUE(Run(ID_RECENT_FIRST));
    EXPECT_EQ(DocumentNames(), Names{"a & b.wav"});
}

TEST_F(DocumentsTest, ARecentFileThatOpensComesFirstAndOneThatFailsLeaves)
{
    m_frame->Menu();
    m_frame->OpenFile(MakeSound("one.wav"));
    m_frame->OpenFile(MakeSound("two.wav"));
    Run(ID_RECENT_FIRST + 1);
    EXPECT_EQ(RecentTexts(), (QStringList{"0 " + MenuPath("one.wav"), "1 " + MenuPath("two.wav")}));
    std::filesystem::remove(m_folder.Path() / "two.wav");
    Run(ID_RECENT_FIRST + 1);
    EXPECT_EQ(RecentTexts(), QStringList{"0 " + MenuPath("one.wav")});
    EXPECT_EQ(DocumentNames().size(), 3U);
}

TEST_F(DocumentsTest, TheFrameStoresTheRecentFilesWhenItGoes)
{
    m_frame->Menu();
    m_frame->OpenFile(MakeSound("one.wav"));
    delete m_frame;
    EXPECT_EQ(m_host.Services.Settings["Ek Wave Editor/RecentFile1"], (m_folder.Path() / "one.wav").string());
    EXPECT_TRUE(m_app.Documents().empty());
    EXPECT_EQ(m_folder.TempFileCount(), 0U);
}

TEST_F(DocumentsTest, AFrameWhoseMenuNobodyAskedForLeavesTheStoredListAlone)
{
    m_host.Services.Settings["Ek Wave Editor/RecentFile1"] = "/kept";
    m_frame->OpenFile(MakeSound("one.wav"));
    delete m_frame;
    EXPECT_EQ(m_host.Services.Settings["Ek Wave Editor/RecentFile1"], "/kept");
}

TEST_F(DocumentsTest, DroppedFilesOpenInTheirOrderAndFoldersAreSkipped)
{
    std::filesystem::create_directory(m_folder.Path() / "folder.wav");
    QMimeData data;
    data.setUrls({QUrl::fromLocalFile(QString::fromStdString(MakeSound("two.wav").string())),
                  QUrl::fromLocalFile(MenuPath("folder.wav")),
                  QUrl::fromLocalFile(QString::fromStdString(MakeSound("o%ne #1.wav").string()))});
    Qt::DropAction performed;
    EXPECT_TRUE(Drop(data, Qt::CopyAction | Qt::MoveAction, performed));
    EXPECT_EQ(performed, Qt::CopyAction);
    EXPECT_EQ(DocumentNames(), (Names{"two.wav", "o%ne #1.wav"}));
    EXPECT_TRUE(m_prompts.Messages().empty());
}

TEST_F(DocumentsTest, ADroppedNameKeepsItsBytes)
{
    const std::string name = "caf\xE9.wav";
    MakeSound(name);
    QMimeData data;
    data.setData("text/uri-list", QByteArray::fromStdString("file://" + m_folder.Path().string() + "/caf%E9.wav\r\n"));
    Qt::DropAction performed;
    EXPECT_TRUE(Drop(data, Qt::CopyAction, performed));
    ASSERT_EQ(m_app.Documents().size(), 1U);
    EXPECT_EQ(m_app.Documents()[0]->Path().filename().string(), name);
}

TEST_F(DocumentsTest, ADragWithoutFilesOrWithoutCopyIsRefused)
{
    QMimeData text;
    text.setText("song.wav");
    Qt::DropAction performed;
    EXPECT_FALSE(Drop(text, Qt::CopyAction, performed));
    QMimeData web;
    web.setUrls({QUrl("https://example.org/song.wav")});
    EXPECT_FALSE(Drop(web, Qt::CopyAction, performed));
    QMimeData file;
    file.setUrls({QUrl::fromLocalFile(QString::fromStdString(MakeSound("one.wav").string()))});
    EXPECT_FALSE(Drop(file, Qt::MoveAction, performed));
    EXPECT_TRUE(m_app.Documents().empty());
}

TEST_F(DocumentsTest, ARequestOpensItsFilesAndAnyOtherTextIsShown)
{
    const std::string one = MakeSound("one.wav").string();
    m_frame->PassMessage("open \"" + one + "\" \"" + (m_folder.Path() / "s.mts").string() + "\"");
    EXPECT_EQ(DocumentNames(), Names{"one.wav"});
    m_frame->PassMessage("100% of \"" + one + "\"");
    EXPECT_EQ(m_prompts.Messages(), (Names{"Can't open file s.mts", "Message: 100% of \"" + one + "\""}));
    EXPECT_EQ(m_app.Documents().size(), 1U);
}

TEST_F(DocumentsTest, TheLastWindowClosedMaximizedMakesTheNextOneMaximized)
{
    Run(ID_FILE_NEW);
    EXPECT_FALSE(m_frame->ActiveChild()->isMaximized());
    m_frame->ActiveChild()->showMaximized();
    Run(ID_CLOSE_WINDOW);
    Settle();
    Run(ID_FILE_NEW);
    EXPECT_TRUE(m_frame->ActiveChild()->isMaximized());
    EXPECT_TRUE(m_frame->TryClose());
    delete m_frame;
    m_frame = new CMainFrame(m_page, m_app, &m_host);
    Run(ID_FILE_NEW);
    EXPECT_TRUE(m_frame->ActiveChild()->isMaximized()) << "in the next session too";
}

TEST_F(DocumentsTest, TiledWindowsShareTheWorkspace)
{
    for (int i = 0; i < 3; ++i)
        Run(ID_FILE_NEW);
    const QRect workspace = m_frame->findChild<QMdiArea*>()->viewport()->rect();
    for (const auto& [command, isHorizontal] :
         {std::pair(ID_WINDOW_TILE_HORIZONTALLY, true), std::pair(ID_WINDOW_TILE_VERTICALLY, false)}) {
        Run(command);
        int end = 0;
        for (const CMDIChildWnd* child : m_frame->Children()) {
            const QRect place = child->geometry();
            EXPECT_EQ(isHorizontal ? place.top() : place.left(), end);
            EXPECT_EQ(isHorizontal ? place.width() : place.height(),
                      isHorizontal ? workspace.width() : workspace.height());
            end = isHorizontal ? place.top() + place.height() : place.left() + place.width();
        }
        EXPECT_EQ(end, isHorizontal ? workspace.height() : workspace.width());
    }
}

TEST_F(DocumentsTest, AWindowThatFillsTheWorkspaceGoesOnFillingIt)
{
    Run(ID_FILE_NEW);
    const QMdiArea* area = m_frame->findChild<QMdiArea*>();
    m_window.resize(700, 500);
    m_page->resize(700, 500);
    Settle();
    EXPECT_EQ(m_frame->ActiveChild()->geometry(), area->viewport()->rect());
}

} // namespace
} // namespace ek
