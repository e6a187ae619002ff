// SPDX-License-Identifier: GPL-3.0-or-later
#include "devices/RtStream.h"

#include "platform/Events.h"

#include <RtAudio.h>

#include <algorithm>
#include <array>
#include <atomic>
#include <chrono>
#include <condition_variable>
#include <dlfcn.h>
#include <mutex>
#include <thread>
#include <utility>

namespace ek {

namespace {

constexpr uint32_t BufferCount = 8;
constexpr uint32_t UsualLatencyMilliseconds = 90;
constexpr uint64_t StallMilliseconds = 5000; ///< a healthy card asks many times a second
constexpr std::chrono::milliseconds CloseLimit{1500};
constexpr std::chrono::milliseconds LookUpLimit{1500};

void IgnoreAlsaError(const char* /*file*/, int /*line*/, const char* /*function*/, int /*code*/, const char* /*format*/,
                     ...)
{
}

void KeepAlsaQuiet()
{
    // The library prints every configuration it cannot use. Its switch is reached by name, as RtAudio is what links it.
    using Handler = void (*)(const char*, int, const char*, int, const char*, ...);
    using SetHandler = int (*)(Handler);
    static const bool isQuiet = [] {
        const auto set = reinterpret_cast<SetHandler>(dlsym(RTLD_DEFAULT, "snd_lib_error_set_handler"));
        return set && set(IgnoreAlsaError) == 0;
    }();
    (void)isQuiet;
}

RtAudio::Api ApiOf(const std::string& system)
{
    return RtAudio::getCompiledApiByName(system);
}

std::unique_ptr<RtAudio> MakeAudio(const std::string& system)
{
    if (system == "alsa")
        KeepAlsaQuiet();
    const RtAudio::Api api = ApiOf(system);
    if (api == RtAudio::UNSPECIFIED)
        return nullptr;
    auto audio = std::make_unique<RtAudio>(api);
    audio->showWarnings(false);
    return audio;
}

struct Card {
    uint32_t Id = 0;
    RtAudio::DeviceInfo Info;
    uint32_t Channels(bool forCapture) const { return forCapture ? Info.inputChannels : Info.outputChannels; }
    bool IsDefault(bool forCapture) const { return forCapture ? Info.isDefaultInput : Info.isDefaultOutput; }
};

std::vector<Card> CardsOf(RtAudio& audio, bool forCapture)
{
    std::vector<Card> cards;
    const uint32_t count = audio.getDeviceCount();
    for (uint32_t id = 0; id < count; ++id) {
        Card card{id, audio.getDeviceInfo(id)};
        if (card.Info.probed && card.Channels(forCapture) > 0)
            cards.push_back(std::move(card));
    }
    return cards;
}

const Card* FindCard(const std::vector<Card>& cards, const std::string& name, bool forCapture)
{
    const auto isIt = [&](const Card& card) {
        return name.empty() ? card.IsDefault(forCapture) : card.Info.name == name;
    };
    const auto found = std::find_if(cards.begin(), cards.end(), isIt);
    if (found != cards.end())
        return &*found;
    return name.empty() && !cards.empty() ? &cards.front() : nullptr;
}

/// The sound's own rate, else the next higher one that the card takes, else its highest.
uint32_t RateFor(const Card& card, uint32_t wanted)
{
    uint32_t higher = 0;
    uint32_t highest = 0;
    for (const unsigned int rate : card.Info.sampleRates) {
        if (rate >= wanted && (higher == 0 || rate < higher))
            higher = rate;
        highest = std::max(highest, rate);
    }
    return higher != 0 ? higher : highest != 0 ? highest : wanted;
}

/// The server's and the card's own order of more than two channels are not the sound's, and cannot be told to them
/// here: only with JACK, where every channel is a port of its own, more than two go out.
uint32_t ChannelsFor(const std::string& system, const Card& card, uint32_t wanted, bool forCapture)
{
    const uint32_t limit = std::min(card.Channels(forCapture), system == "jack" ? 8U : 2U);
    if (wanted > limit)
        return std::min(limit, forCapture ? limit : 2U);
    return forCapture ? wanted : std::min(std::max(wanted, 2U), limit);
}

} // namespace

struct RtStreamCore {
    std::unique_ptr<RtAudio> Audio;
    std::atomic<FrameMover*> Mover = nullptr;
    std::atomic<bool> IsMoving = false;
    std::atomic<bool> Failed = false;
    std::atomic<bool> Reported = false; ///< Message is written
    std::array<char, 256> Message{};
    std::atomic<uint64_t> LastCall{0}; ///< ticks
    std::atomic<bool> Runs = false;
    uint32_t Channels = 0; ///< fixed before the stream starts

    void Fail(const std::string& text)
    {
        if (Failed.exchange(true))
            return;
        text.copy(Message.data(), Message.size() - 1);
        Reported.store(true, std::memory_order_release);
    }
};

namespace {

/// RtAudio's report of an error does not say of which stream; it comes on the thread that was calling, or was called
/// for, that stream.
thread_local RtStreamCore* t_current = nullptr;

class CurrentCore {
public:
    explicit CurrentCore(RtStreamCore& core) : m_before(std::exchange(t_current, &core)) {}
    ~CurrentCore() { t_current = m_before; }
    CurrentCore(const CurrentCore&) = delete;
    CurrentCore& operator=(const CurrentCore&) = delete;

private:
    RtStreamCore* m_before;
};

int OnFrames(void* out, void* in, unsigned int count, double, RtAudioStreamStatus, void* user)
{
    constexpr int GoOn = 0;
    constexpr int Abort = 2;
    auto& core = *static_cast<RtStreamCore*>(user);
    t_current = &core;
    if (core.Failed.load(std::memory_order_relaxed))
        return Abort;
    core.LastCall.store(TickMilliseconds(), std::memory_order_relaxed);
    // In one order with Stop, which takes the mover away and then waits for the end of the move.
    core.IsMoving.store(true, std::memory_order_seq_cst);
    if (FrameMover* mover = core.Mover.load(std::memory_order_seq_cst))
        mover->Move(static_cast<float*>(out ? out : in), count);
    else if (out)
        std::fill_n(static_cast<float*>(out), static_cast<size_t>(count) * core.Channels, 0.0F);
    core.IsMoving.store(false, std::memory_order_release);
    return GoOn;
}

void OnError(RtAudioError::Type, const std::string& text)
{
    if (t_current)
        t_current->Fail(text);
}

/// The library looks for devices with the help of static data, and each opening of a stream looks for them first: that
/// is done by one at a time. A server that hangs keeps its turn; the others then give up after a while.
class LookUpTurn {
public:
    LookUpTurn()
    {
        Shared& shared = All();
        std::unique_lock lock(shared.Mutex);
        m_isMine = shared.Changed.wait_for(lock, LookUpLimit, [&] { return !shared.IsTaken; });
        if (m_isMine)
            shared.IsTaken = true;
    }
    ~LookUpTurn()
    {
        if (!m_isMine)
            return;
        const std::lock_guard lock(All().Mutex);
        All().IsTaken = false;
        All().Changed.notify_one();
    }
    LookUpTurn(const LookUpTurn&) = delete;
    LookUpTurn& operator=(const LookUpTurn&) = delete;

    bool IsMine() const { return m_isMine; }

private:
    struct Shared {
        std::mutex Mutex;
        std::condition_variable Changed;
        bool IsTaken = false;
    };
    static Shared& All()
    {
        static auto& shared = *new Shared; // also for threads that outlive main
        return shared;
    }

    bool m_isMine = false;
};

/// Runs a step that may throw; the text of what it threw, else empty.
template <typename Step>
std::string FaultOf(Step&& step)
{
    try {
        step();
        return {};
    } catch (const std::exception& fault) {
        const std::string text = fault.what();
        return text.empty() ? "unknown error" : text;
    }
}

/// The same of a step that looks for devices.
template <typename Step>
std::string FaultOfLookUp(Step&& step)
{
    const LookUpTurn turn;
    return turn.IsMine() ? FaultOf(step) : "the sound server does not answer";
}

} // namespace

RtStream::RtStream(std::string system, bool forCapture)
    : m_system(std::move(system)), m_forCapture(forCapture), m_core(std::make_shared<RtStreamCore>())
{
}

RtStream::~RtStream()
{
    Stop();
}

bool RtStream::Open(const std::string& device, const StreamWish& wish, std::string& trouble)
{
    const std::string fault = FaultOfLookUp([&] {
        m_core->Audio = MakeAudio(m_system);
        const std::vector<Card> cards = m_core->Audio ? CardsOf(*m_core->Audio, m_forCapture) : std::vector<Card>();
        const Card* const card = FindCard(cards, device, m_forCapture);
        if (!card) {
            trouble = device.empty() ? "There is no sound device (" + m_system + ")."
                                     : "The sound device " + device + " is not there.";
            return;
        }
        m_name = card->Info.name;
        m_shape.Rate = RateFor(*card, wish.Sound.nSamplesPerSec);
        m_shape.Channels = ChannelsFor(m_system, *card, wish.Sound.nChannels, m_forCapture);
        m_core->Channels = m_shape.Channels;
        const uint32_t latency = wish.LatencyMilliseconds ? wish.LatencyMilliseconds : UsualLatencyMilliseconds;
        unsigned int frames = std::clamp<uint32_t>(
            static_cast<uint32_t>(uint64_t{latency} * m_shape.Rate / 1000 / BufferCount), 32, 8192);
        RtAudio::StreamParameters parameters{card->Id, m_shape.Channels, 0};
        RtAudio::StreamOptions options;
        options.numberOfBuffers = BufferCount;
        options.streamName = "Ek Wave Editor";
        const CurrentCore current(*m_core);
        m_core->Audio->openStream(m_forCapture ? nullptr : &parameters, m_forCapture ? &parameters : nullptr,
                                  RTAUDIO_FLOAT32, m_shape.Rate, &frames, OnFrames, m_core.get(), &options, OnError);
        m_shape.PeriodFrames = frames;
        // What a system does not tell is what it was asked to hold.
        const auto told = static_cast<uint32_t>(std::max(m_core->Audio->getStreamLatency(), 0L));
        m_latencyFrames = told > 0 ? told + frames : (m_forCapture ? frames : frames * BufferCount);
    });
    if (!fault.empty())
        trouble = "The sound device " + (m_name.empty() ? m_system : m_name) + " can't be opened: " + fault;
    return fault.empty() && m_shape.PeriodFrames > 0;
}

bool RtStream::Start(FrameMover& mover, std::string& trouble)
{
    m_core->LastCall = TickMilliseconds();
    m_core->Mover = &mover;
    m_core->Runs = true;
    std::string fault = FaultOf([&] {
        const CurrentCore current(*m_core);
        m_core->Audio->startStream();
    });
    if (fault.empty() && !m_core->Failed)
        return true;
    trouble = "The sound device " + m_name + " can't be started: " + (fault.empty() ? Trouble() : fault);
    Stop();
    return false;
}

void RtStream::Stop()
{
    if (!m_core->Audio)
        return;
    m_core->Runs = false;
    m_core->Mover.store(nullptr, std::memory_order_seq_cst);
    while (m_core->IsMoving.load(std::memory_order_seq_cst))
        std::this_thread::yield();
    // A server that no longer answers would keep the caller here for ever: then the stream is left to itself.
    auto closed = std::make_shared<ManualResetEvent>();
    std::thread closer([core = m_core, closed] {
        (void)FaultOf([&] {
            const CurrentCore current(*core);
            if (core->Audio->isStreamRunning())
                core->Audio->abortStream();
        });
        (void)FaultOf([&] { core->Audio.reset(); });
        closed->Set();
    });
    if (closed->WaitFor(CloseLimit))
        closer.join();
    else
        closer.detach();
    const std::shared_ptr<RtStreamCore> old = std::exchange(m_core, std::make_shared<RtStreamCore>());
    if (old->Failed.load())
        m_core->Fail(old->Reported.load(std::memory_order_acquire) ? old->Message.data() : "");
}

bool RtStream::HasFailed() const
{
    const RtStreamCore& core = *m_core;
    return core.Failed.load() || (core.Runs.load() && TickMilliseconds() - core.LastCall.load() > StallMilliseconds);
}

std::string RtStream::Trouble() const
{
    const RtStreamCore& core = *m_core;
    const bool isTold = core.Reported.load(std::memory_order_acquire) && core.Message[0] != '\0';
    return m_name + " has stopped working" + (isTold ? std::string(": ") + core.Message.data() : std::string()) + ".";
}

std::vector<AudioDeviceInfo> ListCards(const std::string& system, bool forCapture)
{
    std::vector<AudioDeviceInfo> list;
    (void)FaultOfLookUp([&] {
        if (const std::unique_ptr<RtAudio> audio = MakeAudio(system))
            for (const Card& card : CardsOf(*audio, forCapture))
                list.push_back({system, card.Info.name, card.Channels(forCapture), card.IsDefault(forCapture)});
    });
    return list;
}

std::vector<std::string> ListCardSystems()
{
    std::vector<std::string> systems;
    for (const char* name : {"pulse", "jack", "alsa"})
        if (ApiOf(name) != RtAudio::UNSPECIFIED)
            systems.emplace_back(name);
    return systems;
}

} // namespace ek
