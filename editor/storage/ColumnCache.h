// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "storage/PeakCache.h"

#include <array>
#include <cstdint>
#include <span>
#include <vector>

namespace ek {

class CWaveData;

/// The smallest and the largest sample value of every visible pixel column of every channel: all that painting
/// reads. At fine zooms columns that stay visible are kept when the view scrolls. A window may be resized while a long
/// operation runs: from 256 frames a column on the columns stay as they are while the store computes its peaks.
class ColumnCache {
public:
    void SetChannelCount(uint32_t channels); ///< 0 .. 8, more count as 8; drops the columns
    uint32_t ChannelCount() const { return m_channels; }
    uint32_t ColumnCount() const { return m_columns; }
    uint32_t FramesPerColumn() const { return m_framesPerColumn; } ///< 0: rebuilt whole at the next refresh
    uint64_t FirstColumn() const { return m_firstColumn; }         ///< in units of FramesPerColumn
    std::span<const PeakPair> Columns(uint32_t channel) const;     ///< ColumnCount() pairs, left to right

    void Invalidate() { m_framesPerColumn = 0; }
    void Free();

    /// Brings the cache to `width` columns of `framesPerColumn` frames (a power of two) from `firstFrame`, rounded to
    /// the nearest column, on. Fewer columns where the sound ends. Reads samples below 256 frames a column, else peaks.
    void Refresh(CWaveData& store, uint64_t firstFrame, uint32_t framesPerColumn, uint32_t width);

    /// Fills the cache with `points` points of `framesPerPoint` frames for a clip: timeline frame t shows data frame
    /// (t - first + dataOffset) modulo the store's length, with first and dataOffset rounded down to whole points.
    void QueryPeaks(CWaveData& store, uint64_t firstFrame, uint32_t framesPerPoint, uint64_t points,
                    uint64_t dataOffset);

private:
    struct Range; // the columns that a refresh is to show
    bool MakeCapacity(uint64_t columns);
    void BuildFromPeaks(const PeakCache& peaks, uint64_t frames, const Range& range);
    void BuildFromSamples(CWaveData& store, const Range& range);
    uint64_t KeepColumns(const Range& range, uint64_t& firstKept);
    void ReadColumns(CWaveData& store, const Range& range, uint64_t firstColumn, uint64_t endColumn);
    void EnterColumns(const int16_t* samples, uint64_t frames, uint64_t framesPerColumn, uint64_t column);
    void QueryEntries(const PeakCache& peaks, uint64_t frames, uint64_t firstFrame, uint32_t framesPerPoint,
                      uint64_t points);
    void QuerySamples(CWaveData& store, uint64_t firstFrame, uint32_t framesPerPoint, uint64_t points);

    uint32_t m_channels = 0;
    uint32_t m_columns = 0;
    uint64_t m_firstColumn = 0;
    uint32_t m_framesPerColumn = 0;
    std::array<std::vector<PeakPair>, MaxChannels> m_buffers;
};

} // namespace ek
