// SPDX-License-Identifier: GPL-3.0-or-later
#include "FrameFixture.h"

#include "waveedit/WEDoc.h"

#include <QDropEvent>
#include <QMainWindow>
#include <QMdiArea>
#include <QMenuBar>
#include <QMimeData>
#include <QUrl>

#include <fstream>

namespace ek {
namespace {

class DocumentsTest : public FrameFixture {
protected:
    Names RecentTexts()
    {
        Names texts;
        for (const QAction* action : SubMenu(0)->actions()) {
            if (CommandOf(*action) == ID_RECENT_FIRST + texts.size())
                texts.push_back(action->text().toStdString());
        }
        return texts;
    }

    std::string PathOf(const std::string& name) const { return (m_folder.Path() / name).string(); }
    std::string& Stored(int position)
    {
        return m_host.Services.Settings[u"Ek Wave Editor/RecentFile" + QString::number(position).toStdU16String()];
    }

    bool Drop(const QMimeData& data, Qt::DropActions offered)
    {
        QDragEnterEvent enter(QPoint(5, 5), offered, &data, Qt::LeftButton, Qt::NoModifier);
        enter.ignore();
        QCoreApplication::sendEvent(m_frame, &enter);
        QDropEvent drop(QPointF(5, 5), offered, &data, Qt::LeftButton, Qt::NoModifier);
        drop.ignore();
        QCoreApplication::sendEvent(m_frame, &drop);
        EXPECT_EQ(enter.isAccepted(), drop.isAccepted());
        EXPECT_TRUE(!drop.isAccepted() || drop.dropAction() == Qt::CopyAction);
        Settle();
        return drop.isAccepted();
    }
};

TEST_F(DocumentsTest, AFileThatIsNoSoundIsReportedAndLeavesNoWindow)
{
    std::ofstream(m_folder.Path() / "text.wav") << "no sound at all";
    EXPECT_FALSE(m_frame->OpenFile(m_folder.Path() / "text.wav"));
    EXPECT_EQ(m_prompts.Messages(), Names{"Can't open file text.wav"});
    EXPECT_TRUE(m_frame->Children().empty());
    EXPECT_TRUE(m_app.Documents().empty());
    EXPECT_TRUE(RecentTexts().empty());
}

TEST_F(DocumentsTest, TheTitleFollowsTheDocumentAndItsModifiedMark)
{
    CDocument* document = Open("song [*].wav", true);
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
    Open("stereo.wav");
    WriteWav(m_folder.Path() / "mono.wav", 1, MakeRamp(500), 22050);
    m_frame->OpenFile(m_folder.Path() / "mono.wav");
    EXPECT_EQ(m_frame->ActiveFormat(), static_cast<CWEDoc*>(m_app.Documents()[1])->Format());
    m_frame->Children()[0]->Activate();
    EXPECT_EQ(m_frame->ActiveFormat(), static_cast<CWEDoc*>(m_app.Documents()[0])->Format());
}

TEST_F(DocumentsTest, AClosedDocumentIsFreedAndTheOneUsedBeforeIsActiveAtOnce)
{
    m_prompts.AnswerOpen({MakeSound("one.wav"), MakeSound("two.wav"), MakeSound("three.wav")});
    Run(ID_FILE_OPEN);
    EXPECT_EQ(DocumentNames(), (Names{"one.wav", "two.wav", "three.wav"}));
    m_frame->Children()[0]->Activate();
    Run(ID_CLOSE_WINDOW);
    EXPECT_EQ(m_frame->windowTitle(), "three.wav[*] - Ek Wave Editor");
    EXPECT_TRUE(IsEnabled(ID_FILE_SAVE));
    Run(ID_CLOSE_WINDOW);
    Run(ID_CLOSE_WINDOW);
    EXPECT_EQ(m_frame->windowTitle(), "Ek Wave Editor");
    EXPECT_FALSE(IsEnabled(ID_CLOSE_WINDOW));
    Settle();
    EXPECT_TRUE(m_app.Documents().empty());
    EXPECT_EQ(m_folder.TempFileCount(), 0U);
    EXPECT_TRUE(m_prompts.Messages().empty());
}

TEST_F(DocumentsTest, ClosingAllStopsAtTheDocumentThatIsKept)
{
    Open("plain.wav");
    for (const char* name : {"discarded.wav", "kept.wav", "unasked.wav"})
        Open(name, true);
    m_prompts.AnswerMessage(MessageAnswer::No);
    m_prompts.AnswerMessage(MessageAnswer::Cancel);
    EXPECT_FALSE(m_frame->TryClose());
    EXPECT_EQ(DocumentNames(), (Names{"kept.wav", "unasked.wav"}));
    EXPECT_EQ(m_prompts.Messages().back(), "Save changes to kept.wav?");
    m_prompts.AnswerMessage(MessageAnswer::No);
    m_prompts.AnswerMessage(MessageAnswer::No);
    EXPECT_TRUE(m_frame->TryClose());
    EXPECT_TRUE(m_app.Documents().empty());
}

TEST_F(DocumentsTest, AFileOpenedAfterSavingReplacesItsWindow)
{
    Open("old.wav");
    Open("other.wav");
    m_frame->ReopenAs(*m_app.Documents()[0], MakeSound("new.wav"));
    EXPECT_EQ(DocumentNames(), (Names{"old.wav", "other.wav"})) << "its caller still uses the document";
    Settle();
    EXPECT_EQ(DocumentNames(), (Names{"other.wav", "new.wav"}));
}

TEST_F(DocumentsTest, RecentFilesAreLoadedOnceAndOpenedByTheirPlainName)
{
    Stored(1) = MakeSound("a & b.wav").string();
    Stored(2) = PathOf("deleted.wav");
    Stored(3) = MakeSound("c.wav").string();
    const Names expected = {PathOf("a && b.wav"), PathOf("c.wav")};
    EXPECT_EQ(RecentTexts(), expected);
    EXPECT_EQ(RecentTexts(), expected);
    EXPECT_TRUE(Run(ID_RECENT_FIRST));
    EXPECT_EQ(DocumentNames(), Names{"a & b.wav"});
}

TEST_F(DocumentsTest, ARecentFileThatOpensComesFirstAndOneThatFailsLeaves)
{
    m_frame->Menu();
    Open("one.wav");
    Open("two.wav");
    Run(ID_RECENT_FIRST + 1);
    EXPECT_EQ(RecentTexts(), (Names{PathOf("one.wav"), PathOf("two.wav")}));
    std::filesystem::remove(m_folder.Path() / "two.wav");
    Run(ID_RECENT_FIRST + 1);
    EXPECT_EQ(RecentTexts(), Names{PathOf("one.wav")});
}

TEST_F(DocumentsTest, TheFrameStoresTheRecentFilesWhenItHasLoadedThem)
{
    Stored(1) = "/kept";
    Open("one.wav");
    delete m_frame;
    EXPECT_EQ(Stored(1), "/kept");
    EXPECT_TRUE(m_app.Documents().empty());
    m_frame = new CMainFrame(m_page, m_app, &m_host);
    m_frame->Menu();
    Open("one.wav");
    delete m_frame;
    EXPECT_EQ(Stored(1), PathOf("one.wav"));
    EXPECT_EQ(m_folder.TempFileCount(), 0U);
}

TEST_F(DocumentsTest, DroppedFilesOpenInTheirOrderWithTheBytesOfTheirNames)
{
    std::filesystem::create_directory(m_folder.Path() / "folder.wav");
    for (const char* name : {"two.wav", "o%ne #1.wav", "caf\xE9.wav"})
        MakeSound(name);
    const std::string base = "file://" + m_folder.Path().string();
    QMimeData data;
    data.setData("text/uri-list", QByteArray::fromStdString(base + "/two.wav\r\n" + base + "/folder.wav\r\n" + base +
                                                            "/o%25ne%20%231.wav\r\n" + base + "/caf%E9.wav\r\n"));
    EXPECT_TRUE(Drop(data, Qt::CopyAction | Qt::MoveAction));
    EXPECT_EQ(DocumentNames(), (Names{"two.wav", "o%ne #1.wav", "caf\xE9.wav"}));
    EXPECT_TRUE(m_prompts.Messages().empty());
}

TEST_F(DocumentsTest, ADragWithoutFilesOrWithoutCopyIsRefused)
{
    QMimeData text;
    text.setText("song.wav");
    EXPECT_FALSE(Drop(text, Qt::CopyAction));
    QMimeData web;
    web.setUrls({QUrl("https://example.org/song.wav")});
    EXPECT_FALSE(Drop(web, Qt::CopyAction));
    QMimeData file;
    file.setUrls({QUrl::fromLocalFile(QString::fromStdString(MakeSound("one.wav").string()))});
    EXPECT_FALSE(Drop(file, Qt::MoveAction));
    EXPECT_TRUE(m_app.Documents().empty());
}

TEST_F(DocumentsTest, ARequestThatOpensNothingIsShown)
{
    m_frame->PassMessage("100% \"of\"");
    EXPECT_EQ(m_prompts.Messages(), Names{"Message: 100% \"of\""});
}

TEST_F(DocumentsTest, TheLastWindowClosedMaximizedMakesTheNextOneMaximizedInTheNextSessionToo)
{
    Run(ID_FILE_NEW);
    EXPECT_FALSE(m_frame->ActiveChild()->isMaximized());
    m_frame->ActiveChild()->showMaximized();
    EXPECT_TRUE(m_frame->TryClose());
    delete m_frame;
    m_frame = new CMainFrame(m_page, m_app, &m_host);
    Run(ID_FILE_NEW);
    EXPECT_TRUE(m_frame->ActiveChild()->isMaximized());
}

TEST_F(DocumentsTest, AMaximizedWindowLeavesTheTitleAndTheMenuBarToTheHost)
{
    QMainWindow host;
    host.menuBar()->addMenu("File");
    host.setWindowTitle("Host");
    host.setCentralWidget(new QWidget);
    delete m_frame;
    m_frame = new CMainFrame(host.centralWidget(), m_app, &m_host);
    host.show();
    Open("one.wav");
    m_frame->ActiveChild()->showMaximized();
    Settle();
    EXPECT_EQ(host.windowTitle(), "Host");
    EXPECT_EQ(host.menuBar()->cornerWidget(), nullptr);
}

TEST_F(DocumentsTest, WindowsFillTheWorkspace)
{
    const QMdiArea* area = m_frame->findChild<QMdiArea*>();
    Run(ID_FILE_NEW);
    m_window.resize(700, 500);
    m_page->resize(700, 500);
    Settle();
    EXPECT_EQ(m_frame->ActiveChild()->geometry(), area->viewport()->rect()) << "after resizing too";
    Run(ID_FILE_NEW);
    Run(ID_WINDOW_TILE_HORIZONTALLY);
    const auto children = m_frame->Children();
    const QRect upper = children[0]->geometry();
    const QRect lower = children[1]->geometry();
    EXPECT_EQ(upper | lower, area->viewport()->rect());
    EXPECT_EQ(lower.top(), upper.bottom() + 1);
    Run(ID_WINDOW_TILE_VERTICALLY);
    EXPECT_EQ(children[0]->geometry() | children[1]->geometry(), area->viewport()->rect());
    EXPECT_EQ(children[1]->geometry().left(), children[0]->geometry().right() + 1);
}

} // namespace
} // namespace ek
