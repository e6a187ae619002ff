// SPDX-License-Identifier: GPL-3.0-or-later
#include "devices/HostPlayer.h"

#include "devices/AudioBackend.h"
#include "devices/Playback.h"
#include "devices/SoundShape.h"

#include <algorithm>
#include <exception>
#include <string>
#include <utility>

namespace ek {

namespace {

constexpr uint32_t ProgressRange = 1000;
constexpr int64_t FirstRetry = 900000; ///< microseconds
constexpr int64_t SlowestRetry = 8 * FirstRetry;

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

    std::string HowItGoesOn() const
    {
        return IsSubstitute ? "Playing goes on without sound." : "Playing goes on with " + Name + ".";
    }

    PlaySetup Setup() const
    {
        StreamWish wish{Shape.Format(), Shape.BlockFrames(), Chosen.LatencyMilliseconds};
        return {&Player, Callback, User, wish, Shape.BlockCount()};
    }

    bool Begin();
    void Announce();
    void TellReconfigured();
    bool Open(const PlaySetup& setup);
    bool StartOn(const PlaySetup& setup, std::unique_ptr<OutputDevice> device, std::string& trouble);
    bool SwitchTo(std::unique_ptr<OutputDevice> device, std::string& trouble);
    void Adopt(std::string name, bool isSilent);
    void Replace(std::unique_ptr<OutputDevice> device, std::string reason);
    void ReplaceLost();
    void FollowChoice();

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
    bool IsSubstitute = false;  ///< the null device plays in place of the chosen one
    int64_t LastTry = 0;        ///< microseconds: to come back to the chosen one
    int64_t Retry = FirstRetry; ///< after that time; the longer, the more often it was in vain
    std::atomic<bool> Loops = false;
    std::atomic<uint32_t> Shown = 0;
    std::atomic<int> State = Stopped;

    struct Controls {
        int State = Stopped;
        std::u16string Owner;
        bool MayPlay = false;
        bool operator==(const Controls&) const = default;
    };
    struct Health {
        std::string Name;
        bool IsSubstitute = false;
        bool operator==(const Health&) const = default;
    };
    Controls Announced;
    Health AnnouncedHealth;

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
    if (!Play.CanRestart(setup))
        return Open(setup);
    if (Play.Restart(setup, trouble))
        return true;
    State = Stopped;
    Trouble(trouble);
    return false;
}

bool HostPlayer::Impl::Open(const PlaySetup& setup)
{
    Play.Stop();
    std::string trouble;
    std::string unused;
    std::unique_ptr<OutputDevice> device = Backend.OpenOutput(Chosen, setup.Wish, trouble);
    const bool hasStarted = (device && StartOn(setup, std::move(device), trouble)) ||
                            (Chosen.System == "auto" && StartOn(setup, Backend.OpenNullOutput(setup.Wish), unused));
    if (!hasStarted)
        State = Stopped;
    if (!hasStarted)
        Trouble(trouble);
    else if (!trouble.empty())
        Trouble(trouble.append(" ").append(HowItGoesOn()));
    return hasStarted;
}

bool HostPlayer::Impl::StartOn(const PlaySetup& setup, std::unique_ptr<OutputDevice> device, std::string& trouble)
{
    std::string name = device->Name();
    const bool isSilent = device->IsSilent();
    if (!Play.Start(setup, std::move(device), trouble))
        return false;
    Adopt(std::move(name), isSilent);
    return true;
}

void HostPlayer::Impl::Adopt(std::string name, bool isSilent)
{
    Name = std::move(name);
    IsSubstitute = isSilent && Chosen.System != "null";
    LastTry = Backend.NowMicroseconds();
    Retry = FirstRetry;
}

void HostPlayer::Impl::Announce()
{
    HostPlayerListener* const listener = Listener.load();
    const Controls now{State.load(std::memory_order_acquire), Owner, MayPlay};
    if (std::exchange(Announced, now) != now && listener)
        listener->OnControlsChanged();
    const Health health{Name, IsSubstitute};
    if (std::exchange(AnnouncedHealth, health) != health && listener)
        listener->OnDeviceChanged();
}

void HostPlayer::Impl::TellReconfigured()
{
    HostPlayerListener* const listener = Listener.load();
    if (listener && !Owner.empty())
        listener->OnPlayerReconfigured();
}

/// False: the device refuses. True also when the sound has ended meanwhile: then the device is not used.
bool HostPlayer::Impl::SwitchTo(std::unique_ptr<OutputDevice> device, std::string& trouble)
{
    std::string name = device->Name();
    const bool isSilent = device->IsSilent();
    if (!Play.Continue(std::move(device), trouble))
        return false;
    if (Play.Device())
        Adopt(std::move(name), isSilent);
    return true;
}

/// `device` may be null: then the null device takes over. Without a reason the chosen device is back.
void HostPlayer::Impl::Replace(std::unique_ptr<OutputDevice> device, std::string reason)
{
    const StreamWish wish = Play.Wish();
    const bool isOffered = device != nullptr;
    const int64_t retry = Retry;
    std::string trouble;
    bool goesOn = device && SwitchTo(std::move(device), trouble);
    if (!goesOn) {
        if (!trouble.empty())
            reason += (reason.empty() ? "" : " ") + trouble;
        goesOn = SwitchTo(Backend.OpenNullOutput(wish), trouble);
        if (isOffered) // what opens but does not start is tried less and less often
            Retry = std::min(2 * retry, SlowestRetry);
    }
    if (!goesOn) {
        Play.Stop();
        State = Stopped;
        Trouble(reason + " Playing has ended.");
    } else if (!reason.empty()) {
        if (Play.Device())
            reason.append(" ").append(HowItGoesOn());
        Trouble(reason);
    }
    TellReconfigured();
}

void HostPlayer::Impl::ReplaceLost()
{
    std::string reason = Play.Device()->Trouble();
    if (reason.empty())
        reason = "The sound device has stopped working.";
    Play.Silence();
    if (Play.HasEnded())
        return;
    std::string unused;
    Replace(Backend.OpenOutput(Chosen, Play.Wish(), unused), reason);
}

/// To the chosen device, if it is there again, or to the one that is the default now.
void HostPlayer::Impl::FollowChoice()
{
    LastTry = Backend.NowMicroseconds();
    OutputDevice* const used = Play.Device();
    const bool hasMoved = !IsSubstitute && used && used->HasMoved();
    if (!IsSubstitute && !hasMoved)
        return;
    std::string unused;
    std::unique_ptr<OutputDevice> device = Backend.OpenOutput(Chosen, Play.Wish(), unused);
    LastTry = Backend.NowMicroseconds(); // a server that does not answer has cost time
    if (!device || device->IsSilent()) {
        Retry = std::min(2 * Retry, SlowestRetry);
        return;
    }
    Replace(std::move(device), {});
    if (hasMoved && Play.Device() && !IsSubstitute)
        Trouble(HowItGoesOn());
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

bool HostPlayer::IsInTrouble() const
{
    return m_impl->IsSubstitute;
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

uint32_t HostPlayer::ChannelCount() const
{
    return m_impl->Play.Wish().Sound.nChannels;
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
        else if (impl.Backend.NowMicroseconds() - impl.LastTry > impl.Retry)
            impl.FollowChoice();
    }
    impl.Announce();
}

int HostPlayer::Start()
{
    bool started = false;
    try {
        started = m_impl->Begin();
    } catch (const std::exception&) { // no memory, or no thread
        m_impl->Play.Stop();
        m_impl->State = Stopped;
    }
    m_impl->Announce();
    return started ? 1 : 0;
}

void HostPlayer::Stop()
{
    m_impl->Play.Hold();
    m_impl->State = Stopped;
    m_impl->Play.Stop();
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
    m_impl->Owner = name;
    if (HostPlayerListener* listener = m_impl->Listener.load())
        listener->OnPlayerGranted();
    m_impl->Announce();
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
