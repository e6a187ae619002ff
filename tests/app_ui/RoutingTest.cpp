// SPDX-License-Identifier: GPL-3.0-or-later
#include "FrameFixture.h"

#include "app/ui/TransportRouter.h"
#include "resources/Commands.h"

#include <gmock/gmock.h>

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
    SpyView(CDocument& document, ViewSite& site, QWidget* parent = nullptr) : CView(document, site, parent) {}

    void OnHostMessage(MessageEvent& message) override
    {
        Seen.push_back(message.Id == EK_WM_COMMAND ? static_cast<uint32_t>(message.WParam) : message.Id);
        LastLParam = message.LParam;
        message.Result = 77;
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
    QWidget* m_page = new QWidget(&m_host);
    QWidget* m_frame = new QWidget(m_page);
    TransportRouter m_router{*m_frame};
    SpyView m_first{m_document, m_site};
    SpyView m_second{m_document, m_site};
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
    EXPECT_EQ(m_router.CurrentView(), &m_first);
    m_active = &m_second;
    for (const uint32_t id : {13000, 13005, 13015, 13025, 13030})
        EXPECT_EQ(Send(id), true) << id;
    EXPECT_EQ(Send(1035, 42), true);
    EXPECT_EQ(m_first.LastLParam, 42);
    EXPECT_THAT(m_first.Seen, ElementsAre(13010, 13000, 13005, 13015, 13025, 13030, 1035));
    EXPECT_TRUE(m_second.Seen.empty());
}

TEST_F(TransportTest, AnotherViewThatPlaysStopsTheOneBefore)
{
    Send(13010);
    m_active = &m_second;
    Send(13010);
    Send(13010);
    EXPECT_THAT(m_first.Seen, ElementsAre(13010, 13020));
    EXPECT_THAT(m_second.Seen, ElementsAre(13010, 13010));
}

TEST_F(TransportTest, StopAndReleaseReachTheViewAndForgetIt)
{
    Send(13010);
    EXPECT_EQ(Send(13020), true);
    EXPECT_EQ(m_router.CurrentView(), nullptr);
    EXPECT_EQ(SendMessage(EK_WM_TAKE_PLAYER), true);
    EXPECT_EQ(SendMessage(EK_WM_RELEASE_PLAYER), true);
    EXPECT_EQ(m_router.CurrentView(), nullptr);
    EXPECT_THAT(m_first.Seen, ElementsAre(13010, 13020, EK_WM_TAKE_PLAYER, EK_WM_RELEASE_PLAYER));
}

TEST_F(TransportTest, AViewThatGoesIsForgotten)
{
    auto passing = std::make_unique<SpyView>(m_document, m_site);
    m_active = passing.get();
    Send(13010);
    passing.reset();
    EXPECT_EQ(Send(13015), false);
}

TEST_F(TransportTest, RequestsToTheHostGoToTheParentOfTheFramesParent)
{
    EXPECT_EQ(Send(11000, 1234), true);
    EXPECT_EQ(Send(11002, 5), true);
    EXPECT_EQ(Send(11001, 6), std::nullopt);
    EXPECT_THAT(m_host.Messages, ElementsAre(MessageKeeper::Message{EK_WM_COMMAND, 11000, 1234},
                                             MessageKeeper::Message{EK_WM_COMMAND, 11002, 5}));
    TransportRouter orphan(m_host);
    MessageEvent message(EK_WM_COMMAND, 11000, 0);
    EXPECT_EQ(orphan.Route(message, nullptr), false);
}

TEST_F(TransportTest, OtherMessagesTakeTheOrdinaryWay)
{
    EXPECT_EQ(Send(13090), std::nullopt);
    EXPECT_EQ(Send(ID_FILE_OPEN), std::nullopt);
    EXPECT_EQ(SendMessage(EK_WM_SETUP_CAPTURE), std::nullopt);
    EXPECT_EQ(SendMessage(EK_WM_ACTIVATE_MODULE), std::nullopt);
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

class CommandRoutingTest : public testing::Test {
protected:
    std::vector<int> Offer(int taker)
    {
        Offers::Places.clear();
        Offers::Taker = taker;
        EXPECT_EQ(m_frame.OnCmdMsg(10, CN_COMMAND, nullptr), taker != 0);
        return Offers::Places;
    }

    Offered<SpyDocument, 3> m_document;
    QuietSite m_site;
    Offered<CCmdTarget, 6> m_application;
    TargetArea* m_client = new Offered<TargetArea, 1>;
    SpyFrame m_frame{m_client, &m_application};
};

TEST_F(CommandRoutingTest, ClientViewDocumentChildFrameAndApplicationAreAskedInThatOrder)
{
    EXPECT_THAT(Offer(0), ElementsAre(1, 5, 6));
    auto* child = new Offered<CMDIChildWnd, 4>(m_document);
    child->SetView(new Offered<SpyView, 2>(m_document, m_site, child));
    m_client->addSubWindow(child);
    m_frame.show();
    child->show();
    child->Activate();
    EXPECT_THAT(Offer(0), ElementsAre(1, 2, 3, 4, 5, 6));
}

TEST_F(CommandRoutingTest, NobodyIsAskedAfterTheOneThatTakesIt)
{
    EXPECT_THAT(Offer(1), ElementsAre(1));
    EXPECT_THAT(Offer(6), ElementsAre(1, 5, 6));
}

class CommandsTest : public FrameFixture {};

TEST_F(CommandsTest, AMessageThatNobodyTookStaysIgnored)
{
    MessageEvent pause(EK_WM_COMMAND, ID_TRANSPORT_PAUSE, 0);
    QCoreApplication::sendEvent(m_frame, &pause);
    EXPECT_FALSE(pause.isAccepted());
    EXPECT_EQ(pause.Result, 0);
    MessageEvent create(EK_WM_COMMAND, ID_FILE_NEW, 0);
    QCoreApplication::sendEvent(m_frame, &create);
    EXPECT_TRUE(create.isAccepted());
    EXPECT_EQ(m_app.Documents().size(), 1U);
}

TEST_F(CommandsTest, AFileNameTravelsUpToTheHostsWindow)
{
    static constexpr char16_t name[] = u"/a/song.wav";
    EXPECT_TRUE(m_frame->HandleCommand(ID_HOST_REQUEST_FIRST, CN_COMMAND, const_cast<char16_t*>(name)));
    ASSERT_EQ(m_window.Messages.size(), 1U);
    EXPECT_EQ(std::u16string(reinterpret_cast<const char16_t*>(m_window.Messages[0].LParam)), name);
    EXPECT_FALSE(Run(ID_HOST_REQUEST_ROUTED));
}

TEST_F(CommandsTest, PlayGoesToTheActiveViewAndTheFramesEndStopsIt)
{
    EXPECT_FALSE(Run(ID_TRANSPORT_PLAY));
    m_frame->OpenFile(MakeSound("one.wav"));
    EXPECT_TRUE(Run(ID_TRANSPORT_PLAY));
    EXPECT_EQ(m_frame->CurrentView(), m_frame->ActiveView());
    m_frame->OpenFile(MakeSound("two.wav"));
    EXPECT_NE(m_frame->CurrentView(), m_frame->ActiveView());
    m_frame->ActivateCurrentView();
    EXPECT_EQ(m_frame->CurrentView(), m_frame->ActiveView());
    Run(ID_CLOSE_WINDOW);
    Settle();
    EXPECT_EQ(m_frame->CurrentView(), nullptr);
}

TEST_F(CommandsTest, TheHostHearsWhetherTheActiveViewCanPlay)
{
    m_host.Calls.Take();
    EXPECT_TRUE(IsEnabled(ID_FILE_NEW));
    EXPECT_EQ(m_host.Calls.Take(), Names{"Player.UpdateControls(Ek Wave Editor, 0)"});
    m_frame->OpenFile(MakeSound("one.wav"));
    m_host.Calls.Take();
    IsEnabled(ID_FILE_NEW);
    const std::string answer = m_frame->ActiveView()->CanPlay() ? "1" : "0";
    EXPECT_EQ(m_host.Calls.Take(), Names{"Player.UpdateControls(Ek Wave Editor, " + answer + ")"});
}

TEST_F(CommandsTest, RecordingIsHandledButDisabled)
{
    CommandUi ui{.Id = ID_RECORD};
    EXPECT_TRUE(m_frame->HandleCommand(ID_RECORD, CN_UPDATE_COMMAND_UI, &ui));
    EXPECT_FALSE(ui.Enabled);
    EXPECT_TRUE(Run(ID_RECORD));
}

TEST_F(CommandsTest, WindowCommandsNeedAWindow)
{
    const uint32_t ids[] = {ID_WINDOW_CASCADE, ID_WINDOW_TILE_HORIZONTALLY, ID_WINDOW_TILE_VERTICALLY, ID_NEXT_WINDOW,
                            ID_PREVIOUS_WINDOW};
    for (const uint32_t id : ids)
        EXPECT_FALSE(IsEnabled(id)) << id;
    Run(ID_FILE_NEW);
    for (const uint32_t id : ids)
        EXPECT_TRUE(IsEnabled(id)) << id;
}

TEST_F(CommandsTest, NextAndPreviousWindowGoAround)
{
    for (int i = 0; i < 3; ++i)
        Run(ID_FILE_NEW);
    const std::vector<CMDIChildWnd*> children = m_frame->Children();
    EXPECT_EQ(m_frame->ActiveChild(), children[2]);
    Run(ID_NEXT_WINDOW);
    EXPECT_EQ(m_frame->ActiveChild(), children[0]);
    Run(ID_PREVIOUS_WINDOW);
    Run(ID_PREVIOUS_WINDOW);
    EXPECT_EQ(m_frame->ActiveChild(), children[1]);
}

/// Commands that have an id and a text already, and get their handler with the feature they belong to; the transport's
/// own, which are messages; and two that never had one.
bool IsInertOnPurpose(uint32_t id)
{
    switch (id) {
    case ID_EFFECTS_LIBRARY:
    case ID_UNDO_HISTORY:
    case ID_REDO_HISTORY:
    case ID_EDIT_UNDO:
    case ID_EDIT_REDO:
    case ID_EDIT_CUT:
    case ID_EDIT_COPY:
    case ID_EDIT_PASTE:
    case ID_PASTE_MIX:
    case ID_DELETE:
    case ID_SELECT_ALL:
    case ID_FILE_TABS:
    case ID_FULL_SCREEN:
    case ID_CLOSE_ALL:
    case ID_SAVE_ALL:
    case ID_WINDOW_LIST:
    case ID_WINDOW_ARRANGE:
    case ID_FILE_CLOSE:
        return true;
    default:
        return id == ID_TRANSPORT_POSITION || (id >= ID_TRANSPORT_START && id <= ID_TRANSPORT_END);
    }
}

TEST_F(CommandsTest, EveryCommandHasOneHandlerOrIsInertOnPurpose)
{
    m_frame->OpenFile(MakeSound("one.wav"));
    AppCommands application(*m_frame);
    const CCmdTarget* const targets[] = {dynamic_cast<CCmdTarget*>(m_frame->centralWidget()),
                                         m_frame->ActiveView(),
                                         &m_frame->ActiveView()->Document(),
                                         m_frame->ActiveChild(),
                                         m_frame,
                                         &application};
    for (const CommandInfo& info : CommandInfos()) {
        size_t handlers = 0;
        for (const CCmdTarget* target : targets) {
            handlers += static_cast<size_t>(std::ranges::count_if(target->CommandTable(), [&](const auto& entry) {
                return entry.FirstId <= info.Id && info.Id <= entry.LastId;
            }));
        }
        EXPECT_EQ(handlers, IsInertOnPurpose(info.Id) ? 0U : 1U) << info.Symbol;
    }
}

TEST_F(CommandsTest, EveryWidgetOfTheFrameHearsOfTheModulesActivation)
{
    auto* inner = new MessageKeeper(new QWidget(m_frame));
    m_frame->ChangeState(false);
    m_frame->ChangeState(true);
    EXPECT_THAT(inner->Messages, ElementsAre(MessageKeeper::Message{EK_WM_ACTIVATE_MODULE, 0, 0},
                                             MessageKeeper::Message{EK_WM_ACTIVATE_MODULE, 1, 0}));
}

} // namespace
} // namespace ek
