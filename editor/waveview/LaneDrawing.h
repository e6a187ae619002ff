// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "storage/PeakCache.h"
#include "waveview/Rect.h"

#include <cstdint>
#include <span>
#include <vector>

namespace ek {

/// Vertical mapping of one lane: sample values to rows.
struct LaneScale {
    int ZeroY = 0;
    int Span = 0; ///< rows from -32768 to 32768; 0 in a lane too low for it

    /// `margin` are the rows between full scale and the lane's border at the amplitude scale 100 (percent).
    static LaneScale Of(const Rect& lane, int margin, int verticalOffset, uint32_t amplitudeScale);
    int YOf(int sample) const; ///< the lane is high enough for a span above 0
    int UpperFullScaleY() const { return ZeroY - Span / 2; }
    int LowerFullScaleY() const { return ZeroY + Span / 2; }
    bool operator==(const LaneScale&) const = default;
};

/// The waveform of a lane as one unbroken run of rows per pixel column. The runs follow a pen that is never lifted:
/// it goes from the column's minimum to its maximum and on to the next column's minimum, so neighbours always touch.
class ColumnRuns {
public:
    /// Runs of the columns [first, end) of `columns`, clipped to the rows [clipTop, clipBottom). The columns beside
    /// the range count for the lines that lead into it.
    void Compute(std::span<const PeakPair> columns, size_t first, size_t end, const LaneScale& scale, int clipTop,
                 int clipBottom);

    size_t Count() const { return m_tops.size(); }
    int Top(size_t index) const { return m_tops[index]; }
    int Bottom(size_t index) const { return m_bottoms[index]; } ///< exclusive; the top when nothing is to be drawn

    /// Colours row y: one pixel per run.
    void PaintRow(int y, uint32_t waveColor, uint32_t background, uint32_t* pixels) const;

private:
    // Two arrays, so that a row is compared with many columns at once.
    std::vector<int32_t> m_tops;
    std::vector<int32_t> m_bottoms;
};

/// Colours as 0xFFRRGGBB.
struct LaneColors {
    uint32_t Wave = 0;
    uint32_t Lines = 0; ///< zero line and full-scale lines
    uint32_t Background = 0;
};

/// One lane as it is to be painted.
struct LanePicture {
    Rect Lane;
    std::span<const PeakPair> Columns; ///< from the lane's left edge on, at most as many as it is wide
    LaneColors Colors;
    int Margin = 0; ///< rows between full scale and the lane's border; a lane of twice that height shows no waveform
    int VerticalOffset = 0;
    uint32_t AmplitudeScale = 100;
    int64_t SelectionLeft = 0; ///< x of the selection, half-open, to be inverted; equal: none
    int64_t SelectionRight = 0;
};

/// The pixels of the part of a lane that holds data, row by row: background, waveform, lines, inverted selection.
class LaneRaster {
public:
    /// `area` is the part to be painted; it lies within the columns that hold data.
    LaneRaster(const LanePicture& picture, const Rect& area);

    /// Fills area.Width() pixels of row y of the area.
    void PaintRow(int y, uint32_t* pixels) const;

private:
    LaneColors m_colors;
    LaneScale m_scale;
    int m_width;
    ColumnRuns m_runs; // of no columns when the lane is too low
    int m_invertLeft;  // within the area
    int m_invertRight;
};

} // namespace ek
