// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "effectmanager/EffectAbstract.h"
#include "ek/HostAudioDevice.h"
#include "ek/SoundData.h"
#include "waveview/ViewInput.h"
#include "waveview/WaveGeometry.h"

#include <atomic>
#include <cstdint>
#include <mutex>
#include <string>

namespace ek {

class CEffectTree;
class CWEDoc;

/// What the user is told when the effects in use refuse a sound.
std::string EffectRefusal(tEffError error);

/// What playback does to the view that it belongs to.
class PlaybackSite {
public:
    virtual void OnCursorMoved(uint64_t oldCursor) = 0; ///< in the geometry; the marks are to be drawn anew
    virtual void OnPlaybackStarted() = 0;               ///< the cursor is to be shown; ticks are wanted from now on
    virtual void OnPlaybackStopped() = 0;               ///< no more ticks are wanted
    /// The range was heard to its end. On the device's pump thread: the owner is to call WavePlayback::Finish on
    /// its own thread.
    virtual void OnRangePlayed() = 0;
    /// False: the host's buttons speak to somebody else, who tells the host what they may do.
    virtual bool IsTransportOurs() { return true; }

protected:
    ~PlaybackSite() = default;
};

/// The playing of a document through the host's player: what is played, where it is, and how the cursor follows what
/// is heard. All calls on the thread of the document, but for those that the player's callback makes.
///
/// The selection is played, or the whole sound, from the cursor on. While it plays, nobody changes the document's
/// sound, nor, but for its channel, the selection.
class WavePlayback {
public:
    using Clock = uint32_t (*)();
    static uint32_t HostClock(); ///< that of the players' stamps: milliseconds, wrapping around at 2^32
    static constexpr uint32_t BufferCount = 5;
    static constexpr uint32_t FramesPerBuffer = 1024;

    /// All outlive the playback. Without a player (null) nothing plays; without a tree sound goes straight through.
    WavePlayback(CWEDoc& document, WaveGeometry& geometry, CHostPlayer* player, CEffectTree* tree, PlaybackSite& site,
                 Clock clock = HostClock);
    ~WavePlayback(); ///< stops; the site, which may be half gone, is not told
    WavePlayback(const WavePlayback&) = delete;
    WavePlayback& operator=(const WavePlayback&) = delete;

    bool IsPlaying() const { return m_playing; }   ///< also while paused
    bool IsStarting() const { return m_starting; } ///< the player is being asked for, and may call back meanwhile
    bool IsPaused() const { return m_paused; }
    bool CanPlay() const; ///< the document is ready and not empty
    /// The player is ours to stop: no other module holds it.
    bool OwnsPlayer() const;

    // The transport. A jump while sound is heard goes on from there.
    void Play(); ///< while sound is heard: again from where it began
    void PauseOrResume();
    void Stop(); ///< the cursor goes back to where it was when playing began
    void JumpToStart();
    void JumpBack(); ///< by a tenth of the range
    void JumpForward();
    void JumpToEnd();
    void SeekToPercent(uint32_t percent); ///< of the range; plays from there, whatever was before

    void TakePlayer(); ///< tells the player the document's format and who is to be called
    void Announce();   ///< tells the host whether its buttons may start playing
    void Tick();       ///< every 33 ms while playing: the cursor follows what is heard
    /// After OnRangePlayed: the cursor goes back to where it was. Nothing when playing was begun anew since. Tells the
    /// user when the sound could not be read to its end.
    void Finish();
    bool HasFailed() const { return m_input.HasFailed(); } ///< what was played last could not be read to its end
    void OnSelectionChannelChanged(); ///< while playing: another channel is heard from the next block on

private:
    bool PreparePlay();
    bool OpenStream();
    tEffError TryToOpenStream();
    void CloseStream();
    bool StartPlayer();
    void FailToStart();
    bool StartAnew();
    void Begin();
    void ContinuePaused();
    void Resume();
    bool MoveInput();
    void ShowStarted();
    void StopNow();
    void Detach();

    PlayRange RangeToPlay() const;
    PlayRange JumpRange() const;
    void JumpTo(uint64_t frame);
    void SetCursor(uint64_t frame);
    void RestoreCursor();
    void ReportProgress();

    static uint32_t OnRequest(CHostAudioDevice* device, void* request, void* user);
    uint32_t OnData(const PlayRequest& request);
    uint32_t FillBlock(const PlayRequest& request);
    uint32_t OnNotice(const _SOUNDDATAEX_& notice);

    CWEDoc& m_document;
    WaveGeometry& m_geometry;
    CHostPlayer* m_player;
    CEffectTree* m_tree;
    PlaybackSite& m_site;
    Clock m_clock;

    bool m_playing = false;
    bool m_paused = false;
    bool m_starting = false;
    uint64_t m_savedCursor = WaveGeometry::NoFrame; // where the cursor was when playing began
    PlayRange m_range;
    uint32_t m_pauseStamp = 0;
    uint64_t m_pauseCursor = 0;

    CViewInput m_input;
    // One thread at a time is in the tree. The document's thread holds it for no call of the player, which may wait for
    // the pump.
    std::mutex m_streamMutex;
    bool m_throughTree = false;    // this and the next two change while nothing pulls, or are those of who pulls
    bool m_hasGivenFrames = false; // the stream
    uint32_t m_progressRange = 0;
    std::atomic<uint64_t> m_cursor = 0; // the geometry's, as the callback knows it
    std::atomic<bool> m_rangePlayed = false;
};

} // namespace ek
