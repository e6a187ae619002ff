// SPDX-License-Identifier: GPL-3.0-or-later
#include "devices/RtStream.h"

#include "devices/HangGuard.h"
#include "devices/StreamHealth.h"
#include "platform/Events.h"

#include <RtAudio.h>

#include <algorithm>
#include <atomic>
#include <chrono>
#include <dlfcn.h>
#include <exception>
#include <map>
#include <thread>
#include <utility>

namespace ek {

namespace {

constexpr uint32_t BufferCount = 8;
constexpr uint32_t UsualLatencyMilliseconds = 90;
constexpr std::chrono::milliseconds ClosePatience{1500}; ///< with a server that may have died
constexpr std::chrono::milliseconds OpenPatience{4000};  ///< a sleeping card takes its time to wake

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

/// What the library's threads use. It outlives a stream that is left to itself.
struct RtStreamCore {
    std::atomic<FrameMover*> Mover = nullptr;
    std::atomic<bool> IsMoving = false;
    StreamHealth Health;
    uint32_t Channels = 0; ///< fixed before the stream starts
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

int OnFrames(void* out, void* in, unsigned int count, double, RtAudioStreamStatus status, void* user)
{
    constexpr int GoOn = 0;
    constexpr int Abort = 2;
    auto& core = *static_cast<RtStreamCore*>(user);
    t_current = &core;
    const bool hadGap = status != 0;
    if (!core.Health.OnCall(TickMilliseconds(), hadGap))
        return Abort;
    // In one order with Stop, which takes the mover away and then waits for the end of the move.
    core.IsMoving.store(true, std::memory_order_seq_cst);
    if (FrameMover* mover = core.Mover.load(std::memory_order_seq_cst))
        mover->Move(static_cast<float*>(out ? out : in), count, hadGap);
    else if (out)
        std::fill_n(static_cast<float*>(out), static_cast<size_t>(count) * core.Channels, 0.0F);
    core.IsMoving.store(false, std::memory_order_release);
    return GoOn;
}

void OnError(RtAudioError::Type type, const std::string& text)
{
    if (t_current && type == RtAudioError::WARNING)
        t_current->Health.OnWarning(text);
    else if (t_current)
        t_current->Health.OnError(text);
}

/// Runs a step that may throw; the text of what it threw, else empty.
template <typename Step>
std::string FaultOf(Step&& step)
{
    try {
        step();
        return {};
    } catch (const std::exception& fault) {
        const std::string text = TextForPerson(fault.what());
        return text.empty() ? "unknown error" : text;
    }
}

/// The library looks for the devices of a system with the help of static data, and each opening of a stream looks for
/// them first: that is done by one at a time. Null: there is no such system.
HangGuard* LookUpsOf(const std::string& system)
{
    // Never destroyed, as one that hangs may outlive main.
    static auto& guards = *[] {
        auto* all = new std::map<std::string, HangGuard>;
        for (const std::string& name : ListCardSystems())
            all->try_emplace(name, OpenPatience);
        return all;
    }();
    const auto found = guards.find(system);
    return found == guards.end() ? nullptr : &found->second;
}

/// What an opening finds.
struct Opened {
    std::string Name;
    StreamShape Shape;
    uint32_t LatencyFrames = 0;
    std::string Trouble;                ///< why it is not open; for a person
    std::shared_ptr<RtStreamCore> Core; ///< before the stream that uses it
    std::unique_ptr<RtAudio> Audio;
};

void OpenCard(Opened& opened, const std::string& system, const std::string& device, bool forCapture,
              const StreamWish& wish)
{
    opened.Audio = MakeAudio(system);
    const std::vector<Card> cards = opened.Audio ? CardsOf(*opened.Audio, forCapture) : std::vector<Card>();
    const Card* const card = FindCard(cards, device, forCapture);
    if (!card) {
        opened.Trouble = device.empty() ? "There is no sound device (" + system + ")."
                                        : "The sound device " + device + " is not there.";
        return;
    }
    opened.Name = card->Info.name;
    opened.Shape.Rate = RateFor(*card, wish.Sound.nSamplesPerSec);
    opened.Shape.Channels = ChannelsFor(system, *card, wish.Sound.nChannels, forCapture);
    opened.Core->Channels = opened.Shape.Channels;
    const uint32_t latency = wish.LatencyMilliseconds ? wish.LatencyMilliseconds : UsualLatencyMilliseconds;
    unsigned int frames = static_cast<unsigned int>(
        std::clamp<uint64_t>(uint64_t{latency} * opened.Shape.Rate / 1000 / BufferCount, 32, 8192));
    RtAudio::StreamParameters parameters{card->Id, opened.Shape.Channels, 0};
    RtAudio::StreamOptions options;
    options.numberOfBuffers = BufferCount;
    options.streamName = "Ek Wave Editor";
    const CurrentCore current(*opened.Core);
    opened.Audio->openStream(forCapture ? nullptr : &parameters, forCapture ? &parameters : nullptr, RTAUDIO_FLOAT32,
                             opened.Shape.Rate, &frames, OnFrames, opened.Core.get(), &options, OnError);
    opened.Shape.PeriodFrames = frames;
    // What a system does not tell is what it was asked to hold.
    const auto told = static_cast<uint32_t>(std::max(opened.Audio->getStreamLatency(), 0L));
    opened.LatencyFrames = told > 0 ? told + frames : (forCapture ? frames : frames * BufferCount);
}

void CloseStream(std::unique_ptr<RtAudio> audio, RtStreamCore& core)
{
    (void)FaultOf([&] {
        const CurrentCore current(core);
        if (audio->isStreamRunning())
            audio->abortStream();
    });
    (void)FaultOf([&] { audio.reset(); });
}

/// A server that no longer answers would keep the caller here for ever: then the stream is left to itself.
void CloseOrLeave(std::unique_ptr<RtAudio> audio, const std::shared_ptr<RtStreamCore>& core)
{
    try {
        const auto closed = std::make_shared<ManualResetEvent>();
        std::thread thread([handle = audio.get(), core, closed] {
            CloseStream(std::unique_ptr<RtAudio>(handle), *core);
            closed->Set();
        });
        (void)audio.release();
        thread.detach();
        (void)closed->WaitFor(ClosePatience);
    } catch (const std::exception&) {
        if (audio)
            CloseStream(std::move(audio), *core); // without a thread there is no other way
    }
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
    HangGuard* const lookUps = LookUpsOf(m_system);
    if (!lookUps) {
        trouble = "There is no sound system " + m_system + ".";
        return false;
    }
    auto opened = std::make_shared<Opened>();
    opened->Core = m_core;
    const bool inTime = lookUps->Run([opened, device, wish, system = m_system, capture = m_forCapture] {
        const std::string fault = FaultOf([&] { OpenCard(*opened, system, device, capture, wish); });
        if (!fault.empty())
            opened->Trouble = "The sound device " + (opened->Name.empty() ? system : opened->Name) +
                              " can't be opened: " + fault + ".";
        if (!opened->Trouble.empty())
            (void)FaultOf([&] { opened->Audio.reset(); });
    });
    if (!inTime) {
        trouble = "The sound system " + m_system + " does not answer.";
        return false;
    }
    m_name = opened->Name;
    m_shape = opened->Shape;
    m_latencyFrames = opened->LatencyFrames;
    m_audio = std::move(opened->Audio);
    if (!opened->Trouble.empty())
        trouble = opened->Trouble;
    return opened->Trouble.empty();
}

bool RtStream::Start(FrameMover& mover, std::string& trouble)
{
    m_core->Mover = &mover;
    m_core->Health.Begin(TickMilliseconds());
    std::string fault = FaultOf([&] {
        const CurrentCore current(*m_core);
        m_audio->startStream();
    });
    if (fault.empty() && HasFailed())
        fault = m_core->Health.Reason();
    else if (fault.empty())
        return true;
    trouble = "The sound device " + m_name + " can't be started" + (fault.empty() ? "." : ": " + fault + ".");
    Stop();
    return false;
}

void RtStream::Stop()
{
    if (!m_audio)
        return;
    m_core->Health.End();
    m_core->Mover.store(nullptr, std::memory_order_seq_cst);
    while (m_core->IsMoving.load(std::memory_order_seq_cst))
        std::this_thread::yield();
    CloseOrLeave(std::move(m_audio), m_core);
}

bool RtStream::HasFailed() const
{
    return m_core->Health.HasFailed(TickMilliseconds());
}

std::string RtStream::Trouble() const
{
    const std::string reason = m_core->Health.Reason();
    return m_name + " has stopped working" + (reason.empty() ? "." : ": " + reason + ".");
}

std::vector<AudioDeviceInfo> ListCards(const std::string& system, bool forCapture)
{
    HangGuard* const lookUps = LookUpsOf(system);
    auto list = std::make_shared<std::vector<AudioDeviceInfo>>();
    const bool inTime = lookUps && lookUps->Run([list, system, forCapture] {
        (void)FaultOf([&] {
            if (const std::unique_ptr<RtAudio> audio = MakeAudio(system))
                for (const Card& card : CardsOf(*audio, forCapture))
                    list->push_back({system, card.Info.name, card.Channels(forCapture), card.IsDefault(forCapture)});
        });
    });
    return inTime ? *list : std::vector<AudioDeviceInfo>();
}

void AwaitLookUps(std::chrono::milliseconds limit)
{
    for (const std::string& system : ListCardSystems())
        LookUpsOf(system)->WaitUntilIdle(limit);
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
