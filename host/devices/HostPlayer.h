// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "devices/AudioDevices.h"
#include "ek/HostAudioDevice.h"

#include <array>
#include <atomic>
#include <cstdint>
#include <memory>
#include <string>

namespace ek {

class AudioBackend;

/// What the player tells the window around it. On the thread of the player's calls unless a line says otherwise.
class HostPlayerListener {
public:
    virtual void OnPlayerGranted() = 0;      ///< a module was granted the player: it is to be sent "take the player"
    virtual void OnPlayerReconfigured() = 0; ///< another device, and a module owns the player: the same
    /// The state, the owner, or whether playing may start. A sound that came to its own end is told of by the next
    /// Watch or UpdateControls.
    virtual void OnControlsChanged() = 0;
    virtual void OnDeviceChanged() {} ///< DeviceName or IsInTrouble may have
    /// The device failed, went away, or was replaced; the text is for a person. Any thread.
    virtual void OnDeviceTrouble(const std::string& text) = 0;

protected:
    ~HostPlayerListener() = default;
};

/// The playback device as the module sees it. A pump thread asks the module for blocks and fills a ring, from which
/// the sound card's thread takes; that one never waits, allocates or calls anybody.
class HostPlayer final : public CHostPlayer {
public:
    HostPlayer();                               ///< on the sound systems of this machine
    explicit HostPlayer(AudioBackend& backend); ///< on those of a test
    ~HostPlayer();
    HostPlayer(const HostPlayer&) = delete;
    HostPlayer& operator=(const HostPlayer&) = delete;

    // For the window.
    void SetListener(HostPlayerListener* listener);
    void Choose(const AudioDeviceChoice& choice); ///< what plays goes on with the new device
    const AudioDeviceChoice& Choice() const;
    std::string DeviceName() const; ///< of the device in use, for a person; empty before the first start
    bool IsInTrouble() const;       ///< nobody hears that device: it stands in for the one that was wished for
    void SetLoop(bool loop);
    bool CanPlay() const;               ///< what the module said last
    uint32_t Progress() const;          ///< 0 .. GetProgressRange()
    uint64_t HeardMilliseconds() const; ///< since Start, pauses left out
    uint32_t ChannelCount() const;      ///< of the sound that plays, or did last; 0 before the first
    /// Per channel of that sound, whatever the card has, the largest absolute value, 0 .. 1 and above, of what was
    /// heard since the last call.
    std::array<float, 8> TakePeaks();
    uint64_t DropoutCount() const; ///< holes in what was heard since Start
    /// Replaces a device that was lost, and comes back to the chosen one when it is there again. Once a second is
    /// enough, but it costs next to nothing and may be called with every redraw of the transport bar.
    void Watch();

    // CHostPlayer; see there.
    int Start() override;
    void Stop() override;
    void Pause() override;
    const WAVEFORMATEXTENSIBLE* GetFormat() override;
    void SetFormat(const WAVEFORMATEXTENSIBLE* format) override;
    uint32_t GetBufferCount() override;
    void SetBufferCount(uint32_t count) override;
    uint32_t GetBufferSize() override;
    void SetBufferSize(uint32_t bytes) override;
    void SetCallback(AudioCallback callback, void* user) override;
    uint32_t GetProgressRange() override;
    void SetProgress(uint32_t value) override; ///< any thread
    const char16_t* GetOwner() override;
    int Acquire(const char16_t* moduleName) override;
    void Release(const char16_t* moduleName) override;
    void UpdateControls(const char16_t* moduleName, int canPlay) override;
    int IsLoop() override;   ///< any thread
    int GetState() override; ///< any thread

private:
    struct Impl;
    std::unique_ptr<Impl> m_impl;
};

} // namespace ek
