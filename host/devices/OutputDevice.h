// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "ek/WaveFormat.h"

#include <cstdint>
#include <string>

namespace ek {

class PlayQueue;

/// What is asked of a device that is to be opened.
struct StreamWish {
    WAVEFORMATEXTENSIBLE Sound; ///< valid: 1 to 8 channels, a rate above 0
    uint32_t BlockFrames = 0;   ///< of the module's blocks
    uint32_t LatencyMilliseconds = 0;

    bool operator==(const StreamWish&) const = default;
};

/// What an open device takes or gives: interleaved float frames.
struct StreamShape {
    uint32_t Rate = 0;
    uint32_t Channels = 0;
    uint32_t PeriodFrames = 0; ///< usual frames per call of its thread; 0: unknown

    bool operator==(const StreamShape&) const = default;
};

/// An open playback device. A thread of its own takes frames from the queue, between Start and Stop, any number per
/// call. Start, Stop and Finish come from one thread at a time.
class OutputDevice {
public:
    virtual ~OutputDevice() = default; ///< stops

    virtual StreamShape Shape() const = 0;
    virtual std::string Name() const = 0; ///< for a person
    /// The queue outlives the device or its Stop. False: `trouble` says why, for a person, and nothing is taken.
    virtual bool Start(PlayQueue& queue, std::string& trouble) = 0;
    /// When it returns, the queue is in nobody's hands. What the card holds may be dropped.
    virtual void Stop() = 0;
    /// The sound is over, the device is stopped: files are completed. False: `trouble` says why.
    virtual bool Finish(std::string& /*trouble*/) { return true; }
    /// How long after it was taken a frame is heard. Any thread.
    virtual uint32_t LatencyFrames() const = 0;
    /// The device takes no more frames and will not recover. Any thread.
    virtual bool HasFailed() const { return false; }
    virtual std::string Trouble() const { return {}; } ///< why it has failed; for a person
    /// This was opened as the default device, and another one has become that since: told once. At most once a second;
    /// does not wait for the sound system, but gives its answer to an earlier call.
    virtual bool HasMoved() { return false; }
    /// There is more in the queue, or it has changed its state. For devices that are in nobody's beat; any thread.
    virtual void OnQueueChanged() {}
    virtual bool IsSilent() const { return false; } ///< nobody hears it
    /// False: a failure is the end of playing, as no other device can take its place.
    virtual bool IsReplaceable() const { return true; }
};

} // namespace ek
