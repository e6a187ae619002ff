// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "ek/HostAudioDevice.h"
#include "ek/SoundData.h"
#include "waveview/PositionQueue.h"
#include "waveview/ViewInput.h"
#include "waveview/WaveGeometry.h"

#include <cstdint>
#include <mutex>

namespace ek {

class CEffectTree;
class CWEDoc;

/// What playback does to the view that it belongs to.
class PlaybackSite {
public:
    virtual void OnCursorMoved(uint64_t oldCursor) = 0; ///< in the geometry; the marks are to be drawn anew
    virtual void OnPlaybackStarted() = 0;               ///< the cursor is to be shown; ticks are wanted from now on
    virtual void OnPlaybackStopped() = 0;               ///< no more ticks are wanted
    /// The range was heard to its end. On the device's pump thread: the owner is to call WavePlayback::Finish on
    /// its own thread.
    virtual void OnRangePlayed() = 0;
    virtual bool IsTransportOurs() { return true; }

protected:
    ~PlaybackSite() = default;
};

/// The playing of a document through the host's player: what is played, where it is, and how the cursor follows what
/// is heard. All calls on the thread of the document, but for those that the player's callback makes.
class WavePlayback {
public:
    /// All outlive the playback. Without a player (null) nothing plays; without a tree sound goes straight through.
    WavePlayback(CWEDoc& document, WaveGeometry& geometry, CHostPlayer* player, CEffectTree* tree, PlaybackSite& site);
    ~WavePlayback(); ///< stops
    WavePlayback(const WavePlayback&) = delete;
    WavePlayback& operator=(const WavePlayback&) = delete;

    bool IsPlaying() const { return m_playing; }
    bool IsPaused() const { return m_paused; }
    bool CanPlay() const; ///< the document is ready and not empty

    // The transport.
    void Play();
    void PauseOrResume();
    void Stop(); ///< the cursor goes back to where it was when playing began
    void JumpToStart();
    void JumpBack();
    void JumpForward();
    void JumpToEnd();
    void SeekToPercent(uint32_t percent);

    void TakePlayer(); ///< tells the player the document's format and who is to be called
    void Announce();   ///< tells the host whether its buttons may start playing
    void Tick();       ///< every 33 ms while playing: the cursor follows what is heard
    void Finish();     ///< after OnRangePlayed
    void OnSelectionChannelChanged(); ///< while playing: another channel is heard from the next block on
};

} // namespace ek
