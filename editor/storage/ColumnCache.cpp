// SPDX-License-Identifier: GPL-3.0-or-later
#include "storage/ColumnCache.h"

#include "storage/WaveData.h"

#include <algorithm>
#include <cstring>

namespace ek {

namespace {

constexpr uint32_t BlockFrames = PeakCache::BlockFrames;

/// Samples are read in portions that stay in the processor's cache.
constexpr uint64_t PortionBytes = 65536;

uint64_t DivideUp(uint64_t value, uint64_t divisor)
{
    return (value + divisor - 1) / divisor;
}

/// What cannot be read is silence.
bool ReadFrames(CWaveData& store, int16_t* samples, uint64_t frame, uint64_t frames)
{
    const uint64_t blockAlign = store.BlockAlign();
    if (store.ReadData(samples, frame * blockAlign, frames * blockAlign))
        return true;
    std::memset(samples, 0, frames * blockAlign);
    return false;
}

} // namespace

struct ColumnCache::Range {
    uint64_t StartFrame; ///< a multiple of FramesPerColumn
    uint64_t EndFrame;   ///< of the last column, or of the sound
    uint32_t FramesPerColumn;
    uint32_t Width; ///< columns asked for

    uint64_t FirstColumn() const { return StartFrame / FramesPerColumn; }
    uint64_t Count() const { return EndFrame > StartFrame ? DivideUp(EndFrame - StartFrame, FramesPerColumn) : 0; }
};

void ColumnCache::SetChannelCount(uint32_t channels)
{
    Free();
    m_channels = std::min(channels, MaxChannels);
}

void ColumnCache::Free()
{
    m_buffers = {};
    m_columns = 0;
    m_firstColumn = 0;
    m_framesPerColumn = 0;
}

std::span<const PeakPair> ColumnCache::Columns(uint32_t channel) const
{
    return std::span(m_buffers[channel]).first(m_columns);
}

/// True when the buffers had to grow; what they held is gone then.
bool ColumnCache::MakeCapacity(uint64_t columns)
{
    if (columns <= m_buffers[0].size())
        return false;
    for (uint32_t channel = 0; channel < m_channels; ++channel)
        m_buffers[channel].assign(columns, PeakPair());
    return true;
}

void ColumnCache::Refresh(CWaveData& store, uint64_t firstFrame, uint32_t framesPerColumn, uint32_t width)
{
    const bool coarse = framesPerColumn >= BlockFrames;
    if (coarse && store.IsComputingPeaks())
        return;
    if (m_channels == 0 || m_channels != store.WorkingFormat().nChannels) {
        m_columns = 0;
        return;
    }
    Range range;
    range.StartFrame = (firstFrame + framesPerColumn / 2) / framesPerColumn * framesPerColumn;
    range.EndFrame = std::min(store.FrameCount(), range.StartFrame + uint64_t{framesPerColumn} * width);
    range.FramesPerColumn = framesPerColumn;
    range.Width = width;

    if (MakeCapacity(width) || coarse)
        Invalidate();
    if (m_framesPerColumn == framesPerColumn && m_firstColumn == range.FirstColumn() && width <= m_columns)
        m_columns = width;
    else if (coarse)
        BuildFromPeaks(store.Peaks(), store.FrameCount(), range);
    else
        BuildFromSamples(store, range);
}

void ColumnCache::BuildFromPeaks(const PeakCache& peaks, uint64_t frames, const Range& range)
{
    const uint64_t group = range.FramesPerColumn / BlockFrames;
    const uint64_t first = range.StartFrame / BlockFrames;
    // A window may be drawn anew between an edit and the rebuilding of its peaks: then the sound is the longer one.
    const uint64_t present = std::min<uint64_t>(frames / BlockFrames, peaks.Entries(0).size());
    const uint64_t end = std::min(present, first + group * range.Width);
    const uint64_t columns = end > first ? DivideUp(end - first, group) : 0;
    for (uint32_t channel = 0; channel < m_channels; ++channel) {
        for (uint64_t column = 0; column < columns; ++column) {
            const uint64_t entry = first + column * group;
            m_buffers[channel][column] = peaks.Extremes(channel, entry, std::min(entry + group, end));
        }
    }
    m_columns = static_cast<uint32_t>(columns);
    m_firstColumn = range.FirstColumn();
}

/// Moves the columns that stay visible to their new places. Returns how many there are, from `firstKept` on.
uint64_t ColumnCache::KeepColumns(const Range& range, uint64_t& firstKept)
{
    firstKept = 0;
    if (m_framesPerColumn != range.FramesPerColumn)
        return 0;
    const uint64_t oldEnd = m_firstColumn + m_columns;
    const uint64_t newEnd = range.FirstColumn() + range.Count();
    const uint64_t from = std::max(m_firstColumn, range.FirstColumn());
    const uint64_t to = std::min(oldEnd, newEnd);
    if (from >= to)
        return 0;
    firstKept = from - range.FirstColumn();
    for (uint32_t channel = 0; channel < m_channels; ++channel) {
        PeakPair* columns = m_buffers[channel].data();
        std::memmove(columns + firstKept, columns + (from - m_firstColumn), (to - from) * sizeof(PeakPair));
    }
    return to - from;
}

void ColumnCache::BuildFromSamples(CWaveData& store, const Range& range)
{
    uint64_t firstKept = 0;
    const uint64_t kept = KeepColumns(range, firstKept);
    m_firstColumn = range.FirstColumn();
    m_framesPerColumn = range.FramesPerColumn;
    m_columns = static_cast<uint32_t>(range.Count());
    ReadColumns(store, range, 0, firstKept);
    ReadColumns(store, range, firstKept + kept, range.Count());
}

void ColumnCache::ReadColumns(CWaveData& store, const Range& range, uint64_t firstColumn, uint64_t endColumn)
{
    const uint64_t framesPerColumn = range.FramesPerColumn;
    const uint64_t portion = PortionBytes / store.BlockAlign() / framesPerColumn * framesPerColumn;
    std::vector<int16_t> samples(PortionBytes / sizeof(int16_t));
    const uint64_t end = std::min(range.EndFrame, range.StartFrame + endColumn * framesPerColumn);
    for (uint64_t frame = range.StartFrame + firstColumn * framesPerColumn; frame < end; frame += portion) {
        const uint64_t frames = std::min(portion, end - frame);
        if (!ReadFrames(store, samples.data(), frame, frames))
            Invalidate();
        EnterColumns(samples.data(), frames, framesPerColumn, (frame - range.StartFrame) / framesPerColumn);
    }
}

void ColumnCache::EnterColumns(const int16_t* samples, uint64_t frames, uint64_t framesPerColumn, uint64_t column)
{
    std::array<PeakPair, MaxChannels> extremes;
    for (uint64_t frame = 0; frame < frames; frame += framesPerColumn, ++column) {
        InterleavedExtremes(samples + frame * m_channels, std::min(framesPerColumn, frames - frame), m_channels,
                            extremes.data());
        for (uint32_t channel = 0; channel < m_channels; ++channel)
            m_buffers[channel][column] = extremes[channel];
    }
}

void ColumnCache::QueryPeaks(CWaveData& store, uint64_t firstFrame, uint32_t framesPerPoint, uint64_t points,
                             uint64_t dataOffset)
{
    if (framesPerPoint >= BlockFrames && store.IsComputingPeaks())
        return;
    Invalidate();
    m_columns = 0;
    if (m_channels == 0 || m_channels != store.WorkingFormat().nChannels || store.FrameCount() == 0)
        return;
    MakeCapacity(points);
    m_firstColumn = firstFrame / framesPerPoint;
    m_columns = static_cast<uint32_t>(points);
    const uint64_t dataFrame = dataOffset / framesPerPoint * framesPerPoint;
    if (framesPerPoint < BlockFrames)
        QuerySamples(store, dataFrame, framesPerPoint, points);
    else
        QueryEntries(store.Peaks(), store.FrameCount(), dataFrame, framesPerPoint, points);
}

void ColumnCache::QueryEntries(const PeakCache& peaks, uint64_t frames, uint64_t firstFrame, uint32_t framesPerPoint,
                               uint64_t points)
{
    // A sound shorter than one block still has the one entry of its frames.
    const uint64_t entries = std::min<uint64_t>(std::max<uint64_t>(frames / BlockFrames, 1), peaks.Entries(0).size());
    if (entries == 0) {
        m_columns = 0;
        return;
    }
    const uint64_t group = framesPerPoint / BlockFrames;
    for (uint64_t point = 0; point < points; ++point) {
        for (uint32_t channel = 0; channel < m_channels; ++channel) {
            PeakPair extremes = NoPeak;
            uint64_t entry = (firstFrame / BlockFrames + point * group) % entries;
            for (uint64_t left = std::min(group, entries); left != 0;) {
                const uint64_t part = std::min(left, entries - entry);
                Widen(extremes, peaks.Extremes(channel, entry, entry + part));
                left -= part;
                entry = 0;
            }
            m_buffers[channel][point] = extremes;
        }
    }
}

void ColumnCache::QuerySamples(CWaveData& store, uint64_t firstFrame, uint32_t framesPerPoint, uint64_t points)
{
    std::array<int16_t, size_t{BlockFrames} * MaxChannels> samples;
    uint64_t frame = firstFrame % store.FrameCount();
    for (uint64_t point = 0; point < points; ++point) {
        for (uint64_t filled = 0; filled < framesPerPoint;) {
            const uint64_t part = std::min(framesPerPoint - filled, store.FrameCount() - frame);
            ReadFrames(store, samples.data() + filled * m_channels, frame, part);
            filled += part;
            frame = (frame + part) % store.FrameCount();
        }
        EnterColumns(samples.data(), framesPerPoint, framesPerPoint, point);
    }
}

} // namespace ek
