// SPDX-License-Identifier: GPL-3.0-or-later
#include "ekdatapr/ConvertingDecoder.h"

#include "ekdatapr/Dither.h"

#include <algorithm>
#include <numeric>

namespace ek {

namespace {

constexpr size_t BlockFrames = 4096;
// More than the reach of the converter's filters, in frames of the lower rate.
constexpr uint64_t FilterReach = 2048;
constexpr uint64_t NoPosition = ~uint64_t{0};

} // namespace

std::unique_ptr<ConvertingDecoder> ConvertingDecoder::Create(std::unique_ptr<SoundSource> source, uint32_t rate,
                                                             const ChannelMatrix& matrix)
{
    const uint32_t fileRate = source->Rate();
    std::unique_ptr<ConvertingDecoder> decoder(new ConvertingDecoder(std::move(source), rate, matrix));
    if (fileRate != rate) {
        decoder->m_converter = RateConverter::Create(fileRate, rate, matrix.Outputs);
        if (!decoder->m_converter)
            return nullptr;
    }
    return decoder;
}

ConvertingDecoder::ConvertingDecoder(std::unique_ptr<SoundSource> source, uint32_t rate, const ChannelMatrix& matrix)
    : Decoder(std::move(source)), m_rate(rate), m_matrix(matrix), m_read(BlockFrames * matrix.Inputs),
      m_mixed(BlockFrames * matrix.Outputs), m_block(BlockFrames * matrix.Outputs)
{
}

uint32_t ConvertingDecoder::BlockAlign() const
{
    return m_matrix.Outputs * static_cast<uint32_t>(sizeof(int16_t));
}

uint64_t ConvertingDecoder::Read(uint64_t firstFrame, uint64_t frames, void* buffer)
{
    if (firstFrame != m_blockStart + m_blockUsed && !JumpTo(firstFrame))
        return 0;
    const uint32_t channels = m_matrix.Outputs;
    auto* out = static_cast<int16_t*>(buffer);
    uint64_t total = 0;
    while (total < frames && (m_blockUsed < m_blockFrames || NextBlock())) {
        const size_t count = std::min<uint64_t>(frames - total, m_blockFrames - m_blockUsed);
        const uint64_t index = (m_blockStart + m_blockUsed) * channels;
        DitherTo16(&m_block[m_blockUsed * channels], count * channels, index, out + total * channels);
        m_blockUsed += count;
        total += count;
    }
    return total;
}

// The converter starts at a frame that is also one of the file's, early enough for its filters to have settled.
bool ConvertingDecoder::JumpTo(uint64_t frame)
{
    const uint32_t fileRate = m_source->Rate();
    const uint32_t divisor = std::gcd(fileRate, m_rate);
    const uint64_t step = m_rate / divisor;
    const uint64_t reach = m_converter ? ConvertedFrames(FilterReach, std::min(fileRate, m_rate), m_rate) : 0;
    const uint64_t start = frame > reach ? (frame - reach) / step : 0;
    m_blockStart = NoPosition; // after a failure no frame is the next one
    m_blockUsed = m_blockFrames = 0;
    if (!m_source->Seek(start * (fileRate / divisor)))
        return false;
    if (m_converter)
        m_converter->Restart();
    m_mixedUsed = m_mixedFrames = 0;
    m_sourceEnded = false;
    m_blockStart = start * step;
    while (m_blockStart + m_blockFrames <= frame) {
        if (!NextBlock())
            return m_blockStart == frame;
    }
    m_blockUsed = frame - m_blockStart;
    return true;
}

bool ConvertingDecoder::NextBlock()
{
    m_blockStart += m_blockFrames;
    m_blockUsed = m_blockFrames = 0;
    if (!m_converter) {
        m_blockFrames = ReadMixed();
        std::swap(m_block, m_mixed);
        return m_blockFrames > 0;
    }
    ConvertBlock();
    DropBeyondEnd();
    return m_blockFrames > 0;
}

size_t ConvertingDecoder::ReadMixed()
{
    const size_t frames = m_source->ReadDoubles(m_read.data(), BlockFrames);
    m_matrix.Apply(m_read.data(), m_mixed.data(), frames);
    return frames;
}

void ConvertingDecoder::ConvertBlock()
{
    const uint32_t channels = m_matrix.Outputs;
    while (m_blockFrames < BlockFrames) {
        if (m_mixedUsed == m_mixedFrames && !m_sourceEnded) {
            m_mixedFrames = ReadMixed();
            m_mixedUsed = 0;
            m_sourceEnded = m_mixedFrames == 0;
        }
        const double* in = m_sourceEnded ? nullptr : &m_mixed[m_mixedUsed * channels];
        const auto [used, made] = m_converter->Convert(in, m_mixedFrames - m_mixedUsed,
                                                       &m_block[m_blockFrames * channels], BlockFrames - m_blockFrames);
        m_mixedUsed += used;
        m_blockFrames += made;
        if (made == 0 && (used == 0 || m_sourceEnded))
            return;
    }
}

// The converter rounds the length up; it is to be that of the file, rounded to nearest.
void ConvertingDecoder::DropBeyondEnd()
{
    if (!m_sourceEnded)
        return;
    const uint64_t end = ConvertedFrames(m_source->Position(), m_source->Rate(), m_rate);
    m_blockFrames = std::min<uint64_t>(m_blockFrames, end - std::min(end, m_blockStart));
}

} // namespace ek
