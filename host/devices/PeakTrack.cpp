// SPDX-License-Identifier: GPL-3.0-or-later
#include "devices/PeakTrack.h"

#include <algorithm>
#include <cmath>
#include <utility>

namespace ek {

namespace {

constexpr uint32_t PieceFrames = 512; // shorter than a meter can show

float PeakOf(const float* values, uint32_t count)
{
    float peak = 0;
    for (uint32_t i = 0; i < count; ++i)
        if (const float value = std::fabs(values[i]); value > peak && std::isfinite(value))
            peak = value;
    return peak;
}

} // namespace

void PeakTrack::Clear()
{
    const std::lock_guard lock(m_mutex);
    m_pieces.clear();
    m_heard = {};
}

void PeakTrack::Add(const _SOUNDDATAEX_& sound, uint64_t start, uint64_t heard)
{
    const std::lock_guard lock(m_mutex);
    Hear(heard); // nobody may be looking
    for (uint32_t offset = 0; offset < sound.FrameCount; offset += PieceFrames) {
        Piece& piece = m_pieces.emplace_back();
        piece.Start = start + offset;
        for (uint32_t channel = 0; channel < sound.ChannelCount; ++channel)
            piece.Values[channel] =
                PeakOf(sound.Channels[channel] + offset, std::min(PieceFrames, sound.FrameCount - offset));
    }
}

PeakTrack::Peaks PeakTrack::Take(uint64_t heard)
{
    const std::lock_guard lock(m_mutex);
    Hear(heard);
    return std::exchange(m_heard, {});
}

void PeakTrack::Hear(uint64_t heard)
{
    for (; !m_pieces.empty() && m_pieces.front().Start < heard; m_pieces.pop_front())
        for (size_t channel = 0; channel < m_heard.size(); ++channel)
            m_heard[channel] = std::max(m_heard[channel], m_pieces.front().Values[channel]);
}

} // namespace ek
