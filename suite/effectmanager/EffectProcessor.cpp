// SPDX-License-Identifier: GPL-3.0-or-later
#include "effectmanager/EffectProcessor.h"

#include <algorithm>

namespace ek {

tEffError FrameProcessor::Open(const WAVEFORMATEXTENSIBLE& format)
{
    if (const tEffError error = OpenFrames(format))
        return error;
    m_channels = format.nChannels;
    m_ahead.assign(size_t{Latency()} * m_channels, 0.0F);
    Restart();
    return EffectSuccess;
}

void FrameProcessor::Restart()
{
    m_isFirst = true;
    m_isSourceEnded = false;
    m_held = 0;
    RestartFrames();
}

uint32_t FrameProcessor::Produce(CAudioAbstract& source, _SOUNDDATAEX_& sound)
{
    if (sound.FrameCount == 0)
        return 0;
    if (m_isFirst)
        PullAhead(source);
    Pull(source, sound);
    const auto given = static_cast<uint32_t>(std::min<uint64_t>(sound.FrameCount, m_held));
    Process(sound.Channels, given);
    m_held -= given;
    if (given < sound.FrameCount)
        Restart();
    return given;
}

/// A whole record: of the source's frames, and of silence behind their end.
void FrameProcessor::Pull(CAudioAbstract& source, _SOUNDDATAEX_& sound)
{
    const uint32_t pulled = m_isSourceEnded ? 0 : std::min(source.GetData(&sound), sound.FrameCount);
    m_isSourceEnded = pulled < sound.FrameCount;
    m_held += pulled;
    for (uint32_t i = 0; i < m_channels; ++i)
        std::fill(sound.Channels[i] + pulled, sound.Channels[i] + sound.FrameCount, 0.0F);
}

void FrameProcessor::PullAhead(CAudioAbstract& source)
{
    m_isFirst = false;
    _SOUNDDATAEX_ ahead{.ChannelCount = m_channels, .FrameCount = Latency()};
    if (ahead.FrameCount == 0)
        return;
    for (uint32_t i = 0; i < m_channels; ++i)
        ahead.Channels[i] = m_ahead.data() + size_t{ahead.FrameCount} * i;
    Pull(source, ahead);
    Process(ahead.Channels, ahead.FrameCount);
}

} // namespace ek
