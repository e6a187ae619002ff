// SPDX-License-Identifier: GPL-3.0-or-later
#include "background/ProgressDlg.h"
#include "ek/Message.h"
#include "resources/CommandIds.h"
#include "waveview/ui/WEView.h"

#include <algorithm>
#include <utility>

namespace ek {

void CWEView::OnHostMessage(MessageEvent& message)
{
    const bool isStop =
        message.Id == EK_WM_RELEASE_PLAYER || (message.Id == EK_WM_COMMAND && message.WParam == ID_TRANSPORT_STOP);
    if (IsWorkRunning() && !isStop) // it may be changing the sound
        return;
    switch (message.Id) {
    case EK_WM_COMMAND:
        RunTransport(static_cast<uint32_t>(message.WParam), message.LParam);
        break;
    case EK_WM_TAKE_PLAYER:
        m_playback.TakePlayer();
        break;
    case EK_WM_RELEASE_PLAYER:
        m_playback.Stop();
        update();
        m_playback.Announce();
        break;
    case GoToTimeMessage:
        GoToTime(message.LParam);
        break;
    default:
        break;
    }
}

void CWEView::RunTransport(uint32_t id, intptr_t parameter)
{
    static constexpr struct {
        uint32_t Id;
        void (WavePlayback::*Run)();
        bool IsJump;
    } actions[] = {{ID_TRANSPORT_START, &WavePlayback::JumpToStart, true},
                   {ID_TRANSPORT_BACK, &WavePlayback::JumpBack, true},
                   {ID_TRANSPORT_PLAY, &WavePlayback::Play, false},
                   {ID_TRANSPORT_PAUSE, &WavePlayback::PauseOrResume, false},
                   {ID_TRANSPORT_STOP, &WavePlayback::Stop, false},
                   {ID_TRANSPORT_FORWARD, &WavePlayback::JumpForward, true},
                   {ID_TRANSPORT_END, &WavePlayback::JumpToEnd, true}};
    EndDrag();
    bool isJump = id == ID_TRANSPORT_POSITION;
    if (isJump)
        m_playback.SeekToPercent(static_cast<uint32_t>(std::clamp<intptr_t>(parameter, 0, 100)));
    for (const auto& action : actions) {
        if (action.Id == id) {
            (m_playback.*action.Run)();
            isJump = action.IsJump;
        }
    }
    if (isJump && m_geometry.EnsureCursorVisible(false))
        ApplyScroll();
}

/// Unless another module has taken the player meanwhile: then it is not ours to stop.
void CWEView::StopOwnPlayback()
{
    if (m_playback.IsPlaying() && m_playback.OwnsPlayer())
        Site().RunCommand(ID_TRANSPORT_STOP);
}

/// A tick of playback repaints no more than the columns that the cursor left and reached.
void CWEView::OnCursorMoved(uint64_t oldCursor)
{
    if (m_playback.IsPlaying() && m_geometry.FollowPlayback && m_geometry.EnsureCursorVisible(true)) {
        m_wave.CursorLit = true;
        ApplyScroll();
        return;
    }
    const bool wasLit = std::exchange(m_wave.CursorLit, true);
    const int64_t before = m_wave.CursorOffset;
    UpdateMarks();
    if (m_wave.CursorOffset != before || !wasLit) {
        RepaintColumns(before, before + 1);
        RepaintColumns(m_wave.CursorOffset, m_wave.CursorOffset + 1);
    }
    RepaintOverviewAt(oldCursor);
    RepaintOverviewAt(m_geometry.CursorFrame);
}

void CWEView::RepaintOverviewAt(uint64_t frame)
{
    if (frame == WaveGeometry::NoFrame)
        return;
    const int x = static_cast<int>(m_position.Strip().FrameToX(frame, m_geometry.Length));
    update(m_device.Cover({x, m_layout.Overview.Top, x + 1, m_layout.Overview.Bottom}));
}

void CWEView::OnPlaybackStarted()
{
    LightCursor();
    m_playTimer.start();
    m_geometry.EnsureCursorVisible(false);
    ApplyScroll();
}

void CWEView::OnPlaybackStopped()
{
    m_playTimer.stop();
    LightCursor();
    UpdateMarks();
    update();
}

void CWEView::OnRangePlayed()
{
    // Nothing is called once this view has gone.
    QMetaObject::invokeMethod(
        this, [this] { m_playback.Finish(); }, Qt::QueuedConnection);
}

void CWEView::GoToTime(int64_t milliseconds)
{
    if (!HasSound())
        return;
    StopOwnPlayback();
    const double frame = WaveDocument().Format().nSamplesPerSec * static_cast<double>(milliseconds) / 1000 + 0.5;
    const auto length = static_cast<double>(m_geometry.Length);
    m_geometry.SelectionStart = m_geometry.SelectionEnd = m_geometry.CursorFrame =
        static_cast<uint64_t>(std::clamp(frame, 0.0, length));
    LightCursor();
    if (m_geometry.EnsureCursorVisible(false))
        ApplyScroll();
    else
        RepaintMarks();
    setFocus();
}

} // namespace ek
