// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "background/WaveDataProcessor.h"
#include "effectmanager/AudioAbstract.h"
#include "ek/HostAudioDevice.h"
#include "servicefuncs/Channels.h"
#include "waveview/PositionQueue.h"

#include <cstdint>
#include <mutex>
#include <vector>

namespace ek {

/// The frames [Start, End) that are played.
struct PlayRange {
    uint64_t Start = 0;
    uint64_t End = 0;
    bool operator==(const PlayRange&) const = default;
};

/// A document's frames as the chain of effects pulls them while they are played: it walks through the range, wraps
/// around in it while the player loops, and keeps account of which frame will be heard when.
///
/// BeginRequest and GetData are for the player's pump thread. The others may be called on the document's thread at the
/// same time, but Start only while nothing pulls.
class CViewInput final : public CAudioAbstract {
public:
    /// Both outlive it. Without a player (null) nothing loops.
    CViewInput(FrameSource& frames, CHostPlayer* player) : m_frames(frames), m_player(player) {}

    /// From now on frames of that format come from `frame` on, which is not beyond the range but may lie before it.
    void Start(const WAVEFORMATEXTENSIBLE& format, const PlayRange& range, uint64_t frame, uint32_t now);
    /// The same in the midst of playing. False: whoever pulls has been told that there is no more, and must be started
    /// anew to hear of it.
    bool JumpTo(const PlayRange& range, uint64_t frame, uint32_t now);
    void SetChannel(ChannelCode code); ///< the only one heard; ChannelAll: all of them

    uint64_t HeardFrame(uint32_t now) const;
    void Delay(uint32_t milliseconds); ///< what was pulled is heard that much later
    bool HasFailed() const;            ///< frames could not be read; there are no more of them
    /// Where `frame` lies in the range, 0 .. fullScale.
    uint32_t Progress(uint64_t frame, uint32_t fullScale) const;

    /// What is pulled from now on belongs to a block that is heard at `stamp`, and comes out `heldBack` frames later.
    void BeginRequest(uint32_t stamp, uint32_t heldBack);
    /// Frames of the range, in other channels than the one set: silence. Fewer than wanted: the range has come to its
    /// end, or frames could not be read; none will come until the next Start.
    uint32_t GetData(_SOUNDDATAEX_* sound) override;

private:
    struct Piece {
        uint64_t Frame = 0;
        uint32_t Count = 0;
    };
    Piece TakePiece(uint32_t most);
    bool ReadPiece(const Piece& piece, uint32_t at);
    void MarkPlace();
    uint64_t FrameAtPlace(uint64_t place) const;
    void Silence(_SOUNDDATAEX_& sound) const;
    void Fail();

    FrameSource& m_frames;
    CHostPlayer* m_player;
    WAVEFORMATEXTENSIBLE m_format; // changes only while nothing pulls
    std::vector<uint8_t> m_buffer; // the pump thread's

    mutable std::mutex m_mutex; // guards what follows; never held while frames are read or the player is called
    PlayRange m_range;
    // Where the next frame comes from: a frame, or beyond the range's end what a loop appends to it, one round after
    // the other. So loops do not bend the line from what is heard to what is pulled.
    uint64_t m_place = 0;
    ChannelCode m_channel = ChannelAll;
    PositionQueue m_heard; // of places
    uint32_t m_stamp = 0;
    uint64_t m_requestOffset = 0; // from the request's first frame to the next frame pulled
    bool m_drained = false;       // whoever pulls was told that there is no more
    bool m_failed = false;
};

} // namespace ek
