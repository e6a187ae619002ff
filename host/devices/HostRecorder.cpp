// SPDX-License-Identifier: GPL-3.0-or-later
#include "devices/HostRecorder.h"

#include "devices/AudioBackend.h"
#include "devices/Capture.h"
#include "devices/SoundShape.h"

#include <string>
#include <utility>

namespace ek {

struct HostRecorder::Impl {
    Impl(HostRecorder& recorder, AudioBackend& backend)
        : Recorder(recorder), Backend(backend), Input([this](const std::string& text) { Trouble(text); })
    {
    }

    void Trouble(const std::string& text)
    {
        if (HostRecorderListener* listener = Listener.load())
            listener->OnDeviceTrouble(text);
    }

    bool Begin();

    HostRecorder& Recorder;
    AudioBackend& Backend;
    std::atomic<HostRecorderListener*> Listener = nullptr;
    AudioDeviceChoice Chosen;
    SoundShape Shape;
    AudioCallback Callback = nullptr;
    void* User = nullptr;
    std::u16string Owner;
    Capture Input; ///< last: its thread uses the others
};

bool HostRecorder::Impl::Begin()
{
    Input.Stop();
    std::string trouble = Callback ? Shape.Fault() : "Nobody takes what would be recorded.";
    if (trouble.empty()) {
        const StreamWish wish{Shape.Format(), Shape.BlockFrames(), Chosen.LatencyMilliseconds};
        std::unique_ptr<InputDevice> device = Backend.OpenInput(Chosen, wish, trouble);
        if (device && Input.Start({&Recorder, Callback, User, wish, Shape.BlockCount()}, std::move(device), trouble))
            return true;
    }
    Trouble(trouble);
    return false;
}

HostRecorder::HostRecorder() : HostRecorder(SystemAudioBackend()) {}

HostRecorder::HostRecorder(AudioBackend& backend) : m_impl(std::make_unique<Impl>(*this, backend)) {}

HostRecorder::~HostRecorder()
{
    m_impl->Input.Stop();
}

void HostRecorder::SetListener(HostRecorderListener* listener)
{
    m_impl->Listener = listener;
}

void HostRecorder::Choose(const AudioDeviceChoice& choice)
{
    m_impl->Chosen = choice;
}

const AudioDeviceChoice& HostRecorder::Choice() const
{
    return m_impl->Chosen;
}

uint64_t HostRecorder::DropoutCount() const
{
    return m_impl->Input.Lost();
}

int HostRecorder::Start()
{
    return m_impl->Begin() ? 1 : 0;
}

void HostRecorder::Stop()
{
    m_impl->Input.Stop();
}

void HostRecorder::Pause()
{
    m_impl->Input.TogglePause();
}

const WAVEFORMATEXTENSIBLE* HostRecorder::GetFormat()
{
    return &m_impl->Shape.Format();
}

void HostRecorder::SetFormat(const WAVEFORMATEXTENSIBLE* format)
{
    if (format)
        m_impl->Shape.SetFormat(*format);
}

uint32_t HostRecorder::GetBufferCount()
{
    return m_impl->Shape.BufferCount;
}

void HostRecorder::SetBufferCount(uint32_t count)
{
    m_impl->Shape.BufferCount = count;
}

uint32_t HostRecorder::GetBufferSize()
{
    return m_impl->Shape.BufferBytes;
}

void HostRecorder::SetBufferSize(uint32_t bytes)
{
    m_impl->Shape.BufferBytes = bytes;
}

void HostRecorder::SetCallback(AudioCallback callback, void* user)
{
    m_impl->Callback = callback;
    m_impl->User = user;
}

int HostRecorder::AcquireInput(const char16_t* moduleName)
{
    const std::u16string name = moduleName ? moduleName : u"";
    if (name.empty() || (!m_impl->Owner.empty() && m_impl->Owner != name))
        return 0;
    m_impl->Owner = name;
    if (HostRecorderListener* listener = m_impl->Listener.load())
        listener->OnInputGranted();
    return 1;
}

void HostRecorder::ReleaseInput(const char16_t* moduleName)
{
    if (moduleName && m_impl->Owner == moduleName)
        m_impl->Owner.clear();
}

// Whoever acquires the input is served; there is nothing to prepare for those who may.
void HostRecorder::Register(const char16_t* /*moduleName*/, int /*interested*/) {}

} // namespace ek
