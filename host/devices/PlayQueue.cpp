// SPDX-License-Identifier: GPL-3.0-or-later
#include "devices/PlayQueue.h"

#include <algorithm>
#include <cmath>

namespace ek {

namespace {

// A device that asks for more than this at once gets it in pieces with silence between them.
constexpr uint32_t MostPerTake = 1U << 15;

int64_t Microseconds(uint64_t frames, uint32_t rate)
{
    return static_cast<int64_t>(static_cast<double>(frames) * 1e6 / rate);
}

} // namespace

PlayQueue::PlayQueue(uint32_t rate, uint32_t channels, uint32_t blockFrames, uint32_t target, int64_t nowMicroseconds)
    : m_ring(channels, std::max(target, blockFrames) + blockFrames + 2 * MostPerTake), m_rate(rate),
      m_blockFrames(blockFrames), m_target(std::max(target, blockFrames)), m_zeroTime(nowMicroseconds)
{
}

uint32_t PlayQueue::ReadSound(float* frames, uint32_t count)
{
    m_ring.SkipTo(m_dropBefore.load(std::memory_order_acquire));
    if (IsPaused() || !m_primed.load(std::memory_order_acquire) || m_ring.Filled() == 0)
        return 0;
    // Before the frames count as taken, so that nobody takes the silence before them for one that followed.
    m_silence.store(0, std::memory_order_release);
    return m_ring.Read(frames, count);
}

void PlayQueue::Fill(float* frames, uint32_t count, int64_t nowMicroseconds)
{
    const bool isDue = m_primed.load(std::memory_order_acquire) && !m_ended.load(std::memory_order_acquire);
    const uint32_t taken = ReadSound(frames, count);
    std::fill_n(frames + static_cast<size_t>(taken) * Channels(), static_cast<size_t>(count - taken) * Channels(),
                0.0F);
    if (taken < count && isDue && !IsPaused())
        m_dropouts.fetch_add(1, std::memory_order_relaxed);
    if (count > m_largestTake.load(std::memory_order_relaxed))
        m_largestTake.store(std::min(count, MostPerTake), std::memory_order_relaxed);
    MeasurePeaks(frames, taken);
    PublishTimes(count - taken, nowMicroseconds);
}

uint32_t PlayQueue::Take(float* frames, uint32_t count, int64_t nowMicroseconds)
{
    const uint32_t taken = ReadSound(frames, count);
    MeasurePeaks(frames, taken);
    PublishTimes(0, nowMicroseconds);
    return taken;
}

void PlayQueue::MeasurePeaks(const float* frames, uint32_t count)
{
    const uint32_t channels = Channels();
    for (uint32_t channel = 0; channel < channels && count > 0; ++channel) {
        float peak = 0;
        for (size_t i = channel; i < static_cast<size_t>(count) * channels; i += channels)
            peak = std::max(peak, std::fabs(frames[i]));
        // A reader that takes the value between the two steps makes this peak show once more, which nobody sees.
        if (peak > m_peaks[channel].load(std::memory_order_relaxed))
            m_peaks[channel].store(peak, std::memory_order_relaxed);
    }
}

void PlayQueue::PublishTimes(uint32_t silent, int64_t nowMicroseconds)
{
    m_silence.fetch_add(silent, std::memory_order_release);
    m_zeroTime.store(nowMicroseconds - Microseconds(m_ring.WasRead(), m_rate), std::memory_order_release);
    if (HasRoomForBlock() || m_ended.load(std::memory_order_acquire))
        m_pump.Signal();
}

bool PlayQueue::IsDrained() const
{
    return m_ended.load(std::memory_order_acquire) && m_ring.Filled() == 0;
}

uint32_t PlayQueue::TargetFrames() const
{
    return std::max(m_target, m_largestTake.load(std::memory_order_relaxed) + m_blockFrames);
}

bool PlayQueue::HasRoomForBlock() const
{
    return m_ring.Filled() + m_blockFrames <= TargetFrames();
}

void PlayQueue::Write(const float* frames, uint32_t count)
{
    m_ring.Write(frames, count);
}

bool PlayQueue::SetPrimed()
{
    return !m_primed.exchange(true, std::memory_order_acq_rel);
}

void PlayQueue::SetEnd(uint32_t tailFrames)
{
    m_tailWanted = tailFrames;
    SetPrimed();
    m_ended.store(true, std::memory_order_release);
}

uint64_t PlayQueue::Restart()
{
    m_primed.store(false, std::memory_order_release);
    m_ended.store(false, std::memory_order_release);
    m_dropBefore.store(m_ring.Written(), std::memory_order_release);
    return m_ring.Written();
}

bool PlayQueue::IsHeard() const
{
    return IsDrained() && m_silence.load(std::memory_order_acquire) >= m_tailWanted;
}

int64_t PlayQueue::NextTakenMicroseconds() const
{
    return m_zeroTime.load(std::memory_order_acquire) + Microseconds(m_ring.Written(), m_rate);
}

uint64_t PlayQueue::Heard(uint32_t latencyFrames) const
{
    const uint64_t taken = Taken(); // first: see ReadSound
    const uint64_t silence = m_silence.load(std::memory_order_acquire);
    const uint64_t inCard = latencyFrames > silence ? latencyFrames - silence : 0;
    return taken > inCard ? taken - inCard : 0;
}

std::array<float, PlayQueue::MostChannels> PlayQueue::TakePeaks()
{
    std::array<float, MostChannels> peaks{};
    for (size_t channel = 0; channel < MostChannels; ++channel)
        peaks[channel] = m_peaks[channel].exchange(0, std::memory_order_relaxed);
    return peaks;
}

} // namespace ek
