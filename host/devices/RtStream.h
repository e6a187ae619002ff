// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "devices/AudioDevices.h"
#include "devices/OutputDevice.h"

#include <chrono>
#include <cstdint>
#include <memory>
#include <string>
#include <vector>

class RtAudio;

namespace ek {

/// Takes or gives `count` interleaved frames of a card; called on the card's thread.
class FrameMover {
public:
    virtual void Move(float* frames, uint32_t count, bool hadGap) = 0; ///< `hadGap`: frames were lost before these

protected:
    ~FrameMover() = default;
};

struct RtStreamCore;

/// One stream of a sound card, through the systems "pulse", "jack" and "alsa". It keeps all that the library below
/// throws, prints and hangs in to itself.
class RtStream {
public:
    RtStream(std::string system, bool forCapture);
    ~RtStream(); ///< stops
    RtStream(const RtStream&) = delete;
    RtStream& operator=(const RtStream&) = delete;

    /// The named device or, for an empty name, the default one. Once. False: `trouble` says why.
    bool Open(const std::string& device, const StreamWish& wish, std::string& trouble);
    const StreamShape& Shape() const { return m_shape; }
    const std::string& Name() const { return m_name; }
    uint32_t LatencyFrames() const { return m_latencyFrames; }

    bool Start(FrameMover& mover, std::string& trouble); ///< once
    void Stop();                                         ///< when it returns, the mover is in nobody's hands
    bool HasFailed() const;                              ///< any thread
    std::string Trouble() const;                         ///< any thread

private:
    std::string m_system;
    bool m_forCapture;
    std::string m_name;
    StreamShape m_shape;
    uint32_t m_latencyFrames = 0;
    const std::shared_ptr<RtStreamCore> m_core; ///< shared with the thread that closes the stream
    std::unique_ptr<RtAudio> m_audio;           ///< from Open to Stop
};

/// Whether the system can be expected to have a device. Quick, starts no server, prints nothing.
bool IsSystemThere(const std::string& system, bool forCapture);
std::vector<AudioDeviceInfo> ListCards(const std::string& system, bool forCapture);
/// Returns when none of these questions is on its way, but for those that are not answered. For the end of the program.
void AwaitLookUps(std::chrono::milliseconds limit);
std::vector<std::string> ListCardSystems(); ///< in the order in which "auto" tries them

} // namespace ek
