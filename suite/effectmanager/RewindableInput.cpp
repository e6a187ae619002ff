// SPDX-License-Identifier: GPL-3.0-or-later
#include "effectmanager/RewindableInput.h"

#include <algorithm>
#include <utility>

namespace ek {

void RewindableInput::Open(uint32_t channels)
{
    m_channels = channels;
    m_capacity = 0;
    m_frames.clear();
    Restart();
}

void RewindableInput::Restart()
{
    m_end = 0;
    m_again = 0;
}

uint32_t RewindableInput::Remembered() const
{
    return static_cast<uint32_t>(std::min<uint64_t>(m_capacity, m_end));
}

void RewindableInput::Remember(uint32_t frames)
{
    const uint32_t capacity = std::max(frames, m_again);
    if (capacity == m_capacity)
        return;
    RewindableInput grown;
    grown.m_channels = m_channels;
    grown.m_capacity = capacity;
    grown.m_frames.resize(size_t{capacity} * m_channels);
    const uint32_t kept = std::min(Remembered(), capacity);
    for (uint32_t channel = 0; channel < m_channels; ++channel) {
        for (uint64_t frame = m_end - kept; frame < m_end; ++frame)
            grown.At(channel, frame) = At(channel, frame);
    }
    m_frames = std::move(grown.m_frames);
    m_capacity = capacity;
}

void RewindableInput::Rewind(uint32_t frames)
{
    m_again = std::min(m_again + frames, Remembered());
}

uint32_t RewindableInput::GetData(_SOUNDDATAEX_* sound)
{
    const uint32_t again = GiveAgain(*sound);
    if (again == sound->FrameCount || !Prev())
        return again;
    _SOUNDDATAEX_ rest = *sound;
    rest.FrameCount -= again;
    for (uint32_t channel = 0; channel < m_channels; ++channel)
        rest.Channels[channel] += again;
    const uint32_t fresh = std::min(Prev()->GetData(&rest), rest.FrameCount);
    Keep(rest, fresh);
    return again + fresh;
}

uint32_t RewindableInput::GiveAgain(_SOUNDDATAEX_& sound)
{
    const uint32_t count = std::min(m_again, sound.FrameCount);
    for (uint32_t channel = 0; channel < m_channels; ++channel) {
        for (uint32_t i = 0; i < count; ++i)
            sound.Channels[channel][i] = At(channel, m_end - m_again + i);
    }
    m_again -= count;
    return count;
}

void RewindableInput::Keep(const _SOUNDDATAEX_& sound, uint32_t frames)
{
    const uint32_t kept = std::min(frames, m_capacity);
    for (uint32_t channel = 0; channel < m_channels; ++channel) {
        for (uint32_t i = frames - kept; i < frames; ++i)
            At(channel, m_end + i) = sound.Channels[channel][i];
    }
    m_end += frames;
}

} // namespace ek
