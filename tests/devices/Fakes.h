// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "devices/AudioBackend.h"
#include "devices/AudioClock.h"
#include "devices/CaptureQueue.h"
#include "devices/FileDevice.h"
#include "devices/HostPlayer.h"
#include "devices/HostRecorder.h"
#include "devices/NullDevice.h"
#include "devices/PlayQueue.h"
#include "ek/SoundData.h"
#include "platform/Events.h"

#include <atomic>
#include <condition_variable>
#include <deque>
#include <functional>
#include <mutex>
#include <new>
#include <string>
#include <thread>
#include <utility>
#include <vector>

namespace ek {

/// Time that stands still until a test moves it.
class ManualClock final : public AudioClock {
public:
    int64_t NowMicroseconds() override
    {
        const std::lock_guard lock(m_mutex);
        return m_now;
    }

    bool WaitUntil(int64_t microseconds) override
    {
        std::unique_lock lock(m_mutex);
        m_waitsUntil = microseconds;
        m_isDeserted = m_interrupted;
        m_changed.notify_all();
        m_changed.wait(lock, [&] { return m_interrupted || m_now >= microseconds; });
        const bool inTime = !m_interrupted;
        m_interrupted = false;
        m_waitsUntil = -1;
        return inTime;
    }

    void Interrupt() override
    {
        const std::lock_guard lock(m_mutex);
        m_interrupted = true;
        m_isDeserted = true;
        m_changed.notify_all();
    }

    /// Moves on; returns when whoever goes by the clock has done all that was due.
    void Advance(int64_t microseconds)
    {
        std::unique_lock lock(m_mutex);
        m_now += microseconds;
        m_changed.notify_all();
        m_changed.wait(lock, [this] { return m_isDeserted || m_waitsUntil > m_now; });
    }

    void Settle() ///< waits for a thread that has just been started, until it has done what is due
    {
        std::unique_lock lock(m_mutex);
        m_changed.wait(lock, [this] { return m_waitsUntil > m_now; });
    }

private:
    std::mutex m_mutex;
    std::condition_variable m_changed;
    int64_t m_now = 5000000;
    int64_t m_waitsUntil = -1;
    bool m_interrupted = false;
    bool m_isDeserted = true; ///< nobody goes by it
};

/// A card that takes frames when a test says so, on the thread of the test.
class FakeCard final : public OutputDevice {
public:
    FakeCard(std::string name, StreamShape shape, uint32_t latency, std::function<int64_t()> now)
        : m_name(std::move(name)), m_shape(shape), m_latency(latency), m_now(std::move(now))
    {
    }

    StreamShape Shape() const override { return m_shape; }
    std::string Name() const override { return m_name; }
    uint32_t LatencyFrames() const override { return m_latency; }
    void Stop() override
    {
        const std::lock_guard lock(m_mutex);
        m_queue = nullptr;
    }
    bool HasFailed() const override { return m_failed; }
    bool HasMoved() override { return std::exchange(Moves, false); }
    std::string Trouble() const override { return m_failed ? "Unplugged." : ""; }
    bool Start(PlayQueue& queue, std::string& trouble) override
    {
        const std::lock_guard lock(m_mutex);
        if (Throws)
            throw std::bad_alloc();
        if (Refuses)
            trouble = "Busy.";
        else
            m_queue = &queue;
        return !Refuses;
    }

    std::vector<float> Pull(uint32_t frames)
    {
        std::vector<float> values(static_cast<size_t>(frames) * m_shape.Channels, 9.0F);
        const std::lock_guard lock(m_mutex);
        if (!m_queue)
            return {};
        m_queue->Fill(values.data(), frames, m_now());
        return values;
    }
    void Unplug() { m_failed = true; }
    bool IsStarted() const
    {
        const std::lock_guard lock(m_mutex);
        return m_queue != nullptr;
    }

    bool Refuses = false;
    bool Throws = false;
    bool Moves = false; ///< another card has become the default one

private:
    std::string m_name;
    StreamShape m_shape;
    uint32_t m_latency;
    std::function<int64_t()> m_now;
    std::atomic<bool> m_failed = false;
    mutable std::mutex m_mutex;
    PlayQueue* m_queue = nullptr;
};

/// Opens what the test has laid ready; else null devices on its clock.
class FakeBackend final : public AudioBackend {
public:
    int64_t NowMicroseconds() override { return Clock->NowMicroseconds(); }
    std::unique_ptr<OutputDevice> OpenOutput(const AudioDeviceChoice& choice, const StreamWish& wish,
                                             std::string& trouble) override
    {
        if (choice.System == "file")
            return MakeFileOutput(wish, choice.File, trouble);
        if (choice.System == "null")
            return OpenNullOutput(wish);
        ++Openings;
        if (BeforeOpening)
            BeforeOpening();
        if (Cards.empty()) {
            trouble = "No card.";
            return choice.System == "auto" ? OpenNullOutput(wish) : nullptr;
        }
        std::unique_ptr<OutputDevice> card = std::move(Cards.front());
        Cards.pop_front();
        return card;
    }
    std::unique_ptr<OutputDevice> OpenNullOutput(const StreamWish& wish) override
    {
        return MakeNullOutput(wish, Clock);
    }
    std::unique_ptr<InputDevice> OpenInput(const AudioDeviceChoice& choice, const StreamWish& wish,
                                           std::string& trouble) override
    {
        if (choice.System == "file")
            return MakeFileInput(choice.File, Clock, trouble);
        if (choice.System == "null")
            return MakeNullInput(wish, Clock);
        trouble = "No microphone.";
        return nullptr;
    }

    FakeCard& AddCard(StreamShape shape, uint32_t latency = 0, const std::string& name = "Fake")
    {
        auto card = std::make_unique<FakeCard>(name, shape, latency, [this] { return NowMicroseconds(); });
        FakeCard& reference = *card;
        Cards.push_back(std::move(card));
        return reference;
    }

    std::shared_ptr<ManualClock> Clock = std::make_shared<ManualClock>();
    std::deque<std::unique_ptr<OutputDevice>> Cards;
    uint32_t Openings = 0; ///< tries to open a card
    std::function<void()> BeforeOpening;
};

/// What a listener was told; any thread.
class Told final : public HostPlayerListener, public HostRecorderListener {
public:
    void OnPlayerGranted() override { Add("granted"); }
    void OnPlayerReconfigured() override { Add("reconfigured"); }
    void OnControlsChanged() override { Add("controls"); }
    void OnDeviceChanged() override { Add("device"); }
    void OnInputGranted() override { Add("input"); }
    void OnDeviceTrouble(const std::string& text) override { Add(text); }

    std::vector<std::string> Take()
    {
        const std::lock_guard lock(m_mutex);
        return std::exchange(m_lines, {});
    }

private:
    void Add(const std::string& line)
    {
        const std::lock_guard lock(m_mutex);
        m_lines.push_back(line);
    }

    std::mutex m_mutex;
    std::vector<std::string> m_lines;
};

/// A module that plays a sound of known 16-bit values, once or in a loop.
class FakeModule {
public:
    FakeModule(uint32_t channels, uint64_t frames) : Channels(channels), Frames(frames) {}
    ~FakeModule()
    {
        if (Player)
            Player->Stop();
    }

    int16_t Value(uint64_t frame, uint32_t channel) const
    {
        return static_cast<int16_t>(1 + (frame * 7 + channel * 1000) % 30000); // never silent
    }
    static uint32_t Callback(CHostAudioDevice* device, void* request, void* user)
    {
        return static_cast<FakeModule*>(user)->Answer(static_cast<CHostPlayer*>(device),
                                                      *static_cast<PlayRequest*>(request));
    }
    uint32_t Answer(CHostPlayer* player, const PlayRequest& request)
    {
        const std::lock_guard lock(m_mutex);
        if (request.Sound->Request == 0) {
            StateAtEnd = player->GetState();
            Notices += request.Sound->FrameCount;
            Ended.Set();
            return 0;
        }
        Stamps.push_back(request.Stamp);
        uint32_t done = 0;
        for (; done < request.Sound->FrameCount; ++done, ++Next) {
            if (Next == Frames && player->IsLoop())
                Next = 0;
            if (Next >= Frames)
                break;
            for (uint32_t channel = 0; channel < Channels; ++channel)
                request.Sound->Channels[channel][done] = static_cast<float>(Value(Next, channel)) / 32768;
        }
        Asked.notify_all();
        return done;
    }
    void WaitForRequests(size_t count)
    {
        std::unique_lock lock(m_mutex);
        Asked.wait(lock, [&] { return Stamps.size() >= count; });
    }
    void GoTo(uint64_t frame)
    {
        const std::lock_guard lock(m_mutex);
        Next = frame;
    }
    size_t RequestCount()
    {
        const std::lock_guard lock(m_mutex);
        return Stamps.size();
    }
    std::vector<uint32_t> TakeStamps()
    {
        const std::lock_guard lock(m_mutex);
        return Stamps;
    }

    HostPlayer* Player = nullptr; ///< that is stopped before the module goes
    uint32_t Channels;
    uint64_t Frames;
    uint64_t Next = 0;
    uint32_t Notices = 0;
    int StateAtEnd = -1;
    ManualResetEvent Ended;
    std::condition_variable Asked;
    std::vector<uint32_t> Stamps;

private:
    std::mutex m_mutex;
};

} // namespace ek
