// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "devices/AudioDevices.h"
#include "ek/HostAudioDevice.h"

#include <cstdint>
#include <memory>
#include <string>

namespace ek {

class AudioBackend;

/// What the recorder tells the window around it.
class HostRecorderListener {
public:
    virtual void OnInputGranted() = 0; ///< a module was granted the input: it is to be sent "set up the capture device"
    virtual void OnDeviceTrouble(const std::string& text) = 0; ///< for a person. Any thread

protected:
    ~HostRecorderListener() = default;
};

/// The capture device as the module sees it: the sound card's thread puts samples into a ring, a pump thread hands
/// them to the module in blocks of the buffer size.
class HostRecorder final : public CHostRecorder {
public:
    HostRecorder();                               ///< on the sound systems of this machine
    explicit HostRecorder(AudioBackend& backend); ///< on those of a test
    ~HostRecorder();
    HostRecorder(const HostRecorder&) = delete;
    HostRecorder& operator=(const HostRecorder&) = delete;

    void SetListener(HostRecorderListener* listener);
    /// From the next Start on. With "file" the sound of File is what is captured, in step with time.
    void Choose(const AudioDeviceChoice& choice);
    const AudioDeviceChoice& Choice() const;
    uint64_t DropoutCount() const; ///< frames lost since Start, or more: the card does not say how many it lost

    // CHostRecorder; see there.
    int Start() override;
    void Stop() override; ///< what was captured before is delivered first
    void Pause() override;
    const WAVEFORMATEXTENSIBLE* GetFormat() override;
    void SetFormat(const WAVEFORMATEXTENSIBLE* format) override;
    uint32_t GetBufferCount() override;
    void SetBufferCount(uint32_t count) override;
    uint32_t GetBufferSize() override;
    void SetBufferSize(uint32_t bytes) override;
    void SetCallback(AudioCallback callback, void* user) override;
    int AcquireInput(const char16_t* moduleName) override;
    void ReleaseInput(const char16_t* moduleName) override;
    void Register(const char16_t* moduleName, int interested) override;

private:
    struct Impl;
    std::unique_ptr<Impl> m_impl;
};

} // namespace ek
