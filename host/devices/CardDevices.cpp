// SPDX-License-Identifier: GPL-3.0-or-later
#include "devices/CardDevices.h"

#include "devices/AudioClock.h"
#include "devices/CaptureQueue.h"
#include "devices/PlayQueue.h"
#include "devices/RtStream.h"

namespace ek {

namespace {

class CardOutput final : public OutputDevice, FrameMover {
public:
    explicit CardOutput(const std::string& system) : m_stream(system, false) {}
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
    void Stop() override { m_stream.Stop(); }

    bool Start(PlayQueue& queue, std::string& trouble) override
    {
        m_queue = &queue;
        return m_stream.Start(*this, trouble);
    }

private:
    void Move(float* frames, uint32_t count) override { m_queue->Fill(frames, count, MonotonicMicroseconds()); }

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
    void Move(float* frames, uint32_t count) override
    {
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
    auto output = std::make_unique<CardOutput>(system);
    return output->Open(device, wish, trouble) ? std::move(output) : nullptr;
}

std::unique_ptr<InputDevice> MakeCardInput(const std::string& system, const std::string& device, const StreamWish& wish,
                                           std::string& trouble)
{
    auto input = std::make_unique<CardInput>(system);
    return input->Open(device, wish, trouble) ? std::move(input) : nullptr;
}

} // namespace ek
