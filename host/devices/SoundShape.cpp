// SPDX-License-Identifier: GPL-3.0-or-later
#include "devices/SoundShape.h"

#include "servicefuncs/Channels.h"

#include <algorithm>

namespace ek {

namespace {

constexpr uint32_t MostBlockFrames = 1U << 18;
constexpr uint32_t MostBlocks = 64;
constexpr uint32_t MostRate = 1U << 22;

bool IsFloat(const WAVEFORMATEXTENSIBLE& format)
{
    return format.wFormatTag == WAVE_FORMAT_IEEE_FLOAT ||
           (format.wFormatTag == WAVE_FORMAT_EXTENSIBLE && format.SubFormat == KSDATAFORMAT_SUBTYPE_IEEE_FLOAT);
}

bool IsPcm(const WAVEFORMATEXTENSIBLE& format)
{
    return format.wFormatTag == WAVE_FORMAT_PCM ||
           (format.wFormatTag == WAVE_FORMAT_EXTENSIBLE && format.SubFormat == KSDATAFORMAT_SUBTYPE_PCM);
}

} // namespace

SoundShape::SoundShape() : m_format(MakePcm16Format(44100, 2)) {}

std::string SoundShape::Fault() const
{
    const uint32_t bits = m_format.wBitsPerSample;
    const bool isKnown =
        IsFloat(m_format) ? bits == 32 : IsPcm(m_format) && (bits == 8 || bits == 16 || bits == 24 || bits == 32);
    const bool isWhole = m_format.nChannels >= 1 && m_format.nChannels <= MaxChannels &&
                         m_format.nBlockAlign == m_format.nChannels * (bits / 8);
    const bool hasRate = m_format.nSamplesPerSec > 0 && m_format.nSamplesPerSec <= MostRate;
    return isKnown && isWhole && hasRate ? std::string() : "The sound device can't handle this sound format.";
}

uint32_t SoundShape::BlockFrames() const
{
    return std::clamp(BufferBytes / m_format.nBlockAlign, 1U, MostBlockFrames);
}

uint32_t SoundShape::BlockCount() const
{
    return std::clamp(BufferCount, 1U, MostBlocks);
}

} // namespace ek
