// SPDX-License-Identifier: GPL-3.0-or-later
#include "ekdatapr/Decoder.h"

#include <algorithm>

namespace ek {

namespace {

constexpr uint64_t BlockFrames = 4096;

uint8_t ToUnsignedByte(int16_t sample)
{
    return static_cast<uint8_t>((sample >> 8) + 128);
}

} // namespace

uint32_t ShortDecoder::BlockAlign() const
{
    return m_source->Channels() * static_cast<uint32_t>(sizeof(int16_t));
}

uint64_t ShortDecoder::Read(uint64_t firstFrame, uint64_t frames, void* buffer)
{
    return m_source->Seek(firstFrame) ? m_source->ReadShorts(static_cast<int16_t*>(buffer), frames) : 0;
}

uint32_t ByteDecoder::BlockAlign() const
{
    return m_source->Channels();
}

uint64_t ByteDecoder::Read(uint64_t firstFrame, uint64_t frames, void* buffer)
{
    if (!m_source->Seek(firstFrame))
        return 0;
    auto* out = static_cast<uint8_t*>(buffer);
    m_block.resize(BlockFrames * m_source->Channels());
    uint64_t total = 0;
    while (total < frames) {
        const uint64_t done = m_source->ReadShorts(m_block.data(), std::min(frames - total, BlockFrames));
        if (done == 0)
            break;
        const auto samples = static_cast<ptrdiff_t>(done * m_source->Channels());
        out = std::transform(m_block.begin(), m_block.begin() + samples, out, ToUnsignedByte);
        total += done;
    }
    return total;
}

} // namespace ek
