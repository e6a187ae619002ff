// SPDX-License-Identifier: GPL-3.0-or-later
#include "ek/Module.h"
#include "support/RecordingHost.h"
#include "support/Signals.h"
#include "support/TestFolder.h"

#include <gtest/gtest.h>

#include <QApplication>
#include <QKeyEvent>
#include <QMdiSubWindow>
#include <QMenu>
#include <QMessageBox>
#include <QTimer>
#include <QToolBar>

#include <dlfcn.h>

namespace ek {
namespace {

/// The built module, as a host loads it. It stays loaded: Qt keeps references into it.
template <class Function>
Function Find(const char* name)
{
    static void* module = dlopen(EK_BIN_DIR "/libEkWaveEditor.so", RTLD_NOW | RTLD_LOCAL | RTLD_NODELETE);
    EXPECT_NE(module, nullptr) << dlerror();
    return reinterpret_cast<Function>(module ? dlsym(module, name) : nullptr);
}

#define EK_FIND(name) Find<decltype(&(name))>(#name)

class ExportsTest : public testing::Test {
protected:
    ExportsTest()
    {
        if (!EK_FIND(EkInitialize))
            throw std::runtime_error("the module is built beside the tests");
    }

    ~ExportsTest() override
    {
        if (m_frame)
            EK_FIND(EkFree)(m_frame);
    }

    void Initialize()
    {
        m_frame = EK_FIND(EkInitialize)(&m_page, nullptr, nullptr, &m_host);
        ASSERT_NE(m_frame, nullptr);
        EK_FIND(EkChangeState)(m_frame, 1);
    }

    void Free() { EK_FIND(EkFree)(std::exchange(m_frame, nullptr)); }

    bool Run(uint32_t id) { return EK_FIND(EkOnCmdMsg)(m_frame, id, CN_COMMAND, nullptr, nullptr) != 0; }

    qsizetype WindowCount() const { return m_frame->findChildren<QMdiSubWindow*>().size(); }

    TestFolder m_folder;
    RecordingHost m_host;
    QWidget m_page;
    QWidget* m_frame = nullptr;
};

TEST_F(ExportsTest, TheModuleTellsItsNameOnlyIntoARecordOfTheRightSize)
{
    ModuleInfo info{.Size = 24, .Name = nullptr, .Version = nullptr, .Company = nullptr, .Kind = 0};
    EXPECT_EQ(EK_FIND(EkGetModuleInfo)(nullptr, &info), 0);
    EXPECT_EQ(info.Name, nullptr);
    info.Size = 20;
    EXPECT_EQ(EK_FIND(EkGetModuleInfo)(nullptr, &info), 1);
    EXPECT_EQ(std::u16string(info.Name), u"Ek Wave Editor");
    EXPECT_EQ(std::u16string(info.Version), u"5.0.58");
    EXPECT_EQ(info.Kind, 2U);
}

TEST_F(ExportsTest, AHostOlderThanOneDotZeroIsRefusedWithAMessage)
{
    m_host.Version = 0x00090005;
    QString text;
    QTimer watch;
    QObject::connect(&watch, &QTimer::timeout, [&] {
        if (auto* box = qobject_cast<QMessageBox*>(QApplication::activeModalWidget())) {
            text = box->text();
            box->accept();
        }
    });
    watch.start(1);
    EXPECT_EQ(EK_FIND(EkInitialize)(&m_page, nullptr, nullptr, &m_host), nullptr);
    EXPECT_TRUE(text.startsWith("You have Ek MP3 Vantler frame version 0.95.\n"));
    EXPECT_TRUE(m_host.Calls.Take().empty());
    EXPECT_TRUE(m_page.children().isEmpty());
}

TEST_F(ExportsTest, AHostWithoutServicesIsServedToo)
{
    m_frame = EK_FIND(EkInitialize)(&m_page, nullptr, nullptr, nullptr);
    ASSERT_NE(m_frame, nullptr);
    EXPECT_TRUE(Run(57600));
    EXPECT_NE(EK_FIND(EkGetMenu)(m_frame), nullptr);
    EK_FIND(EkChangeState)(m_frame, 1);
    EK_FIND(EkProcessDllIdle)();
    Free();
    m_host.HasServices = m_host.HasDevices = m_host.HasSkin = false;
    Initialize();
    EXPECT_EQ(EK_FIND(EkLoadSkin)(m_frame, u"Dark"), 1);
}

TEST_F(ExportsTest, TheModuleServesAHostFromItsStartToItsEndAndThenAgain)
{
    WriteWav(m_folder.Path() / "one.wav", 2, MakeRamp(5000));
    const std::u16string request = u"Open \"" + m_folder.Path().u16string() + u"/one.wav\"";
    for (int round = 0; round < 2; ++round) {
        Initialize();
        EXPECT_EQ(m_frame->parentWidget(), &m_page);
        EXPECT_FALSE(m_frame->isWindow());
        EXPECT_FALSE(m_frame->isHidden());
        EXPECT_EQ(m_host.Calls.Count("Recorder.Register(Ek Wave Editor, 1)"), 1U);
        EXPECT_EQ(EK_FIND(EkInitialize)(&m_page, nullptr, nullptr, &m_host), nullptr) << "one at a time";
        const QMenu* menu = EK_FIND(EkGetMenu)(m_frame);
        EXPECT_EQ(EK_FIND(EkGetMenu)(m_frame), menu);
        EXPECT_EQ(menu->actions().size(), 5);
        EXPECT_EQ(EK_FIND(EkPassMessage)(m_frame, nullptr, request.c_str()), 1);
        EXPECT_EQ(WindowCount(), 1);
        EK_FIND(EkProcessDllIdle)();
        for (const QAction* action : m_frame->findChild<QToolBar*>()->findChildren<QAction*>())
            EXPECT_TRUE(!action->data().isValid() || !action->icon().isNull()) << action->toolTip().toStdString();
        EXPECT_EQ(EK_FIND(EkTryClose)(), 1);
        EXPECT_EQ(WindowCount(), 0);
        Free();
        EXPECT_EQ(m_folder.TempFileCount(), 0U);
        EXPECT_TRUE(m_page.children().isEmpty());
        m_host.Calls.Take();
    }
    EXPECT_EQ(m_host.Services.Settings[u"Ek Wave Editor/RecentFile1"], (m_folder.Path() / "one.wav").string());
}

TEST_F(ExportsTest, KeysAreTranslatedByEitherFilterAndCommandsAreTheFramesOwn)
{
    Initialize();
    QKeyEvent press(QEvent::KeyPress, Qt::Key_N, Qt::ControlModifier);
    const WindowMessage message{m_frame, &press};
    EXPECT_EQ(EK_FIND(EkFilterDllMsg)(&message), 1);
    EXPECT_EQ(EK_FIND(EkPreTranslateMessage)(nullptr, &message), 1);
    EXPECT_EQ(WindowCount(), 2);
    EXPECT_EQ(EK_FIND(EkGetAccelTable)(m_frame)->Count, 18U);
    EXPECT_EQ(EK_FIND(EkOnCmdMsg)(&m_page, 57600, CN_COMMAND, nullptr, nullptr), 0) << "not the module's window";
}

} // namespace
} // namespace ek
