// SPDX-License-Identifier: GPL-3.0-or-later
#include "ekdatapr/SoundSource.h"

#include "ekdatapr/Dither.h"
#include "servicefuncs/Channels.h"

#include <algorithm>

namespace ek {

namespace {

constexpr int MaxRate = 768000;
constexpr uint64_t BlockFrames = 4096;

bool IsWithinLimits(const SF_INFO& info)
{
    return info.channels >= 1 && info.channels <= static_cast<int>(MaxChannels) && info.samplerate >= 1 &&
           info.samplerate <= MaxRate;
}

uint64_t Count(sf_count_t done)
{
    return done > 0 ? static_cast<uint64_t>(done) : 0;
}

} // namespace

std::unique_ptr<SoundSource> SoundSource::Open(const std::filesystem::path& path)
{
    auto source = std::make_unique<SoundSource>();
    if (!source->m_file.OpenForReading(path) || !IsWithinLimits(source->m_file.Info()))
        return nullptr;
    source->m_shape = ShapeOf(source->m_file.Info().format);
    source->m_order = ReadChannelOrder(source->m_file.Handle(), source->m_file.Info());
    if (const auto frames = FramesInBlocks(source->m_file.Stream(), source->m_file.Info().format))
        source->m_end = *frames;
    return source;
}

uint64_t SoundSource::Frames() const
{
    const sf_count_t frames = m_file.Info().frames;
    return frames == SF_COUNT_MAX ? 0 : std::min(Count(frames), m_end);
}

bool SoundSource::Seek(uint64_t frame)
{
    if (frame == m_position)
        return true;
    if (Frames() != 0 && frame > Frames())
        return false;
    const auto target = static_cast<sf_count_t>(std::min<uint64_t>(frame, SF_COUNT_MAX));
    if (sf_seek(m_file.Handle(), target, SEEK_SET) == target) {
        m_position = frame;
        return true;
    }
    // Some codings can only be started over.
    if (sf_seek(m_file.Handle(), 0, SEEK_SET) != 0)
        return false;
    m_position = 0;
    return Skip(frame);
}

bool SoundSource::Skip(uint64_t frames)
{
    m_block.resize(BlockFrames * Channels());
    while (frames > 0) {
        const uint64_t done = ReadDoubles(m_block.data(), std::min(frames, BlockFrames));
        if (done == 0)
            return false;
        frames -= done;
    }
    return true;
}

uint64_t SoundSource::ReadShorts(int16_t* out, uint64_t frames)
{
    frames = std::min(frames, m_end - m_position);
    if (m_shape.FitsShort) {
        const uint64_t done = Count(sf_readf_short(m_file.Handle(), out, static_cast<sf_count_t>(frames)));
        Reorder(out, done, m_order.From, OrderDirection::FileToFrame);
        m_position += done;
        return done;
    }
    m_block.resize(BlockFrames * Channels());
    uint64_t total = 0;
    while (total < frames) {
        const uint64_t index = m_position * Channels();
        const uint64_t done = ReadDoubles(m_block.data(), std::min(frames - total, BlockFrames));
        if (done == 0)
            break;
        DitherTo16(m_block.data(), done * Channels(), index, out + total * Channels());
        total += done;
    }
    return total;
}

uint64_t SoundSource::ReadDoubles(double* out, uint64_t frames)
{
    frames = std::min(frames, m_end - m_position);
    const uint64_t done = Count(sf_readf_double(m_file.Handle(), out, static_cast<sf_count_t>(frames)));
    Reorder(out, done, m_order.From, OrderDirection::FileToFrame);
    ClampToFullScale(out, done * Channels());
    m_position += done;
    return done;
}

} // namespace ek
