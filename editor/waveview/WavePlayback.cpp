// SPDX-License-Identifier: GPL-3.0-or-later
#include "waveview/WavePlayback.h"

#include "debugmanager/DebugManager.h"
#include "effectmanager/EffectTree.h"
#include "platform/Events.h"
#include "platform/Text.h"
#include "resources/Strings.h"
#include "servicefuncs/MessageBox.h"
#include "waveedit/WEDoc.h"

#include <algorithm>

namespace ek {

namespace {

/// The name under which we hold the player.
const char16_t* OwnerName()
{
    static const std::u16string name = ToUtf16(ModuleName);
    return name.c_str();
}

} // namespace

std::string EffectRefusal(tEffError error)
{
    switch (error) {
    case EffectMonoOrStereoOnly:
        return LoadString(IDS_EFFECT_MONO_OR_STEREO_ONLY);
    case EffectStereoOnly:
        return LoadString(IDS_EFFECT_STEREO_ONLY);
    default:
        return LoadString(IDS_EFFECT_FAILED);
    }
}

uint32_t WavePlayback::HostClock()
{
    return static_cast<uint32_t>(TickMilliseconds());
}

WavePlayback::WavePlayback(CWEDoc& document, WaveGeometry& geometry, CHostPlayer* player, CEffectTree* tree,
                           PlaybackSite& site, Clock clock)
    : m_document(document), m_geometry(geometry), m_player(player), m_tree(tree), m_site(site), m_clock(clock),
      m_input(document.Store().Frames(), player)
{
}

WavePlayback::~WavePlayback()
{
    if (!m_playing)
        return;
    m_player->Stop();
    m_player->Release(OwnerName());
    CloseStream();
}

bool WavePlayback::CanPlay() const
{
    return m_document.IsReady() && m_document.FrameCount() > 0;
}

bool WavePlayback::OwnsPlayer() const
{
    const char16_t* owner = m_player ? m_player->GetOwner() : nullptr;
    return owner && std::u16string_view(owner) == OwnerName();
}

// Taking and leaving the player.

void WavePlayback::TakePlayer()
{
    if (!m_player)
        return;
    if (m_document.IsReady()) {
        const WAVEFORMATEXTENSIBLE& format = m_document.Format();
        m_player->SetFormat(&format);
        m_player->SetBufferCount(BufferCount);
        m_player->SetBufferSize(format.nBlockAlign * FramesPerBuffer);
    }
    m_player->SetCallback(OnRequest, this);
    Announce();
}

void WavePlayback::Announce()
{
    if (m_player && m_site.IsTransportOurs())
        m_player->UpdateControls(OwnerName(), CanPlay() ? 1 : 0);
}

/// False: another module holds the player.
bool WavePlayback::PreparePlay()
{
    m_throughTree = m_tree && OpenStream();
    m_hasGivenFrames = false;
    if (!m_player->Acquire(OwnerName()))
        return false;
    TakePlayer();
    if (m_throughTree)
        CEffectManager::InitializeLimiter(m_document.Format());
    return true;
}

/// False: the sound is played without the tree. When effects refuse the sound, the user is told and they are switched
/// off.
bool WavePlayback::OpenStream()
{
    tEffError error = TryToOpenStream();
    if (error == EffectSuccess)
        return true;
    AfxSCMessageBox(EffectRefusal(error));
    m_tree->SwitchOffEffects();
    error = TryToOpenStream();
    if (error != EffectSuccess)
        CloseStream();
    return error == EffectSuccess;
}

tEffError WavePlayback::TryToOpenStream()
{
    const std::lock_guard lock(m_streamMutex);
    m_tree->SetAudioInput(&m_input);
    return m_tree->OpenStream(m_document.Format());
}

void WavePlayback::CloseStream()
{
    if (!m_tree)
        return;
    const std::lock_guard lock(m_streamMutex);
    m_tree->SetAudioInput(nullptr);
    m_tree->CloseStream();
}

void WavePlayback::Detach()
{
    m_player->Release(OwnerName());
    CloseStream();
    Announce();
}

/// From the cursor on. False: it does not play, and the user knows.
bool WavePlayback::StartPlayer()
{
    m_starting = true;
    const bool acquired = PreparePlay();
    m_starting = false;
    m_input.Start(m_document.Format(), m_range, m_geometry.CursorFrame, m_clock());
    m_input.SetChannel(m_geometry.SelectionChannel);
    m_cursor = m_geometry.CursorFrame;
    m_progressRange = m_player->GetProgressRange();
    m_rangePlayed = false;
    m_paused = false;
    m_playing = true;
    if (acquired && m_player->Start())
        return true;
    FailToStart();
    return false;
}

void WavePlayback::FailToStart()
{
    Detach();
    m_playing = false;
    m_site.OnPlaybackStopped();
    RestoreCursor();
    AfxSCMessageBox("Can't start playing.", MessageButtons::Ok, MessageIcon::Error);
}

bool WavePlayback::StartAnew()
{
    m_player->Stop();
    return StartPlayer();
}

// The transport.

void WavePlayback::Play()
{
    if (!CanPlay() || !m_player)
        return;
    if (m_playing && !m_paused)
        StopNow();
    if (m_playing && m_player->GetState() == CHostPlayer::Paused) {
        PauseOrResume();
        return;
    }
    if (m_playing)
        m_player->Stop(); // its pause got lost: the device is another one, or went away
    else
        m_savedCursor = m_geometry.CursorFrame;
    Begin();
}

void WavePlayback::Begin()
{
    m_range = RangeToPlay();
    if (m_geometry.CursorFrame >= m_range.End) // also without a cursor
        SetCursor(m_range.Start);
    if (StartPlayer())
        ShowStarted();
}

void WavePlayback::ShowStarted()
{
    m_site.OnPlaybackStarted();
    Announce();
}

void WavePlayback::PauseOrResume()
{
    const int state = m_playing ? m_player->GetState() : CHostPlayer::Stopped;
    if (state == CHostPlayer::Paused) {
        ContinuePaused();
    } else if (state == CHostPlayer::Running) {
        Tick();
        m_player->Pause();
        m_paused = true;
        m_pauseStamp = m_clock();
        m_pauseCursor = m_geometry.CursorFrame;
    }
}

void WavePlayback::ContinuePaused()
{
    if (m_geometry.CursorFrame == m_pauseCursor) {
        // What the ring holds is heard first: not a frame is lost or heard twice.
        m_input.Delay(m_clock() - m_pauseStamp);
        m_player->Pause();
        m_paused = false;
        if (m_player->GetState() == CHostPlayer::Running) {
            ShowStarted();
            return;
        }
    }
    m_player->Stop();
    Begin();
}

void WavePlayback::Stop()
{
    if (m_playing)
        StopNow();
}

void WavePlayback::StopNow()
{
    m_site.OnPlaybackStopped();
    m_paused = m_playing = false;
    m_player->Stop();
    RestoreCursor();
    Detach();
}

void WavePlayback::Finish()
{
    if (!m_playing || !m_rangePlayed)
        return;
    StopNow();
    if (m_input.HasFailed()) {
        enDebugManager().WriteLogMessage(ModuleName, LogError, "Error: Playing stopped, the sound could not be read.");
        AfxSCMessageBox("Can't read the sound. Playing was stopped.", MessageButtons::Ok, MessageIcon::Error);
    }
}

// Jumps.

void WavePlayback::JumpToStart()
{
    JumpTo(JumpRange().Start);
}

void WavePlayback::JumpBack()
{
    const PlayRange range = JumpRange();
    const uint64_t step = (range.End - range.Start) / 10;
    const bool goesBelow =
        m_geometry.CursorFrame == WaveGeometry::NoFrame || m_geometry.CursorFrame < range.Start + step;
    JumpTo(goesBelow ? range.Start : m_geometry.CursorFrame - step);
}

void WavePlayback::JumpForward()
{
    const PlayRange range = JumpRange();
    const uint64_t step = (range.End - range.Start) / 10;
    const uint64_t from = m_geometry.CursorFrame == WaveGeometry::NoFrame ? range.Start : m_geometry.CursorFrame;
    JumpTo(std::min(from + step, range.End));
}

void WavePlayback::JumpToEnd()
{
    JumpTo(JumpRange().End);
}

void WavePlayback::JumpTo(uint64_t frame)
{
    if (!CanPlay())
        return;
    SetCursor(frame);
    if (m_playing && m_player->GetState() == CHostPlayer::Running)
        Resume();
    ReportProgress();
}

void WavePlayback::SeekToPercent(uint32_t percent)
{
    if (!CanPlay() || !m_player)
        return;
    const PlayRange range = JumpRange();
    SetCursor(range.Start + (range.End - range.Start) * std::min(percent, 100U) / 100);
    Resume();
    ReportProgress();
}

/// Plays on from the cursor, which the user has moved.
void WavePlayback::Resume()
{
    m_range = RangeToPlay();
    if (m_geometry.CursorFrame > m_range.End) // also without a cursor
        SetCursor(m_range.End);
    if (!m_playing) {
        m_savedCursor = m_geometry.CursorFrame;
        if (!StartPlayer())
            return;
    } else if (!MoveInput()) {
        if (!StartAnew())
            return;
    } else if (m_paused) {
        m_paused = false;
        m_player->Pause();
        if (m_player->GetState() != CHostPlayer::Running && !StartAnew())
            return;
    }
    ShowStarted();
}

/// To the cursor. False: the player has been told that there is no more.
bool WavePlayback::MoveInput()
{
    // No block comes between the two: it would take frames from the new place that are then forgotten.
    const std::lock_guard lock(m_streamMutex);
    if (m_throughTree)
        m_tree->RestartStream();
    m_hasGivenFrames = false;
    return m_input.JumpTo(m_range, m_geometry.CursorFrame, m_clock());
}

PlayRange WavePlayback::RangeToPlay() const
{
    if (!m_geometry.HasSelection())
        return {0, m_document.FrameCount()};
    const auto [start, end] = m_geometry.OrderedSelection();
    return {start, end};
}

PlayRange WavePlayback::JumpRange() const
{
    return m_playing ? m_range : RangeToPlay();
}

// The cursor.

void WavePlayback::Tick()
{
    if (!m_playing || m_player->GetState() == CHostPlayer::Paused)
        return;
    const uint64_t heard = std::min(m_input.HeardFrame(m_clock()), m_document.FrameCount());
    m_geometry.TrackPlayback(m_geometry.CursorFrame, heard);
    SetCursor(heard);
}

void WavePlayback::SetCursor(uint64_t frame)
{
    const uint64_t oldCursor = m_geometry.CursorFrame;
    m_cursor = m_geometry.CursorFrame = frame;
    if (oldCursor != frame)
        m_site.OnCursorMoved(oldCursor);
}

void WavePlayback::RestoreCursor()
{
    SetCursor(m_savedCursor);
    m_savedCursor = WaveGeometry::NoFrame;
}

void WavePlayback::ReportProgress()
{
    if (m_playing)
        m_player->SetProgress(m_input.Progress(m_cursor, m_progressRange));
}

void WavePlayback::OnSelectionChannelChanged()
{
    m_input.SetChannel(m_geometry.SelectionChannel);
}

// On the player's pump thread.

uint32_t WavePlayback::OnRequest(CHostAudioDevice*, void* request, void* user)
{
    return static_cast<WavePlayback*>(user)->OnData(*static_cast<const PlayRequest*>(request));
}

uint32_t WavePlayback::OnData(const PlayRequest& request)
{
    if (request.Sound->Request == 0)
        return OnNotice(*request.Sound);
    const uint32_t frames = FillBlock(request);
    m_player->SetProgress(m_input.Progress(m_cursor, m_progressRange));
    return frames;
}

uint32_t WavePlayback::FillBlock(const PlayRequest& request)
{
    const std::lock_guard lock(m_streamMutex);
    m_input.BeginRequest(request.Stamp, m_throughTree && m_hasGivenFrames ? m_tree->Latency() : 0);
    const uint32_t frames = m_throughTree ? m_tree->GetSoundData(*request.Sound) : m_input.GetData(request.Sound);
    m_hasGivenFrames = m_hasGivenFrames || frames > 0;
    return frames;
}

uint32_t WavePlayback::OnNotice(const _SOUNDDATAEX_& notice)
{
    if (notice.FrameCount == 1) {
        m_rangePlayed = true;
        m_site.OnRangePlayed();
    }
    return 0;
}

} // namespace ek
