// SPDX-License-Identifier: GPL-3.0-or-later
#include "ViewFixture.h"

#include "background/ProgressDlg.h"
#include "ek/SoundData.h"
#include "platform/Events.h"

#include <thread>

namespace ek {
namespace {

/// The view with a player that asks for a block whenever the test says so.
class PlayingView : public ViewFixture {
protected:
    static constexpr uint32_t Block = 1024;

    void ShowAndPlay(uint64_t frames = 100'000, uint32_t channels = 1, int zoomIn = 0)
    {
        Load(frames, channels);
        Show();
        for (int i = 0; i < zoomIn; ++i)
            Run(ID_ZOOM_IN);
        Command(ID_TRANSPORT_PLAY);
        Host.Player.DeviceState = CHostPlayer::Running;
    }
    void Command(uint32_t id, intptr_t parameter = 0) { SendToView(EK_WM_COMMAND, id, parameter); }
    bool IsPlaying() { return Timer("PlayCursor").isActive(); }
    uint32_t Ask(uint32_t request, uint32_t frames, uint32_t millisecondsAgo)
    {
        std::vector<std::vector<float>> buffers(Sound.ChannelCount(), std::vector<float>(Block));
        _SOUNDDATAEX_ sound;
        sound.ChannelCount = Sound.ChannelCount();
        for (uint32_t i = 0; i < sound.ChannelCount; ++i)
            sound.Channels[i] = buffers[i].data();
        sound.FrameCount = frames;
        sound.Request = request;
        PlayRequest block{&sound, static_cast<uint32_t>(TickMilliseconds()) - millisecondsAgo};
        return Host.Player.Callback(&Host.Player, &block, Host.Player.User);
    }
    static constexpr uint32_t Heard = 8; ///< blocks
    /// The blocks were heard long ago, so that the cursor is where the last one began.
    void HearBlocks()
    {
        for (uint32_t i = 0; i < Heard; ++i)
            ASSERT_EQ(Ask(1, Block, 10'000 - i), Block);
        Fire("PlayCursor");
    }
    /// As the player reports the end: on its own thread.
    void NotifyEnd()
    {
        std::thread([this] { Ask(0, 1, 0); }).join();
    }
};

TEST_F(PlayingView, TransportCommandsReachThePlayerAndStopPutsTheCursorBack)
{
    Load(100'000, 1);
    Show();
    EXPECT_TRUE(View.CanPlay());
    QTest::mouseClick(&View, Qt::LeftButton, {}, At(10, 0.5));
    const uint64_t cursor = Geometry().CursorFrame;
    Host.Calls.Take();
    Command(ID_TRANSPORT_PLAY);
    Host.Player.DeviceState = CHostPlayer::Running;
    EXPECT_EQ(Host.Calls.Count("Player.Start()"), 1u);
    EXPECT_EQ(Host.Calls.Count("Player.SetBufferSize(2048)"), 1u);
    EXPECT_TRUE(IsPlaying());
    EXPECT_EQ(Timer("PlayCursor").interval(), 33);
    HearBlocks();
    EXPECT_EQ(Geometry().CursorFrame, cursor + (Heard - 1) * Block);
    Command(ID_TRANSPORT_PAUSE);
    EXPECT_EQ(Host.Calls.Count("Player.Pause()"), 1u);
    Host.Player.DeviceState = CHostPlayer::Paused;
    Command(ID_TRANSPORT_PAUSE);
    Host.Player.DeviceState = CHostPlayer::Running;
    Command(ID_TRANSPORT_POSITION, 50);
    EXPECT_EQ(Geometry().CursorFrame, 50'000u);
    Command(ID_TRANSPORT_FORWARD);
    EXPECT_EQ(Geometry().CursorFrame, 60'000u);
    Command(ID_TRANSPORT_BACK);
    Command(ID_TRANSPORT_BACK);
    EXPECT_EQ(Geometry().CursorFrame, 40'000u);
    Command(ID_TRANSPORT_START);
    EXPECT_EQ(Geometry().CursorFrame, 0u);
    Command(ID_TRANSPORT_STOP);
    EXPECT_EQ(Geometry().CursorFrame, cursor);
    EXPECT_FALSE(IsPlaying());
    EXPECT_EQ(Host.Calls.Count("Player.Release(Ek Wave Editor)"), 1u);
}

TEST_F(PlayingView, TakingAndReleasingThePlayerAreMessages)
{
    Load(1000, 2);
    Show();
    Host.Calls.Take();
    SendToView(EK_WM_TAKE_PLAYER);
    EXPECT_EQ(Host.Calls.Take(), (std::vector<std::string>{"Player.SetFormat(44100, 2)", "Player.SetBufferCount(5)",
                                                           "Player.SetBufferSize(4096)", "Player.SetCallback()",
                                                           "Player.UpdateControls(Ek Wave Editor, 1)"}));
    Command(ID_TRANSPORT_PLAY);
    SendToView(EK_WM_RELEASE_PLAYER);
    EXPECT_FALSE(IsPlaying());
    EXPECT_EQ(Host.Calls.Take().back(), "Player.UpdateControls(Ek Wave Editor, 1)");
    View.OnActivateView(false); // the host's buttons are another view's
    SendToView(EK_WM_TAKE_PLAYER);
    EXPECT_EQ(Host.Calls.Take().back(), "Player.SetCallback()");
}

TEST_F(PlayingView, ATickPaintsTheColumnsOfTheCursorOnly)
{
    ShowAndPlay(100'000, 2);
    ASSERT_TRUE(QTest::qWaitForWindowExposed(&View));
    PaintedRegion painted(View);
    painted.Take();
    HearBlocks();
    QImage before = DrawnImage();
    painted.Take();
    HearBlocks();
    const QRegion region = painted.Take();
    const QImage after = DrawnImage();
    EXPECT_NE(after, before);
    qint64 pixels = 0;
    for (const QRect& rect : region)
        pixels += qint64{rect.width()} * rect.height();
    EXPECT_LE(pixels, 4 * View.height());
    for (const QRect& rect : QRegion(View.rect()) - region)
        EXPECT_EQ(after.copy(rect), before.copy(rect));
    Fire("PlayCursor");
    EXPECT_TRUE(painted.Take().isEmpty()) << "the cursor stands where it stood";
}

TEST_F(PlayingView, TheViewFollowsTheCursorPastTheMiddleUntilItIsScrolled)
{
    ShowAndPlay(1'000'000, 1, 8);
    const uint64_t span = Geometry().Span();
    while (Geometry().CursorFrame < span / 2 + Heard * Block)
        HearBlocks();
    EXPECT_GT(Geometry().FirstVisibleFrame, 0u);
    EXPECT_LT(Geometry().CursorFrame, Geometry().FirstVisibleFrame + span / 2 + Heard * Block);
    Bar(Qt::Horizontal).setValue(Bar(Qt::Horizontal).maximum());
    const uint64_t first = Geometry().FirstVisibleFrame;
    HearBlocks();
    Command(ID_TRANSPORT_PAUSE);
    EXPECT_EQ(Geometry().FirstVisibleFrame, first) << "nor does a pause take it to the cursor";
    Command(ID_TRANSPORT_START);
    EXPECT_EQ(Geometry().FirstVisibleFrame, 0u);
    Command(ID_TRANSPORT_FORWARD);
    EXPECT_FALSE(Geometry().FollowPlayback) << "a jump past the middle is no playing past it";
}

TEST_F(PlayingView, APressInTheLanesAndEveryEditStopsFirst)
{
    ShowAndPlay();
    HearBlocks();
    Press(At(100, 0.5));
    EXPECT_FALSE(IsPlaying());
    EXPECT_EQ(Geometry().CursorFrame, Geometry().SelectionStart) << "not where playing began";
    Release(At(100, 0.5));

    for (const uint32_t id : {ID_SELECT_ALL, ID_DELETE, ID_EDIT_UNDO, ID_EDIT_REDO}) {
        Sound.Notify({.What = DocumentChange::Kind::Title});
        if (id == ID_DELETE)
            Drag(At(10, 0.5), At(20, 0.5));
        Command(ID_TRANSPORT_PLAY);
        Host.Player.DeviceState = CHostPlayer::Running;
        ASSERT_TRUE(IsPlaying()) << id;
        Run(id);
        EXPECT_FALSE(IsPlaying()) << id;
    }
    Command(ID_TRANSPORT_PLAY);
    ASSERT_TRUE(IsPlaying());
    Sound.Notify({.What = DocumentChange::Kind::Frames, .StartFrame = 0, .OldLength = 1, .NewLength = 1});
    EXPECT_FALSE(IsPlaying()) << "somebody else has edited the sound";

    Command(ID_TRANSPORT_PLAY);
    Host.Player.Owner = u"Another Module";
    Press(At(100, 0.5));
    EXPECT_TRUE(IsPlaying()) << "the player is not ours to stop";
    Host.Player.Owner = u"Ek Wave Editor";
}

TEST_F(PlayingView, AnotherChannelIsHeardAsSoonAsItIsChosen)
{
    ShowAndPlay(50'000, 2);
    Run(ID_NEXT_CHANNEL);
    EXPECT_TRUE(IsPlaying());
    std::vector<float> left(Block, 1);
    std::vector<float> right(Block, 1);
    _SOUNDDATAEX_ sound{.ChannelCount = 2, .Channels = {left.data(), right.data()}, .FrameCount = Block, .Request = 1};
    PlayRequest request{&sound, 0};
    ASSERT_EQ(Host.Player.Callback(&Host.Player, &request, Host.Player.User), Block);
    EXPECT_EQ(right, std::vector<float>(Block, 0));
    EXPECT_NE(left, right);
}

TEST_F(PlayingView, TheEndThatIsReportedOnAnotherThreadEndsPlayingInTheWindows)
{
    ShowAndPlay();
    HearBlocks();
    NotifyEnd();
    EXPECT_TRUE(IsPlaying()) << "until the window's thread hears of it";
    QCoreApplication::processEvents();
    EXPECT_FALSE(IsPlaying());
    EXPECT_NE(Geometry().CursorFrame, (Heard - 1) * Block) << "back where it was";

    Command(ID_TRANSPORT_PLAY);
    NotifyEnd();
    OwnView.reset(); // nobody is left to hear of it
    QCoreApplication::processEvents();
    EXPECT_EQ(Host.Calls.Take().back(), "Player.Release(Ek Wave Editor)");
}

TEST_F(PlayingView, GoToTimePutsTheCursorThereAndShowsIt)
{
    Load(441'000, 1);
    Show();
    for (int i = 0; i < 6; ++i)
        Run(ID_ZOOM_IN);
    Drag(At(5, 0.5), At(50, 0.5));
    SendToView(CWEView::GoToTimeMessage, 0, 7001);
    EXPECT_EQ(Selection(), (Frames{308'744, 308'744})) << "308,744.1";
    EXPECT_EQ(Geometry().CursorFrame, 308'744u);
    EXPECT_GE(Geometry().CursorFrame, Geometry().FirstVisibleFrame);
    EXPECT_LT(Geometry().CursorFrame, Geometry().FirstVisibleFrame + Geometry().Span());
    const Rect& wave = View.Places().Wave;
    EXPECT_EQ(DrawnImage().pixel(static_cast<int>(Geometry().FrameToX(308'744)), wave.Top + 1),
              SkinColorOf(COLOR_EDITOR_WAVE_BG).rgb() ^ 0xFFFFFF);
    SendToView(CWEView::GoToTimeMessage, 0, 3'600'000);
    EXPECT_EQ(Geometry().CursorFrame, 441'000u);
}

/// Does something in the middle of long work.
class InTheMiddle final : public ProgressPresenter {
public:
    explicit InTheMiddle(std::function<void()> run) : m_run(std::move(run)) { SetProgressPresenter(this); }
    ~InTheMiddle() override { SetProgressPresenter(nullptr); }
    WorkResult Show(CProgressDlg& progress) override
    {
        m_run();
        progress.Begin();
        const WorkResult result = progress.WaitResult();
        progress.End();
        return result;
    }

private:
    std::function<void()> m_run;
};

TEST_F(PlayingView, WhileWorkRunsNothingIsEditedOrPlayedOrRead)
{
    Load(20'000, 1);
    Show();
    Run(ID_SELECT_ALL);
    const uint32_t columns = Sound.Columns().ColumnCount();
    int timesRun = 0;
    InTheMiddle presenter([&] {
        ++timesRun;
        EXPECT_FALSE(IsPlaying());
        Command(ID_TRANSPORT_PLAY);
        EXPECT_FALSE(IsPlaying());
        EXPECT_FALSE(View.OnCmdMsg(ID_DELETE, CN_COMMAND, nullptr));
        QTest::keyClick(&View, Qt::Key_Delete);
        View.resize(WindowWidth / 4, 500);
        View.grab();
        EXPECT_EQ(Sound.Columns().ColumnCount(), columns);
    });
    Run(ID_EDIT_COPY);
    EXPECT_EQ(timesRun, 1);
    EXPECT_EQ(Sound.FrameCount(), 20'000u);
    EXPECT_EQ(SoundClipboard().FrameCount, 20'000u);
    SoundClipboard().Free();
    Fire("Blink");
    EXPECT_EQ(Sound.Columns().ColumnCount(), static_cast<uint32_t>(Geometry().WavePanelWidth))
        << "what the new size shows is read when the work has ended";

    View.resize(WindowWidth, 500);
    ASSERT_EQ(Sound.Columns().ColumnCount(), columns);
    Command(ID_TRANSPORT_PLAY);
    ASSERT_TRUE(IsPlaying());
    Run(ID_DELETE); // stops before it begins
    EXPECT_GT(timesRun, 1);
    EXPECT_EQ(Sound.FrameCount(), 0u);
}

} // namespace
} // namespace ek
