// SPDX-License-Identifier: GPL-3.0-or-later
#include "devices/CardDevices.h"

#include "devices/AudioClock.h"
#include "devices/CaptureQueue.h"
#include "devices/PlayQueue.h"
#include "devices/RtStream.h"
#include "platform/Events.h"

#include <exception>
#include <thread>

namespace ek {

namespace {

/// Looks now and then which card the default one of a system is.
class DefaultWatch {
public:
    /// Only a server moves its default. The cards of other systems can't be looked at without opening each of them.
    explicit DefaultWatch(const std::string& system) : m_system(system == "pulse" ? system : std::string()) {}

    /// True, once for each card, when it is another one than this. Does not wait: it gives the answer to an earlier
    /// call.
    bool HasMovedFrom(const std::string& name)
    {
        if (m_system.empty() || (m_query && !m_query->Done.IsSet()))
            return false;
        const std::string found = m_query ? m_query->Name : std::string();
        Ask();
        if (found.empty() || found == m_lastFound)
            return false;
        m_lastFound = found;
        return found != name;
    }

private:
    struct Query {
        std::string Name; ///< once it is done; empty: there is none
        ManualResetEvent Done;
    };

    /// On a thread of its own, which nobody joins: a server that does not answer must not stop the window.
    void Ask()
    {
        m_query = std::make_shared<Query>();
        try {
            std::thread([query = m_query, system = m_system] {
                for (const AudioDeviceInfo& card : ListCards(system, false))
                    if (card.IsDefault)
                        query->Name = card.Name;
                query->Done.Set();
            }).detach();
        } catch (const std::exception&) {
            m_query.reset();
        }
    }

    std::string m_system;    ///< empty: it is not followed
    std::string m_lastFound; ///< one that can't be opened is not tried again and again
    std::shared_ptr<Query> m_query;
};

class CardOutput final : public OutputDevice, FrameMover {
public:
    CardOutput(const std::string& system, bool isDefault)
        : m_default(isDefault ? system : std::string()), m_stream(system, false)
    {
    }
    ~CardOutput() override { m_stream.Stop(); }

    bool Open(const std::string& device, const StreamWish& wish, std::string& trouble)
    {
        return m_stream.Open(device, wish, trouble);
    }

    StreamShape Shape() const override { return m_stream.Shape(); }
    std::string Name() const override { return m_stream.Name(); }
    uint32_t LatencyFrames() const override { return m_stream.LatencyFrames(); }
    bool HasFailed() const override { return m_stream.HasFailed(); }
    std::string Trouble() const override { return m_stream.Trouble(); }
    bool HasMoved() override { return m_default.HasMovedFrom(m_stream.Name()); }
    void Stop() override { m_stream.Stop(); }

    bool Start(PlayQueue& queue, std::string& trouble) override
    {
        m_queue = &queue;
        return m_stream.Start(*this, trouble);
    }

private:
    void Move(float* frames, uint32_t count, bool hadGap) override
    {
        if (hadGap && !m_queue->IsPaused())
            m_queue->CountDropout();
        m_queue->Fill(frames, count, MonotonicMicroseconds());
    }

    DefaultWatch m_default;
    PlayQueue* m_queue = nullptr;
    RtStream m_stream;
};

class CardInput final : public InputDevice, FrameMover {
public:
    explicit CardInput(const std::string& system) : m_stream(system, true) {}
    ~CardInput() override { m_stream.Stop(); }

    bool Open(const std::string& device, const StreamWish& wish, std::string& trouble)
    {
        return m_stream.Open(device, wish, trouble);
    }

    StreamShape Shape() const override { return m_stream.Shape(); }
    std::string Name() const override { return m_stream.Name(); }
    bool HasFailed() const override { return m_stream.HasFailed(); }
    std::string Trouble() const override { return m_stream.Trouble(); }
    void Stop() override { m_stream.Stop(); }

    bool Start(CaptureQueue& queue, std::string& trouble) override
    {
        m_queue = &queue;
        return m_stream.Start(*this, trouble);
    }

private:
    void Move(float* frames, uint32_t count, bool hadGap) override
    {
        if (hadGap)
            m_queue->CountLost(count); // how many the card does not say; it is a period at least
        // What has just come out of the card's buffer went into it that much earlier, but for the frames themselves.
        const uint32_t held = m_stream.LatencyFrames() > count ? m_stream.LatencyFrames() - count : 0;
        m_queue->Put(frames, count, MonotonicMicroseconds() - int64_t{held} * 1000000 / m_stream.Shape().Rate);
    }

    CaptureQueue* m_queue = nullptr;
    RtStream m_stream;
};

} // namespace

std::unique_ptr<OutputDevice> MakeCardOutput(const std::string& system, const std::string& device,
                                             const StreamWish& wish, std::string& trouble)
{
    auto output = std::make_unique<CardOutput>(system, device.empty());
    return output->Open(device, wish, trouble) ? std::move(output) : nullptr;
}

std::unique_ptr<InputDevice> MakeCardInput(const std::string& system, const std::string& device, const StreamWish& wish,
                                           std::string& trouble)
{
    auto input = std::make_unique<CardInput>(system);
    return input->Open(device, wish, trouble) ? std::move(input) : nullptr;
}

} // namespace ek
