// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "ek/HostAudioDevice.h"
#include "ek/HostFrame.h"
#include "ek/HostSkin.h"

#include <functional>
#include <map>
#include <string>
#include <vector>

namespace ek {

/// What the module called on the host, in order: "RefreshMenu(Ek Wave Editor)".
class HostCalls {
public:
    template <class... Arguments>
    void Add(const std::string& name, const Arguments&... arguments)
    {
        AddLine(name, {ToText(arguments)...});
    }

    std::vector<std::string> Take(); ///< all so far, and forgets them
    size_t Count(const std::string& call) const;

private:
    static std::string ToText(const char16_t* text);
    static std::string ToText(uint32_t number) { return std::to_string(number); }
    static std::string ToText(int number) { return std::to_string(number); }
    void AddLine(const std::string& name, const std::vector<std::string>& arguments);

    std::vector<std::string> m_lines;
};

/// What the player and the recorder have in common.
template <class Device>
class RecordingDevice : public Device {
public:
    RecordingDevice(HostCalls& calls, std::string name) : Calls(calls), Name(std::move(name) + '.') {}

    int Start() override { return Calls.Add(Name + "Start"), StartAnswer ? 1 : 0; }
    void Stop() override { Calls.Add(Name + "Stop"); }
    void Pause() override { Calls.Add(Name + "Pause"); }
    const WAVEFORMATEXTENSIBLE* GetFormat() override { return &Format; }
    void SetFormat(const WAVEFORMATEXTENSIBLE* format) override
    {
        Calls.Add(Name + "SetFormat", format->nSamplesPerSec, uint32_t{format->nChannels});
        Format = *format;
    }
    uint32_t GetBufferCount() override { return BufferCount; }
    void SetBufferCount(uint32_t count) override { Calls.Add(Name + "SetBufferCount", BufferCount = count); }
    uint32_t GetBufferSize() override { return BufferSize; }
    void SetBufferSize(uint32_t bytes) override { Calls.Add(Name + "SetBufferSize", BufferSize = bytes); }
    void SetCallback(AudioCallback callback, void* user) override
    {
        Calls.Add(Name + "SetCallback");
        Callback = callback;
        User = user;
    }

    bool StartAnswer = true;
    WAVEFORMATEXTENSIBLE Format;
    uint32_t BufferCount = 0;
    uint32_t BufferSize = 0;
    AudioCallback Callback = nullptr;
    void* User = nullptr;

protected:
    HostCalls& Calls;
    std::string Name;
};

class RecordingPlayer final : public RecordingDevice<CHostPlayer> {
public:
    explicit RecordingPlayer(HostCalls& calls) : RecordingDevice(calls, "Player") {}

    uint32_t GetProgressRange() override { return ProgressRange; }
    void SetProgress(uint32_t value) override { Calls.Add("Player.SetProgress", value); }
    const char16_t* GetOwner() override { return Owner.empty() ? nullptr : Owner.c_str(); }
    int Acquire(const char16_t* moduleName) override; ///< granted while nobody else owns the device
    void Release(const char16_t* moduleName) override;
    void UpdateControls(const char16_t* moduleName, int canPlay) override
    {
        Calls.Add("Player.UpdateControls", moduleName, canPlay);
    }
    int IsLoop() override { return Loop ? 1 : 0; }
    int GetState() override { return DeviceState; }

    uint32_t ProgressRange = 1000;
    std::u16string Owner;
    bool Loop = false;
    int DeviceState = CHostPlayer::Stopped;
    std::function<void()> OnGranted; ///< while Acquire runs, as hosts tell the module of it
};

class RecordingRecorder final : public RecordingDevice<CHostRecorder> {
public:
    explicit RecordingRecorder(HostCalls& calls) : RecordingDevice(calls, "Recorder") {}

    int AcquireInput(const char16_t* name) override { return Calls.Add("Recorder.AcquireInput", name), Grants ? 1 : 0; }
    void ReleaseInput(const char16_t* name) override { Calls.Add("Recorder.ReleaseInput", name); }
    void Register(const char16_t* name, int on) override { Calls.Add("Recorder.Register", name, on); }

    bool Grants = true;
};

class RecordingServices final : public CHostServices {
public:
    explicit RecordingServices(HostCalls& calls) : m_calls(calls) {}

    void WriteSetting(const char16_t* section, const char16_t* key, const char16_t* value) override;
    int ReadSetting(const char16_t* section, const char16_t* key, char16_t* buffer, uint32_t maxChars) override;
    void RefreshMenu(const char16_t* moduleName) override { m_calls.Add("RefreshMenu", moduleName); }
    void ShowStatusText(const char16_t* text, uint32_t time) override { m_calls.Add("ShowStatusText", text, time); }

    std::map<std::u16string, std::string> Settings; ///< by "section/key"; what is read and written

private:
    HostCalls& m_calls;
};

class RecordingSkin final : public CHostSkin {
public:
    explicit RecordingSkin(HostCalls& calls) : m_calls(calls) {}

    SkinColor GetColor(uint32_t colorId) override { return Colors[colorId]; }
    void SkinWindow(QWidget*, int recursive) override { m_calls.Add("SkinWindow", recursive); }
    const enXml* GetSkinXml(const char16_t* moduleName, const char16_t* elementName) override;

    std::map<uint32_t, SkinColor> Colors; ///< black where nothing is set
    std::map<std::u16string, const enXml*> Elements;

private:
    HostCalls& m_calls;
};

/// A host for tests: it records every call with its arguments and answers from its public fields. A service that
/// is switched off is null for the module.
class RecordingHost final : public CHostFrame {
public:
    uint32_t GetVersion() override { return Version; }
    CHostServices* GetServices() override { return HasServices ? &Services : nullptr; }
    CHostPlayer* GetPlayer() override { return HasDevices ? &Player : nullptr; }
    CHostRecorder* GetRecorder() override { return HasDevices ? &Recorder : nullptr; }
    CHostSkin* GetSkin() override { return HasSkin ? &Skin : nullptr; }

    HostCalls Calls;
    uint32_t Version = 0x01000000;
    bool HasServices = true;
    bool HasDevices = true;
    bool HasSkin = true;
    RecordingServices Services{Calls};
    RecordingPlayer Player{Calls};
    RecordingRecorder Recorder{Calls};
    RecordingSkin Skin{Calls};
};

} // namespace ek
