// SPDX-License-Identifier: GPL-3.0-or-later
#include "devices/HostPlayer.h"

#include "devices/AudioBackend.h"
#include "devices/Playback.h"
#include "devices/SoundShape.h"

#include <algorithm>
#include <string>
#include <utility>

namespace ek {

namespace {

constexpr uint32_t ProgressRange = 1000;
constexpr int64_t RetryMicroseconds = 900000;

} // namespace

struct HostPlayer::Impl {
    Impl(HostPlayer& player, AudioBackend& backend)
        : Player(player), Backend(backend), Play(backend, {[this] { State.store(Stopped, std::memory_order_release); },
                                                           [this](const std::string& text) { Trouble(text); }})
    {
    }

    void Trouble(const std::string& text)
    {
        if (HostPlayerListener* listener = Listener.load())
            listener->OnDeviceTrouble(text);
    }

    bool IsActive() const { return State.load(std::memory_order_acquire) != Stopped; }

    PlaySetup Setup() const
    {
        StreamWish wish{Shape.Format(), Shape.BlockFrames(), Chosen.LatencyMilliseconds};
        return {&Player, Callback, User, wish, Shape.BlockCount()};
    }

    bool Begin();
    void Announce();
    void TellReconfigured();
    void Replace(std::unique_ptr<OutputDevice> device, const std::string& reason);
    void ReplaceLost();
    void FollowChoice();
    bool Switch(std::unique_ptr<OutputDevice> device);

    HostPlayer& Player;
    AudioBackend& Backend;
    std::atomic<HostPlayerListener*> Listener = nullptr;
    AudioDeviceChoice Chosen;
    std::string Name;
    SoundShape Shape;
    AudioCallback Callback = nullptr;
    void* User = nullptr;
    std::u16string Owner;
    bool MayPlay = false;
    bool IsSubstitute = false; ///< the null device plays in place of the chosen one
    int64_t LastTry = 0;       ///< to come back to the chosen one
    std::atomic<bool> Loops = false;
    std::atomic<uint32_t> Shown = 0;
    std::atomic<int> State = Stopped;

    struct Controls {
        int State = Stopped;
        std::u16string Owner;
        bool MayPlay = false;
        bool operator==(const Controls&) const = default;
    };
    Controls Announced;

    Playback Play; ///< last: its thread uses the others
};

/// Opens the chosen device and begins; without one the sound does not start.
bool HostPlayer::Impl::Begin()
{
    std::string trouble = Callback ? Shape.Fault() : "There is nothing to play.";
    if (!trouble.empty()) {
        Trouble(trouble);
        return false;
    }
    const PlaySetup setup = Setup();
    Play.Hold(); // only now nothing can end by itself any more
    State = Running;
    if (Play.CanRestart(setup)) {
        Play.Restart(setup);
        return true;
    }
    Play.Stop();
    std::unique_ptr<OutputDevice> device = Backend.OpenOutput(Chosen, setup.Wish, trouble);
    if (device) {
        Name = device->Name();
        IsSubstitute = device->IsSilent() && Chosen.System != "null";
        LastTry = Backend.NowMicroseconds();
        if (Play.Start(setup, std::move(device), trouble))
            return true;
    }
    State = Stopped;
    Trouble(trouble);
    return false;
}

void HostPlayer::Impl::Announce()
{
    const Controls now{State.load(std::memory_order_acquire), Owner, MayPlay};
    if (now == Announced)
        return;
    Announced = now;
    if (HostPlayerListener* listener = Listener.load())
        listener->OnControlsChanged();
}

void HostPlayer::Impl::TellReconfigured()
{
    HostPlayerListener* const listener = Listener.load();
    if (listener && !Owner.empty())
        listener->OnPlayerReconfigured();
}

bool HostPlayer::Impl::Switch(std::unique_ptr<OutputDevice> device)
{
    Name = device->Name();
    IsSubstitute = device->IsSilent() && Chosen.System != "null";
    LastTry = Backend.NowMicroseconds();
    std::string trouble;
    if (Play.Continue(std::move(device), trouble))
        return true;
    Trouble(trouble);
    return false;
}

/// `device` may be null: then the null device takes over.
void HostPlayer::Impl::Replace(std::unique_ptr<OutputDevice> device, const std::string& reason)
{
    const StreamWish wish = Play.Wish();
    if (!device || !Switch(std::move(device)))
        Switch(Backend.OpenNullOutput(wish));
    if (!reason.empty())
        Trouble(reason + (IsSubstitute ? " Playing goes on without sound." : " Playing goes on with " + Name + "."));
    TellReconfigured();
}

void HostPlayer::Impl::ReplaceLost()
{
    std::string reason = Play.Device()->Trouble();
    if (reason.empty())
        reason = "The sound device has stopped working.";
    std::string trouble;
    Play.Silence();
    Replace(Backend.OpenOutput(Chosen, Play.Wish(), trouble), reason);
}

/// To the chosen device, if it is there again, or to the one that is the default now.
void HostPlayer::Impl::FollowChoice()
{
    LastTry = Backend.NowMicroseconds();
    if (!IsSubstitute && !Backend.HasMoved(Chosen, Name))
        return;
    std::string trouble;
    std::unique_ptr<OutputDevice> device = Backend.OpenOutput(Chosen, Play.Wish(), trouble);
    if (device && !device->IsSilent())
        Replace(std::move(device), {});
}

HostPlayer::HostPlayer() : HostPlayer(SystemAudioBackend()) {}

HostPlayer::HostPlayer(AudioBackend& backend) : m_impl(std::make_unique<Impl>(*this, backend)) {}

HostPlayer::~HostPlayer()
{
    m_impl->Play.Stop();
}

void HostPlayer::SetListener(HostPlayerListener* listener)
{
    m_impl->Listener = listener;
}

void HostPlayer::Choose(const AudioDeviceChoice& choice)
{
    if (choice == m_impl->Chosen)
        return;
    m_impl->Chosen = choice;
    if (m_impl->IsActive()) {
        std::string trouble;
        std::unique_ptr<OutputDevice> device = m_impl->Backend.OpenOutput(choice, m_impl->Play.Wish(), trouble);
        m_impl->Replace(std::move(device), trouble);
    } else {
        m_impl->TellReconfigured();
    }
    m_impl->Announce();
}

const AudioDeviceChoice& HostPlayer::Choice() const
{
    return m_impl->Chosen;
}

std::string HostPlayer::DeviceName() const
{
    return m_impl->Name;
}

void HostPlayer::SetLoop(bool loop)
{
    m_impl->Loops = loop;
}

bool HostPlayer::CanPlay() const
{
    return m_impl->MayPlay;
}

uint32_t HostPlayer::Progress() const
{
    return m_impl->Shown;
}

uint64_t HostPlayer::HeardMilliseconds() const
{
    return m_impl->Play.HeardMilliseconds();
}

std::array<float, 8> HostPlayer::TakePeaks()
{
    return m_impl->Play.TakePeaks();
}

uint64_t HostPlayer::DropoutCount() const
{
    return m_impl->Play.Dropouts();
}

void HostPlayer::Watch()
{
    Impl& impl = *m_impl;
    if (impl.IsActive()) {
        const OutputDevice* const device = impl.Play.Device();
        if (device && device->HasFailed() && device->IsReplaceable())
            impl.ReplaceLost();
        else if (impl.Backend.NowMicroseconds() - impl.LastTry > RetryMicroseconds)
            impl.FollowChoice();
    }
    impl.Announce();
}

int HostPlayer::Start()
{
    const bool started = m_impl->Begin();
    m_impl->Announce();
    return started ? 1 : 0;
}

void HostPlayer::Stop()
{
    m_impl->Play.Stop();
    m_impl->State = Stopped;
    m_impl->Announce();
}

void HostPlayer::Pause()
{
    // The sound may come to its end at this very moment, and must not be woken up by this.
    int state = Running;
    const bool pauses = m_impl->State.compare_exchange_strong(state, Paused);
    if (pauses || (state == Paused && m_impl->State.compare_exchange_strong(state, Running)))
        m_impl->Play.SetPaused(pauses);
    m_impl->Announce();
}

const WAVEFORMATEXTENSIBLE* HostPlayer::GetFormat()
{
    return &m_impl->Shape.Format();
}

void HostPlayer::SetFormat(const WAVEFORMATEXTENSIBLE* format)
{
    if (format)
        m_impl->Shape.SetFormat(*format);
}

uint32_t HostPlayer::GetBufferCount()
{
    return m_impl->Shape.BufferCount;
}

void HostPlayer::SetBufferCount(uint32_t count)
{
    m_impl->Shape.BufferCount = count;
}

uint32_t HostPlayer::GetBufferSize()
{
    return m_impl->Shape.BufferBytes;
}

void HostPlayer::SetBufferSize(uint32_t bytes)
{
    m_impl->Shape.BufferBytes = bytes;
}

void HostPlayer::SetCallback(AudioCallback callback, void* user)
{
    m_impl->Callback = callback;
    m_impl->User = user;
}

uint32_t HostPlayer::GetProgressRange()
{
    return ProgressRange;
}

void HostPlayer::SetProgress(uint32_t value)
{
    m_impl->Shown = std::min(value, ProgressRange);
}

const char16_t* HostPlayer::GetOwner()
{
    return m_impl->Owner.empty() ? nullptr : m_impl->Owner.c_str();
}

int HostPlayer::Acquire(const char16_t* moduleName)
{
    const std::u16string name = moduleName ? moduleName : u"";
    if (name.empty() || (!m_impl->Owner.empty() && m_impl->Owner != name))
        return 0;
    if (m_impl->Owner.empty()) {
        m_impl->Owner = name;
        if (HostPlayerListener* listener = m_impl->Listener.load())
            listener->OnPlayerGranted();
        m_impl->Announce();
    }
    return 1;
}

void HostPlayer::Release(const char16_t* moduleName)
{
    if (!moduleName || m_impl->Owner != moduleName)
        return;
    m_impl->Owner.clear();
    m_impl->Announce();
}

void HostPlayer::UpdateControls(const char16_t* /*moduleName*/, int canPlay)
{
    m_impl->MayPlay = canPlay != 0;
    m_impl->Announce();
}

int HostPlayer::IsLoop()
{
    return m_impl->Loops ? 1 : 0;
}

int HostPlayer::GetState()
{
    return m_impl->State.load(std::memory_order_acquire);
}

} // namespace ek
