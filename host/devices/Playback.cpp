// SPDX-License-Identifier: GPL-3.0-or-later
#include "devices/Playback.h"

#include <algorithm>
#include <exception>
#include <utility>

namespace ek {

namespace {

constexpr const char* NothingLeft = "The system has not enough memory left for playing.";

} // namespace

Playback::Playback(AudioBackend& backend, Events events) : m_backend(backend), m_events(std::move(events)) {}

Playback::~Playback()
{
    Stop();
}

bool Playback::Start(const PlaySetup& setup, std::unique_ptr<OutputDevice> device, std::string& trouble)
{
    Stop();
    m_setup = setup;
    m_ended = false;
    m_paused = false;
    m_pastDropouts = 0;
    ForgetBlocks();
    return RunOn(std::move(device), trouble);
}

bool Playback::CanRestart(const PlaySetup& setup) const
{
    return m_device && !HasEnded() && !m_device->HasFailed() && setup.Wish == m_setup.Wish &&
           setup.BlockCount == m_setup.BlockCount;
}

bool Playback::Restart(const PlaySetup& setup, std::string& trouble)
{
    Hold();
    m_setup = setup;
    ForgetBlocks();
    m_queueStart = m_queue->Restart();
    m_pastDropouts = 0 - m_queue->Dropouts();
    try {
        m_mixer = std::make_unique<CardMixer>(setup.Wish.Sound, m_queue->Channels());
        m_rate = std::make_unique<RateStage>(setup.Wish.Sound.nSamplesPerSec, m_queue->Rate(), m_queue->Channels());
        SetPaused(false);
        Run();
    } catch (const std::exception&) {
        trouble = NothingLeft;
        CloseDevice();
        return false;
    }
    return true;
}

void Playback::Silence()
{
    Hold();
    CloseDevice();
}

bool Playback::Continue(std::unique_ptr<OutputDevice> device, std::string& trouble)
{
    Silence();
    if (HasEnded())
        return true;
    if (m_queue)
        m_pastDropouts += m_queue->Dropouts();
    m_queue.reset();
    TrimBlocks();
    m_unsent = 0;
    m_endSent = false;
    return RunOn(std::move(device), trouble);
}

void Playback::Stop()
{
    Hold();
    CloseDevice();
}

void Playback::SetPaused(bool paused)
{
    m_paused = paused;
    if (!m_queue)
        return;
    m_queue->SetPaused(paused);
    m_queue->Pump().Signal();
    if (m_device)
        m_device->OnQueueChanged();
}

/// A large ring, or a thread, may be more than the system has left.
bool Playback::RunOn(std::unique_ptr<OutputDevice> device, std::string& trouble)
{
    try {
        if (Use(std::move(device), trouble)) {
            Run();
            return true;
        }
    } catch (const std::exception&) {
        trouble = NothingLeft;
    }
    m_device.reset();
    return false;
}

bool Playback::Use(std::unique_ptr<OutputDevice> device, std::string& trouble)
{
    const StreamShape shape = device->Shape();
    const uint32_t soundRate = m_setup.Wish.Sound.nSamplesPerSec;
    auto rate = std::make_unique<RateStage>(soundRate, shape.Rate, shape.Channels);
    if (!rate->IsUsable()) {
        trouble = "A sound of " + std::to_string(soundRate) + " Hz can't be played on " + device->Name() + ".";
        return false;
    }
    const uint64_t blockFrames =
        (static_cast<uint64_t>(m_setup.Wish.BlockFrames) * shape.Rate + soundRate - 1) / soundRate;
    const auto block = static_cast<uint32_t>(std::clamp<uint64_t>(blockFrames, 1, 1U << 22));
    const uint32_t target = std::max(m_setup.BlockCount * block, shape.PeriodFrames + block);
    m_queue = std::make_unique<PlayQueue>(shape.Rate, shape.Channels, block, target, m_backend.NowMicroseconds());
    m_queue->SetPaused(m_paused);
    m_queueStart = 0;
    m_mixer = std::make_unique<CardMixer>(m_setup.Wish.Sound, shape.Channels);
    m_rate = std::move(rate);
    m_device = std::move(device);
    return m_device->Start(*m_queue, trouble);
}

void Playback::Run()
{
    m_quit = false;
    m_thread = std::thread([this] { Pump(); });
}

void Playback::Hold()
{
    if (!m_thread.joinable())
        return;
    m_quit = true;
    m_queue->Pump().Signal();
    m_thread.join();
}

void Playback::CloseDevice()
{
    if (!m_device)
        return;
    m_device->Stop();
    m_soundStart = HeardFrames();
    std::string trouble;
    if (!HasEnded() && !CompleteDevice(trouble))
        m_events.OnTrouble(trouble);
    m_device.reset();
}

/// False: what the device was to keep is not whole. Asked after it was stopped: the last frames may have failed.
bool Playback::CompleteDevice(std::string& trouble)
{
    if (!m_device->HasFailed())
        return m_device->Finish(trouble);
    trouble = m_device->Trouble();
    return m_device->IsReplaceable();
}

void Playback::ForgetBlocks()
{
    m_peaks.Clear();
    m_blocks.clear();
    m_unsent = 0;
    m_asked = 0;
    m_soundStart = 0;
    m_heardMost = 0;
    m_soundOver = false;
    m_endSent = false;
}

void Playback::Pump()
{
    while (!m_quit) {
        if (m_device->HasFailed() && !m_device->IsReplaceable())
            return Finish();
        if (m_endSent && m_queue->IsHeard())
            return Finish();
        if (!m_endSent && !m_queue->IsPaused() && m_queue->HasRoomForBlock()) {
            if (m_unsent == m_blocks.size() && !m_soundOver)
                Ask();
            if (m_unsent < m_blocks.size())
                Send();
            if (!HasMore())
                SendEnd();
            m_device->OnQueueChanged();
            continue;
        }
        if (!m_queue->HasRoomForBlock() && m_queue->SetPrimed())
            m_device->OnQueueChanged();
        m_queue->Pump().Wait();
    }
}

void Playback::Ask()
{
    TrimBlocks();
    Block block = TakeSpare();
    const uint32_t wanted = m_setup.Wish.BlockFrames;
    _SOUNDDATAEX_ sound = RecordOf(block, 0);
    sound.FrameCount = wanted;
    sound.Request = 1;
    PlayRequest request{&sound, StampMilliseconds()};
    block.Frames = std::min(m_setup.Callback(m_setup.Device, &request, m_setup.User), wanted);
    block.Start = m_asked;
    m_peaks.Add(RecordOf(block, 0), block.Start, HeardFrames());
    m_asked += block.Frames;
    m_soundOver = block.Frames < wanted;
    if (block.Frames > 0)
        m_blocks.push_back(std::move(block));
    else
        m_spare.push_back(std::move(block));
}

void Playback::Send()
{
    Block& block = m_blocks[m_unsent++];
    const uint64_t heardBefore = m_soundStart > block.Start ? m_soundStart - block.Start : 0;
    const auto offset = static_cast<uint32_t>(std::min<uint64_t>(heardBefore, block.Frames));
    const uint32_t frames = block.Frames - offset;
    const RateStage::Result card = m_rate->Convert(m_mixer->Mix(RecordOf(block, offset), frames), frames);
    m_queue->Write(card.Frames, card.Count);
}

void Playback::SendEnd()
{
    const RateStage::Result rest = m_rate->Convert(nullptr, 0);
    m_queue->Write(rest.Frames, rest.Count);
    m_queue->SetEnd(m_device->LatencyFrames());
    m_endSent = true;
}

void Playback::TrimBlocks()
{
    const uint64_t heard = HeardFrames();
    while (m_unsent > 0 && m_blocks.front().Start + m_blocks.front().Frames <= heard) {
        m_spare.push_back(std::move(m_blocks.front()));
        m_blocks.pop_front();
        --m_unsent;
    }
}

Playback::Block Playback::TakeSpare()
{
    Block block;
    if (!m_spare.empty()) {
        block = std::move(m_spare.back());
        m_spare.pop_back();
    }
    block.Values.assign(static_cast<size_t>(m_setup.Wish.BlockFrames) * m_setup.Wish.Sound.nChannels, 0.0F);
    return block;
}

_SOUNDDATAEX_ Playback::RecordOf(Block& block, uint32_t offset) const
{
    _SOUNDDATAEX_ sound;
    sound.ChannelCount = m_setup.Wish.Sound.nChannels;
    sound.FrameCount = block.Frames - offset;
    for (uint32_t channel = 0; channel < sound.ChannelCount; ++channel)
        sound.Channels[channel] =
            block.Values.data() + static_cast<size_t>(channel) * m_setup.Wish.BlockFrames + offset;
    return sound;
}

void Playback::Finish()
{
    m_device->Stop();
    const bool hasMore = !m_endSent; // then only a device that nothing can replace has come to this
    std::string trouble;
    const bool isWhole = CompleteDevice(trouble);
    m_ended.store(true, std::memory_order_release);
    m_events.OnEnded();
    if (!isWhole)
        m_events.OnTrouble(trouble + (hasMore ? " Playing has ended." : ""));
    _SOUNDDATAEX_ notice;
    notice.FrameCount = 1;
    PlayRequest request{&notice, static_cast<uint32_t>(m_backend.NowMicroseconds() / 1000)};
    m_setup.Callback(m_setup.Device, &request, m_setup.User);
}

uint32_t Playback::StampMilliseconds() const
{
    const uint64_t frames = uint64_t{m_rate->DelayFrames()} + m_device->LatencyFrames();
    const auto after = static_cast<int64_t>(static_cast<double>(frames) * 1e6 / m_queue->Rate());
    return static_cast<uint32_t>((m_queue->NextTakenMicroseconds() + after) / 1000);
}

uint64_t Playback::HeardFrames() const
{
    if (!m_queue || !m_device)
        return m_soundStart;
    const uint64_t position = m_queue->Heard(m_device->LatencyFrames());
    const uint64_t frames = position > m_queueStart ? position - m_queueStart : 0;
    const double perCardFrame = static_cast<double>(m_setup.Wish.Sound.nSamplesPerSec) / m_queue->Rate();
    const uint64_t heard = m_soundStart + static_cast<uint64_t>(static_cast<double>(frames) * perCardFrame);
    // During a pause the card plays out what it holds; after it, that much is in the card again, but is new.
    uint64_t before = m_heardMost.load(std::memory_order_relaxed);
    while (before < heard && !m_heardMost.compare_exchange_weak(before, heard, std::memory_order_relaxed)) {
    }
    return std::max(before, heard);
}

uint64_t Playback::HeardMilliseconds() const
{
    return HeardFrames() * 1000 / std::max(m_setup.Wish.Sound.nSamplesPerSec, 1U);
}

uint64_t Playback::Dropouts() const
{
    return m_pastDropouts + (m_queue ? m_queue->Dropouts() : 0);
}

} // namespace ek
