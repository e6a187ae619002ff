// SPDX-License-Identifier: GPL-3.0-or-later
#include "devices/Capture.h"

#include "ek/SoundData.h"

#include <algorithm>
#include <chrono>
#include <exception>

namespace ek {

namespace {

constexpr uint32_t PieceFrames = 4096;
// A recording cannot be repeated: a disk that stops to think for seconds must not make a hole in it.
constexpr uint32_t RingSeconds = 4;
constexpr std::chrono::milliseconds LookForFailure{250};

} // namespace

bool Capture::Start(const CaptureSetup& setup, std::unique_ptr<InputDevice> device, std::string& trouble)
{
    Stop();
    m_setup = setup;
    try {
        if (Run(std::move(device), trouble))
            return true;
    } catch (const std::exception&) {
        trouble = "The system has not enough memory left for recording.";
    }
    m_device.reset();
    return false;
}

bool Capture::Run(std::unique_ptr<InputDevice> device, std::string& trouble)
{
    const StreamShape shape = device->Shape();
    const uint32_t soundRate = m_setup.Wish.Sound.nSamplesPerSec;
    m_rate = std::make_unique<RateStage>(shape.Rate, soundRate, shape.Channels);
    if (!m_rate->IsUsable()) {
        trouble = "Sound of " + std::to_string(soundRate) + " Hz can't be recorded from " + device->Name() + ".";
        return false;
    }
    const uint64_t block = uint64_t{m_setup.Wish.BlockFrames} * shape.Rate / soundRate + 1;
    const uint64_t capacity = std::max<uint64_t>(block * m_setup.BlockCount, uint64_t{shape.Rate} * RingSeconds);
    m_queue = std::make_unique<CaptureQueue>(shape.Rate, shape.Channels, static_cast<uint32_t>(block),
                                             static_cast<uint32_t>(std::min<uint64_t>(capacity, 1U << 26)));
    m_frames.resize(static_cast<size_t>(PieceFrames) * shape.Channels);
    m_bytes.clear();
    m_paused = false;
    m_quit = false;
    m_device = std::move(device);
    if (!m_device->Start(*m_queue, trouble))
        return false;
    m_thread = std::thread([this] { Pump(); });
    return true;
}

void Capture::Stop()
{
    if (!m_thread.joinable())
        return;
    m_device->Stop();
    m_quit = true;
    m_queue->Pump().Signal();
    m_thread.join();
    m_device.reset();
}

void Capture::TogglePause()
{
    m_paused = !m_paused;
    if (m_queue)
        m_queue->SetPaused(m_paused);
}

void Capture::Pump()
{
    bool hasReported = false;
    for (;;) {
        // Looked at before the queue is emptied: after it has been set, nothing comes any more.
        const bool isLast = m_quit;
        Drain();
        if (isLast)
            break;
        if (!hasReported && m_device->HasFailed()) {
            hasReported = true;
            const std::string trouble = m_device->Trouble();
            m_report(trouble.empty() ? "The recording device has stopped working." : trouble);
        }
        m_queue->Pump().WaitFor(LookForFailure);
    }
    Convert(nullptr, 0);
    DeliverWholeBlocks();
    if (!m_bytes.empty())
        Deliver(m_bytes.size());
}

void Capture::Drain()
{
    while (const uint32_t count = m_queue->Take(m_frames.data(), PieceFrames)) {
        m_endTime = m_queue->NextMicroseconds();
        Convert(m_frames.data(), count);
        DeliverWholeBlocks();
    }
}

void Capture::Convert(const float* frames, uint32_t count)
{
    const RateStage::Result result = m_rate->Convert(frames, count);
    const uint32_t from = m_queue->Channels();
    const uint32_t to = m_setup.Wish.Sound.nChannels;
    m_sound.Resize(to, result.Count);
    for (uint32_t channel = 0; channel < to; ++channel) {
        // A microphone is heard on both sides; otherwise channels that the card does not have stay silent.
        const uint32_t source = from == 1 && channel == 1 ? 0 : channel;
        for (uint32_t i = 0; i < result.Count && source < from; ++i)
            m_sound.Record().Channels[channel][i] = result.Frames[static_cast<size_t>(i) * from + source];
    }
    const size_t before = m_bytes.size();
    m_bytes.resize(before + static_cast<size_t>(result.Count) * m_setup.Wish.Sound.nBlockAlign);
    SD2MME(m_sound.Record(), 0, result.Count, m_bytes.data() + before, m_setup.Wish.Sound);
}

void Capture::DeliverWholeBlocks()
{
    const size_t blockBytes = static_cast<size_t>(m_setup.Wish.BlockFrames) * m_setup.Wish.Sound.nBlockAlign;
    while (m_bytes.size() >= blockBytes)
        Deliver(blockBytes);
}

void Capture::Deliver(size_t bytes)
{
    const double framesToEnd = static_cast<double>(m_bytes.size()) / m_setup.Wish.Sound.nBlockAlign;
    const auto toEnd = static_cast<int64_t>(framesToEnd * 1e6 / m_setup.Wish.Sound.nSamplesPerSec);
    CaptureRequest request{m_bytes.data(), static_cast<uint32_t>(bytes),
                           static_cast<uint32_t>((m_endTime - toEnd) / 1000)};
    m_setup.Callback(m_setup.Device, &request, m_setup.User);
    m_bytes.erase(m_bytes.begin(), m_bytes.begin() + static_cast<ptrdiff_t>(bytes));
}

} // namespace ek
