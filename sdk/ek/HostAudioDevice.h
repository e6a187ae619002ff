// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "ek/WaveFormat.h"

#include <cstdint>

namespace ek {

class CHostAudioDevice;

/// Called on the device's pump thread whenever a player needs data or a recorder has data. It may lock, read
/// files and allocate: the sound card's own thread never runs it. `request` is a PlayRequest or a CaptureRequest (see
/// SoundData.h), which also say what is returned; `user` is what SetCallback was given. No call runs, and none begins,
/// once Stop has returned; so Stop waits for one that runs, and must not be called by it.
using AudioCallback = uint32_t (*)(CHostAudioDevice* device, void* request, void* user);

/// What the host's playback and capture devices have in common. The order of the virtual functions is the
/// contract: the module calls them by slot. Every call is made on the user-interface thread, but for those of the
/// player that a line says otherwise of.
class CHostAudioDevice {
public:
    enum State : int { Running = 0, Paused = 1, Stopped = 2 };

    virtual int Start() = 0;                             ///< slot 0; nonzero when the device started
    virtual void Stop() = 0;                             ///< slot 1
    virtual void Pause() = 0;                            ///< slot 2; player: toggles running and paused
    virtual const WAVEFORMATEXTENSIBLE* GetFormat() = 0; ///< slot 3; owned by the device, copied by the caller
    virtual void SetFormat(const WAVEFORMATEXTENSIBLE* format) = 0;   ///< slot 4
    virtual uint32_t GetBufferCount() = 0;                            ///< slot 5
    virtual void SetBufferCount(uint32_t count) = 0;                  ///< slot 6
    virtual uint32_t GetBufferSize() = 0;                             ///< slot 7
    virtual void SetBufferSize(uint32_t bytes) = 0;                   ///< slot 8
    virtual void SetCallback(AudioCallback callback, void* user) = 0; ///< slot 9
    virtual void Reserved10() {}                                      ///< slot 10; not called by the module

protected:
    ~CHostAudioDevice() = default;
};

/// The playback device. It is shared between modules: one owns it at a time, by module name. SetProgress and IsLoop are
/// also called on the pump thread, from within the callback, and so may run while the user-interface thread is in any
/// other function; neither may wait for that thread.
class CHostPlayer : public CHostAudioDevice {
public:
    virtual uint32_t GetProgressRange() = 0;      ///< slot 11; full scale of the host's progress display
    virtual void SetProgress(uint32_t value) = 0; ///< slot 12; 0 .. GetProgressRange()
    virtual void Reserved13() {}
    virtual void Reserved14() {}
    virtual void Reserved15() {}
    virtual void Reserved16() {}
    virtual const char16_t* GetOwner() = 0;               ///< slot 17; null while nobody owns the device
    virtual int Acquire(const char16_t* moduleName) = 0;  ///< slot 18; nonzero when the module now owns it
    virtual void Release(const char16_t* moduleName) = 0; ///< slot 19
    virtual void UpdateControls(const char16_t* moduleName, int canPlay) = 0; ///< slot 20
    virtual void Reserved21() {}
    virtual int IsLoop() = 0; ///< slot 22; nonzero: wrap at the end of the play range
    virtual void Reserved23() {}
    virtual void Reserved24() {}
    virtual int GetState() = 0; ///< slot 25; a CHostAudioDevice::State

protected:
    ~CHostPlayer() = default;
};

/// The capture device.
class CHostRecorder : public CHostAudioDevice {
public:
    virtual int AcquireInput(const char16_t* moduleName) = 0;  ///< slot 11; nonzero when the module now owns it
    virtual void ReleaseInput(const char16_t* moduleName) = 0; ///< slot 12
    virtual void Register(const char16_t* moduleName, int interested) = 0; ///< slot 13; once, at initialisation

protected:
    ~CHostRecorder() = default;
};

} // namespace ek
