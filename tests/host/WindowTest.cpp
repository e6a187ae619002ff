// SPDX-License-Identifier: GPL-3.0-or-later
#include "Scratch.h"
#include "StubModule.h"

#include "ek/HostFrame.h"
#include "ek/Message.h"
#include "host/HostWindow.h"
#include "host/OpenRequest.h"
#include "host/SettingsStore.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <QAbstractEventDispatcher>
#include <QApplication>
#include <QEventLoop>
#include <QKeyEvent>
#include <QLibraryInfo>
#include <QMenuBar>
#include <QStatusBar>
#include <QTest>
#include <QTimer>

#include <functional>

namespace ek {
namespace {

using testing::ElementsAre;
using testing::IsEmpty;
using testing::StartsWith;

class WindowTest : public testing::Test {
protected:
    void Start()
    {
        m_window = std::make_unique<HostWindow>(m_module.Exports, m_settings, SilentOptions());
        ASSERT_TRUE(m_window->Start());
        m_window->show();
        m_window->Settle();
    }

    static HostWindowOptions SilentOptions()
    {
        return {.SkinOfThisRun = "Light",
                .AskDesktop = false,
                .AudioOfThisRun = AudioDeviceChoice{.System = "null", .Device = {}, .File = {}}};
    }

    static QStringList TextsOf(const QWidget& menu)
    {
        QStringList texts;
        for (const QAction* action : menu.actions())
            texts.append(action->isSeparator() ? QStringLiteral("-") : action->text().remove(u'&'));
        return texts;
    }

    /// Runs the event loop, which sleeps between events, until the condition comes true. The limit only ends a test
    /// that fails.
    static bool Comes(const std::function<bool()>& condition)
    {
        QEventLoop loop;
        QTimer look;
        QObject::connect(&look, &QTimer::timeout, [&] {
            if (condition())
                loop.quit();
        });
        look.start(5);
        QTimer::singleShot(60000, &loop, [&] { loop.exit(1); });
        return loop.exec() == 0;
    }

    /// Opens the File menu as a person does; where the entry is in it.
    QPoint ClickFileMenu(QAction* entry)
    {
        QMenuBar* bar = m_window->menuBar();
        QTest::mouseClick(bar, Qt::LeftButton, {}, bar->actionGeometry(bar->actions().first()).center());
        EXPECT_TRUE(m_module.FileMenu->isVisible());
        return m_module.FileMenu->actionGeometry(entry).center();
    }

    /// A menu that has just opened takes the pointer for moved only after some distance or several movements.
    void HoverFileMenu(const QPoint& position)
    {
        for (int i = 0; i < 10; ++i)
            QTest::mouseMove(m_module.FileMenu, position + QPoint(i % 2, 0));
    }

    void AboutToSleep() { QMetaObject::invokeMethod(QAbstractEventDispatcher::instance(), "aboutToBlock"); }

    Scratch m_folder;
    StubModule m_module;
    SettingsStore m_settings{m_folder / "settings.ini"};
    std::unique_ptr<HostWindow> m_window;
};

TEST_F(WindowTest, TheModuleIsBroughtUpInTheOrderThatItNeeds)
{
    Start();
    m_module.Calls.resize(6);
    EXPECT_THAT(m_module.Calls, ElementsAre("GetModuleInfo", "Initialize", "GetMenu", "GetAccelTable", "LoadSkin Light",
                                            "ChangeState 1"));
    EXPECT_EQ(m_module.Frame->parentWidget()->parentWidget(), m_window.get());
    EXPECT_GE(m_module.Host->GetVersion(), 0x01000000u);
    EXPECT_NE(m_module.Host->GetServices(), nullptr);
    EXPECT_NE(m_module.Host->GetSkin(), nullptr);
}

TEST_F(WindowTest, AModuleThatRefusesIsNotDrivenFurther)
{
    m_module.Refuses = true;
    HostWindow window(m_module.Exports, m_settings, SilentOptions());
    EXPECT_FALSE(window.Start());
    EXPECT_TRUE(window.close());
    EXPECT_THAT(m_module.Calls, ElementsAre("GetModuleInfo", "Initialize"));
}

TEST_F(WindowTest, ClosingAsksFirstAndLeavesInOrder)
{
    Start();
    m_module.Calls.clear();
    m_module.MayClose = false;
    EXPECT_FALSE(m_window->close());
    EXPECT_THAT(m_module.Calls, ElementsAre("TryClose"));
    EXPECT_TRUE(m_window->isVisible());

    m_module.Calls.clear();
    m_module.MayClose = true;
    EXPECT_TRUE(m_window->close());
    m_window.reset();
    EXPECT_THAT(m_module.Calls, ElementsAre("TryClose", "ChangeState 0", "Free"));
    EXPECT_TRUE(SettingsStore(m_folder / "settings.ini").Get("Host", "Geometry").has_value());
}

TEST_F(WindowTest, MenuEntriesShowTheStateThatTheModuleGives)
{
    Start();
    m_module.Disabled = {57601};
    m_module.Unknown = {57603};
    m_module.Checked = {1110};
    emit m_module.FileMenu->aboutToShow();
    emit m_module.ViewMenu->aboutToShow();
    EXPECT_FALSE(m_module.FileMenu->actions()[0]->isEnabled());
    EXPECT_FALSE(m_module.FileMenu->actions()[1]->isEnabled());
    EXPECT_TRUE(m_module.ViewMenu->actions()[0]->isChecked());

    m_module.Disabled.clear();
    m_module.Checked.clear();
    emit m_module.FileMenu->aboutToShow();
    emit m_module.ViewMenu->aboutToShow();
    EXPECT_TRUE(m_module.FileMenu->actions()[0]->isEnabled());
    EXPECT_FALSE(m_module.ViewMenu->actions()[0]->isChecked());
}

TEST_F(WindowTest, AChosenEntryBecomesOneCommandAlsoAfterRebuilding)
{
    Start();
    m_module.Host->GetServices()->RefreshMenu(u"Ek Wave Editor");
    m_window->Settle();
    m_module.FileMenu->actions()[0]->trigger();
    m_module.FileMenu->actions()[2]->trigger();
    m_module.ViewMenu->actions()[1]->menu()->actions()[0]->trigger();
    m_window->menuBar()->actions().last()->menu()->actions().first()->trigger();
    EXPECT_THAT(m_module.Commands, ElementsAre(57601, 1111, 1138)) << "the last is About";
    EXPECT_TRUE(m_window->RunCommand(1025));
    m_module.Unknown = {1027};
    EXPECT_FALSE(m_window->RunCommand(1027));
}

TEST_F(WindowTest, TheHostsEntriesStayLastWhenTheModuleAddsSomeAndLeaveItItsKeys)
{
    m_module.Keys = {{Qt::Key_Q, Qt::ControlModifier, false, 1111}};
    Start();
    EXPECT_TRUE(m_module.FileMenu->actions().last()->shortcut().isEmpty());
    EXPECT_EQ(TextsOf(*m_window->menuBar()), (QStringList{"File", "View", "Transport", "Help"}));
    m_module.FileMenu->addAction("/music/recent.wav")->setData(8000);
    m_module.Menu->addMenu("Window");
    m_module.Host->GetServices()->RefreshMenu(u"Ek Wave Editor");
    m_window->Settle();
    EXPECT_EQ(TextsOf(*m_module.FileMenu), (QStringList{"Open", "Save", "Print", "/music/recent.wav", "-", "Quit"}));
    EXPECT_EQ(TextsOf(*m_module.ViewMenu), (QStringList{"Effects", "More", "-", "Skin"}));
    EXPECT_EQ(TextsOf(*m_window->menuBar()), (QStringList{"File", "View", "Window", "Transport", "Help"}));
}

TEST_F(WindowTest, QuitFreesTheModuleOnlyWhenItsMenuHasFinished)
{
    Start();
    const QPoint quit = ClickFileMenu(m_module.FileMenu->actions().last());
    m_module.Calls.clear();
    QTest::mouseClick(m_module.FileMenu, Qt::LeftButton, {}, quit);
    EXPECT_THAT(m_module.Calls, IsEmpty());
    QCoreApplication::processEvents();
    EXPECT_THAT(m_module.Calls, ElementsAre("TryClose", "ChangeState 0", "Free"));
    EXPECT_FALSE(m_window->isVisible());
}

TEST_F(WindowTest, TheStatusTextOfAnEntryUnderThePointerIsShown)
{
    m_module.FileMenu->actions()[0]->setStatusTip("Opens a sound");
    Start();
    const QPoint open = ClickFileMenu(m_module.FileMenu->actions()[0]);
    HoverFileMenu(open);
    EXPECT_EQ(m_window->statusBar()->currentMessage(), "Opens a sound");
    HoverFileMenu(m_module.FileMenu->actionGeometry(m_module.FileMenu->actions()[1]).center());
    EXPECT_EQ(m_window->statusBar()->currentMessage(), "");
}

TEST_F(WindowTest, NothingIsAskedOfAModuleThatRunsALoopOfItsOwn)
{
    Start();
    const auto file = m_folder.Write("a.wav", "");
    QEventLoop program;
    QTimer::singleShot(0, &program, [&] {
        m_module.Calls.clear();
        m_module.Host->GetServices()->RefreshMenu(u"Ek Wave Editor");
        m_window->OpenFiles({file});
        QEventLoop progress;
        QTimer::singleShot(0, &progress, [&] {
            m_window->Settle();
            m_window->Settle();
            EXPECT_FALSE(m_window->close());
            progress.quit();
        });
        progress.exec();
        EXPECT_THAT(m_module.Calls, IsEmpty());
        EXPECT_THAT(m_module.Requests, IsEmpty());
        program.quit();
    });
    program.exec();
    EXPECT_TRUE(Comes([&] { return !m_module.Requests.empty(); }));
    EXPECT_THAT(m_module.Calls, ElementsAre("GetMenu"));
    EXPECT_TRUE(m_window->close());
}

TEST_F(WindowTest, FilesThatArriveWhileItAsksKeepTheEditorOpen)
{
    Start();
    m_module.OnTryClose = [this] { m_window->OpenFiles({m_folder.Write("a.wav", "")}); };
    EXPECT_FALSE(m_window->close());
    EXPECT_TRUE(Comes([&] { return !m_module.Requests.empty(); }));
    m_module.OnTryClose = nullptr;
    EXPECT_TRUE(m_window->close());
    EXPECT_FALSE(m_window->OpenFiles({m_folder / "a.wav"}));
}

TEST_F(WindowTest, AnOpenMenuIsNotRebuiltUnderThePointer)
{
    Start();
    m_module.FileMenu->popup(QPoint(10, 10));
    m_module.Calls.clear();
    m_module.Host->GetServices()->RefreshMenu(u"Ek Wave Editor");
    AboutToSleep();
    EXPECT_THAT(m_module.Calls, IsEmpty());
    m_module.FileMenu->hide();
    m_window->Settle();
    EXPECT_THAT(m_module.Calls, ElementsAre("GetMenu"));
}

TEST_F(WindowTest, TheModuleSeesEachKeyOnceBeforeTheWidgetAndCanKeepIt)
{
    class KeyCounter : public QWidget {
    public:
        using QWidget::QWidget;
        int Keys = 0;

    protected:
        void keyPressEvent(QKeyEvent* event) override
        {
            ++Keys;
            event->ignore();
        }
    };
    Start();
    KeyCounter child(m_module.Frame);
    child.setFocusPolicy(Qt::StrongFocus);
    child.show();
    child.setFocus();
    m_window->activateWindow();
    ASSERT_EQ(QApplication::focusWidget(), &child);
    m_module.TakenKey = Qt::Key_K;
    QTest::keyClick(m_window->windowHandle(), Qt::Key_J);
    EXPECT_EQ(m_module.KeysSeen, 1);
    EXPECT_EQ(child.Keys, 1);
    QTest::keyClick(m_window->windowHandle(), Qt::Key_K);
    EXPECT_EQ(m_module.KeysSeen, 2);
    EXPECT_EQ(child.Keys, 1);
}

TEST_F(WindowTest, IdleTimeFollowsActivityAndThenStops)
{
    Start();
    AboutToSleep();
    const int afterStart = m_module.IdleCalls;
    for (int i = 0; i < 100; ++i)
        AboutToSleep();
    EXPECT_EQ(m_module.IdleCalls, afterStart);
    EXPECT_GE(afterStart, 1);
    QTest::keyClick(m_window->windowHandle(), Qt::Key_J);
    EXPECT_TRUE(Comes([&] { return m_module.IdleCalls > afterStart; }));

    const int afterKey = m_module.IdleCalls;
    int ticks = 0;
    EXPECT_TRUE(Comes([&] { return ++ticks == 80; }));
    EXPECT_LE(m_module.IdleCalls, afterKey + 1) << "timers alone keep the process busy";
}

TEST_F(WindowTest, FilesAreOpenedAsOneRequest)
{
    Start();
    const auto first = m_folder.Write("a.wav", "");
    const auto second = m_folder.Write("b c.wav", "");
    m_window->OpenFiles({first});
    m_window->OpenFiles({second});
    EXPECT_THAT(m_module.Requests, IsEmpty());
    EXPECT_TRUE(Comes([&] { return !m_module.Requests.empty(); }));
    EXPECT_THAT(m_module.Requests, ElementsAre(MakeOpenRequest({first, second}).Text));
}

TEST_F(WindowTest, ATextOfTheModuleAppearsInTheStatusBar)
{
    Start();
    const char16_t text[] = u"/music/a.wav";
    for (const uintptr_t command : {11000, 11001, 11002}) {
        m_window->statusBar()->clearMessage();
        MessageEvent message(EK_WM_COMMAND, command, reinterpret_cast<intptr_t>(text));
        EXPECT_TRUE(QCoreApplication::sendEvent(m_module.Frame->parentWidget()->parentWidget(), &message)) << command;
        EXPECT_EQ(m_window->statusBar()->currentMessage(), command == 11000 ? "/music/a.wav" : "") << command;
    }
    MessageEvent other(EK_WM_COMMAND, 13000, 0);
    EXPECT_FALSE(QCoreApplication::sendEvent(m_window.get(), &other));
    m_module.Host->GetServices()->ShowStatusText(u"Saved", 3000);
    EXPECT_EQ(m_window->statusBar()->currentMessage(), "Saved");
}

TEST_F(WindowTest, TheTitleIsTheFramesTitle)
{
    Start();
    EXPECT_EQ(m_window->windowTitle(), "Ek Wave Editor");
    m_module.Frame->setWindowTitle("a.wav[*] - Ek Wave Editor");
    m_module.Frame->setWindowModified(true);
    EXPECT_EQ(m_window->windowTitle(), "a.wav[*] - Ek Wave Editor");
    EXPECT_TRUE(m_window->isWindowModified());
}

TEST_F(WindowTest, AChosenSkinIsWornAtOnceAndKept)
{
    Start();
    m_module.Calls.clear();
    for (QAction* action : m_module.ViewMenu->actions().last()->menu()->actions()) {
        if (action->text() == "Dark")
            action->trigger();
    }
    EXPECT_THAT(m_module.Calls, ElementsAre("LoadSkin Dark"));
    m_window.reset();
    EXPECT_EQ(SettingsStore(m_folder / "settings.ini").Get("Host", "Skin"), "Dark");
}

TEST(ModuleTest, AModuleThatCannotBeLoadedIsToldWithItsReason)
{
    const Scratch folder;
    ModuleExports exports;
    std::string reason;
    EXPECT_FALSE(LoadModule({folder / "missing.so"}, exports, reason));
    EXPECT_THAT(reason, testing::HasSubstr("missing"));
    EXPECT_FALSE(LoadModule({folder.Write("text.so", "not a library")}, exports, reason));
    EXPECT_THAT(reason, testing::HasSubstr("text.so"));
    const QString libraries = QLibraryInfo::path(QLibraryInfo::LibrariesPath);
    EXPECT_FALSE(LoadModule({libraries.toStdString() + "/libQt6Core.so.6"}, exports, reason));
    EXPECT_THAT(reason, testing::EndsWith("EkInitialize"));
}

} // namespace
} // namespace ek
