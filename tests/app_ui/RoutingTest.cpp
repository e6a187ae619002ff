// SPDX-License-Identifier: GPL-3.0-or-later
#include "FrameFixture.h"

#include "app/ui/MDIClient.h"
#include "app/ui/TransportRouter.h"
#include "platform/Events.h"
#include "resources/Commands.h"

#include <gmock/gmock.h>

#include <QTimer>

namespace ek {
namespace {

using testing::ElementsAre;

class SpyDocument : public CDocument {
public:
    bool OnOpenDocument(const std::filesystem::path&) override { return true; }
    bool OnSaveDocument(const std::filesystem::path&) override { return true; }
    bool DoSave() override { return true; }
    bool SaveAs() override { return true; }
    bool SaveModified() override { return true; }
};

class QuietSite final : public ViewSite {
public:
    void SetActiveFormat(const WAVEFORMATEXTENSIBLE&) override {}
    bool RunCommand(uint32_t) override { return false; }
    void ShowStatusText(const QString&) override {}
};

class SpyView : public CView {
public:
    using CView::CView;

    void OnHostMessage(MessageEvent& message) override
    {
        Seen.push_back(message.Id == EK_WM_COMMAND ? static_cast<uint32_t>(message.WParam) : message.Id);
        LastLParam = message.LParam;
    }

    std::vector<uint32_t> Seen;
    intptr_t LastLParam = 0;
};

class TransportTest : public testing::Test {
protected:
    std::optional<bool> Send(uint32_t command, intptr_t parameter = 0)
    {
        MessageEvent message(EK_WM_COMMAND, command, parameter);
        return m_router.Route(message, m_active);
    }

    std::optional<bool> SendMessage(uint32_t id)
    {
        MessageEvent message(id, 0, 0);
        return m_router.Route(message, m_active);
    }

    SpyDocument m_document;
    QuietSite m_site;
    MessageKeeper m_host;
    QWidget* m_frame = new QWidget(new QWidget(&m_host));
    TransportRouter m_router{*m_frame};
    SpyView m_first{m_document, m_site, nullptr};
    SpyView m_second{m_document, m_site, nullptr};
    CView* m_active = &m_first;
};

TEST_F(TransportTest, WithoutAPlayingViewNobodyTakesTheTransport)
{
    for (const uint32_t id : {13000, 13005, 13015, 13020, 13025, 13030, 1035})
        EXPECT_EQ(Send(id), false) << id;
    EXPECT_EQ(SendMessage(EK_WM_RELEASE_PLAYER), false);
    m_active = nullptr;
    EXPECT_EQ(Send(13010), false);
    EXPECT_TRUE(m_first.Seen.empty());
}

TEST_F(TransportTest, PlayMakesTheActiveViewTheOneThatGetsTheRest)
{
    EXPECT_EQ(Send(13010), true);
    m_active = &m_second;
    for (const uint32_t id : {13000, 13005, 13015, 13025, 13030})
        EXPECT_EQ(Send(id), true) << id;
    EXPECT_EQ(Send(1035, 42), true);
    EXPECT_EQ(m_first.LastLParam, 42);
    EXPECT_TRUE(m_second.Seen.empty());
    Send(13010);
    Send(13010);
    EXPECT_THAT(m_first.Seen, ElementsAre(13010, 13000, 13005, 13015, 13025, 13030, 1035, 13020));
    EXPECT_THAT(m_second.Seen, ElementsAre(13010, 13010)) << "and stops the one before";
}

TEST_F(TransportTest, AViewIsForgottenByStopByReleaseAndWhenItGoes)
{
    auto passing = std::make_unique<SpyView>(m_document, m_site, nullptr);
    m_active = passing.get();
    Send(13010);
    EXPECT_EQ(Send(13020), true);
    EXPECT_EQ(m_router.CurrentView(), nullptr);
    EXPECT_EQ(SendMessage(EK_WM_TAKE_PLAYER), true);
    EXPECT_EQ(SendMessage(EK_WM_RELEASE_PLAYER), true);
    EXPECT_EQ(m_router.CurrentView(), nullptr);
    EXPECT_THAT(passing->Seen, ElementsAre(13010, 13020, EK_WM_TAKE_PLAYER, EK_WM_RELEASE_PLAYER));
    Send(13010);
    passing.reset();
    EXPECT_EQ(Send(13015), false);
}

TEST_F(TransportTest, RequestsToTheHostGoToTheParentOfTheFramesParentAndTheRestTheOrdinaryWay)
{
    EXPECT_EQ(Send(11000, 1234), true);
    EXPECT_EQ(Send(11002, 5), true);
    EXPECT_THAT(m_host.Messages, ElementsAre(MessageKeeper::Message{EK_WM_COMMAND, 11000, 1234},
                                             MessageKeeper::Message{EK_WM_COMMAND, 11002, 5}));
    for (const uint32_t id : {11001, 13090, 57601})
        EXPECT_EQ(Send(id), std::nullopt) << id;
    EXPECT_EQ(SendMessage(EK_WM_SETUP_CAPTURE), std::nullopt);
    m_frame->setParent(nullptr);
    EXPECT_EQ(Send(11000), false);
    delete m_frame;
}

/// Notes that it was offered a command, and takes it when it is the chosen one.
struct Offers {
    inline static std::vector<int> Places;
    inline static int Taker = 0;
};

template <class Base, int Place>
class Offered final : public Base {
public:
    using Base::Base;

    bool OnCmdMsg(uint32_t, CommandCode, CommandUi*) override
    {
        Offers::Places.push_back(Place);
        return Offers::Taker == Place;
    }
};

class TargetArea : public QMdiArea, public CCmdTarget {};

class SpyFrame final : public CMDIFrameWnd {
public:
    SpyFrame(QMdiArea* client, CCmdTarget* application) : CMDIFrameWnd(nullptr)
    {
        SetClient(client);
        SetApplication(application);
    }

    std::span<const CommandEntry> CommandTable() const override
    {
        Offers::Places.push_back(5);
        return {};
    }
};

TEST(CommandRouting, ClientViewDocumentChildFrameAndApplicationAreAskedUntilOneTakesIt)
{
    Offered<SpyDocument, 3> document;
    QuietSite site;
    Offered<CCmdTarget, 6> application;
    auto* client = new Offered<TargetArea, 1>;
    SpyFrame frame(client, &application);
    const auto offer = [&](int taker) {
        Offers::Places.clear();
        Offers::Taker = taker;
        EXPECT_EQ(frame.OnCmdMsg(10, CN_COMMAND, nullptr), taker != 0);
        return Offers::Places;
    };
    EXPECT_THAT(offer(0), ElementsAre(1, 5, 6));
    auto* child = new Offered<CMDIChildWnd, 4>(document);
    child->SetView(new Offered<SpyView, 2>(document, site, child));
    client->addSubWindow(child);
    frame.show();
    child->show();
    child->Activate();
    EXPECT_THAT(offer(0), ElementsAre(1, 2, 3, 4, 5, 6));
    EXPECT_THAT(offer(3), ElementsAre(1, 2, 3));
    delete child;
}

/// A view as one that can play.
class PlayingView final : public SpyView {
public:
    using SpyView::SpyView;

    bool CanPlay() const override { return true; }
};

class CommandsTest : public FrameFixture {
protected:
    ~CommandsTest() override { delete m_frame; } // before the document of its view

    void AddPlayingView()
    {
        auto* child = new CMDIChildWnd(m_document);
        child->SetView(new PlayingView(m_document, *m_frame, child));
        static_cast<CMDIClient*>(m_frame->centralWidget())->AddChild(child);
    }

    SpyDocument m_document;
};

TEST_F(CommandsTest, AMessageThatNobodyTookStaysIgnored)
{
    EXPECT_FALSE(Run(ID_TRANSPORT_PLAY)) << "no view";
    EXPECT_TRUE(Run(ID_RECORD)) << "handled, if only to say that it is disabled";
    EXPECT_FALSE(IsEnabled(ID_RECORD));
    MessageEvent pause(EK_WM_COMMAND, ID_TRANSPORT_PAUSE, 0);
    QCoreApplication::sendEvent(m_frame, &pause);
    EXPECT_FALSE(pause.isAccepted());
    MessageEvent create(EK_WM_COMMAND, ID_FILE_NEW, 0);
    QCoreApplication::sendEvent(m_frame, &create);
    EXPECT_TRUE(create.isAccepted());
    EXPECT_EQ(DocumentNames(), Names{"Untitled"});
}

TEST_F(CommandsTest, TheUpdateOfNewTellsTheHostWhetherTheActiveViewCanPlay)
{
    EXPECT_TRUE(IsEnabled(ID_FILE_NEW));
    EXPECT_EQ(m_host.Calls.Take(), Names{"Player.UpdateControls(Ek Wave Editor, 0)"});
    Run(ID_FILE_NEW);
    m_host.Calls.Take();
    IsEnabled(ID_FILE_NEW);
    EXPECT_EQ(m_host.Calls.Take(), Names{"Player.UpdateControls(Ek Wave Editor, 0)"}) << "there is no sound in it";
    AddPlayingView();
    m_host.Calls.Take();
    IsEnabled(ID_FILE_NEW);
    EXPECT_EQ(m_host.Calls.Take(), Names{"Player.UpdateControls(Ek Wave Editor, 1)"});
}

TEST_F(CommandsTest, NothingClosesOrRunsInTheMiddleOfWork)
{
    Open("one.wav");
    m_frame->ActivateCurrentView();
    ManualResetEvent release;
    QTimer::singleShot(0, m_frame, [&] {
        EXPECT_FALSE(m_frame->TryClose());
        EXPECT_FALSE(Run(ID_FILE_NEW));
        EXPECT_TRUE(Run(ID_TRANSPORT_STOP)) << "but what plays can be stopped";
        EXPECT_EQ(m_frame->CurrentView(), nullptr);
        EXPECT_FALSE(m_frame->ActiveChild()->close());
        m_frame->PassMessage("Open \"" + MakeSound("two.wav").string() + '"');
        EXPECT_EQ(DocumentNames(), Names{"one.wav"});
        release.Set();
    });
    RunInBackground("", false, [&](CProgressDlg&) {
        release.Wait();
        return WorkResult::Finished;
    });
    m_frame->OnIdle();
    Settle();
    EXPECT_EQ(DocumentNames(), (Names{"one.wav", "two.wav"})) << "what waited follows in idle time";
    EXPECT_TRUE(m_frame->TryClose());
}

TEST_F(CommandsTest, WindowCommandsNeedAWindowAndGoAround)
{
    const uint32_t ids[] = {ID_WINDOW_CASCADE, ID_WINDOW_TILE_HORIZONTALLY, ID_WINDOW_TILE_VERTICALLY, ID_NEXT_WINDOW,
                            ID_PREVIOUS_WINDOW};
    for (const uint32_t id : ids)
        EXPECT_FALSE(IsEnabled(id)) << id;
    for (int i = 0; i < 3; ++i)
        Run(ID_FILE_NEW);
    for (const uint32_t id : ids)
        EXPECT_TRUE(IsEnabled(id)) << id;
    const std::vector<CMDIChildWnd*> children = m_frame->Children();
    Run(ID_NEXT_WINDOW);
    EXPECT_EQ(m_frame->ActiveChild(), children[0]);
    Run(ID_PREVIOUS_WINDOW);
    Run(ID_PREVIOUS_WINDOW);
    EXPECT_EQ(m_frame->ActiveChild(), children[1]);
}

/// Commands that get their handler with the feature they belong to, and the transport's own, which are messages.
const std::set<uint32_t> InertOnPurpose = {
    ID_EFFECTS_LIBRARY,    ID_FILE_TABS,       ID_FULL_SCREEN,       ID_CLOSE_ALL,
    ID_SAVE_ALL,           ID_WINDOW_LIST,     ID_WINDOW_ARRANGE,    ID_FILE_CLOSE,
    ID_TRANSPORT_POSITION, ID_TRANSPORT_START, ID_TRANSPORT_BACK,    ID_TRANSPORT_PLAY,
    ID_TRANSPORT_PAUSE,    ID_TRANSPORT_STOP,  ID_TRANSPORT_FORWARD, ID_TRANSPORT_END};

TEST_F(CommandsTest, EveryCommandHasOneHandlerOrIsInertOnPurpose)
{
    Open("one.wav");
    const AppCommands application(*m_frame);
    const CCmdTarget* const targets[] = {dynamic_cast<CCmdTarget*>(m_frame->centralWidget()),
                                         m_frame->ActiveView(),
                                         m_app.Documents()[0],
                                         m_frame->ActiveChild(),
                                         m_frame,
                                         &application};
    for (const CommandInfo& info : CommandInfos()) {
        std::ptrdiff_t handlers = 0;
        for (const CCmdTarget* target : targets) {
            handlers += std::ranges::count_if(target->CommandTable(), [&](const CommandEntry& entry) {
                return entry.FirstId <= info.Id && info.Id <= entry.LastId;
            });
        }
        EXPECT_EQ(handlers, InertOnPurpose.contains(info.Id) ? 0 : 1) << info.Symbol;
    }
}

TEST_F(CommandsTest, EveryWidgetOfTheFrameHearsOfTheModulesActivation)
{
    auto* inner = new MessageKeeper(new QWidget(m_frame));
    m_frame->ChangeState(false);
    m_frame->ChangeState(true);
    EXPECT_THAT(inner->Messages, ElementsAre(MessageKeeper::Message{EK_WM_ACTIVATE_MODULE, 0, 0},
                                             MessageKeeper::Message{EK_WM_ACTIVATE_MODULE, 1, 0}));
    EXPECT_EQ(m_host.Calls.Take(), Names{"RefreshMenu(Ek Wave Editor)"});
}

} // namespace
} // namespace ek
