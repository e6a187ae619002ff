// SPDX-License-Identifier: GPL-3.0-or-later
#include "waveview/LaneDrawing.h"

namespace ek {

namespace {

constexpr int ValueRange = 65536;

// Rows that a column covers, both ends inside.
struct Rows {
    int Top;
    int Bottom;
    void Include(int y)
    {
        Top = std::min(Top, y);
        Bottom = std::max(Bottom, y);
    }
};

// The line from row `from` of one column to row `to` of the next: the half of its rows that lies in the first
// column, and the half in the second one. These are the last row of the former and the first row of the latter.
struct Crossing {
    int LastOfFirst;
    int FirstOfSecond;
};

Crossing CrossingOf(int from, int to)
{
    const int rows = to - from;
    const int direction = rows < 0 ? -1 : 1;
    const int length = rows * direction;
    const int second = (length + 1) / 2; // the first row at or past the middle
    return {from + direction * std::max(0, second - 1), from + direction * second};
}

constexpr uint32_t InvertColor = 0x00FFFFFF;

int ClampedOffset(int64_t x, const Rect& area)
{
    return static_cast<int>(std::clamp<int64_t>(x - area.Left, 0, area.Width()));
}

} // namespace

LaneScale LaneScale::Of(const Rect& lane, int margin, int verticalOffset, uint32_t amplitudeScale)
{
    const int height = std::max(0, lane.Height() - 2 * margin);
    return {(lane.Top + lane.Bottom) / 2 + verticalOffset, height * 100 / static_cast<int>(amplitudeScale)};
}

int LaneScale::YOf(int sample) const
{
    const int divisor = ValueRange / Span;
    if (divisor == 0)
        return ZeroY - static_cast<int>(int64_t{sample} * Span / ValueRange);
    return ZeroY - sample / divisor;
}

void ColumnRuns::Compute(std::span<const PeakPair> columns, size_t first, size_t end, const LaneScale& scale,
                         int clipTop, int clipBottom)
{
    m_tops.resize(end - first);
    m_bottoms.resize(end - first);
    for (size_t i = first; i < end; ++i) {
        const int entry = scale.YOf(columns[i].Min);
        const int exit = scale.YOf(columns[i].Max);
        Rows rows{std::min(entry, exit), std::max(entry, exit)};
        if (i > 0)
            rows.Include(CrossingOf(scale.YOf(columns[i - 1].Max), entry).FirstOfSecond);
        if (i + 1 < columns.size())
            rows.Include(CrossingOf(exit, scale.YOf(columns[i + 1].Min)).LastOfFirst);
        m_tops[i - first] = std::clamp(rows.Top, clipTop, clipBottom);
        m_bottoms[i - first] = std::clamp(rows.Bottom + 1, clipTop, clipBottom);
    }
}

void ColumnRuns::PaintRow(int y, uint32_t waveColor, uint32_t background, uint32_t* pixels) const
{
    const int32_t* tops = m_tops.data();
    const int32_t* bottoms = m_bottoms.data();
    const size_t count = m_tops.size();
    for (size_t i = 0; i < count; ++i)
        pixels[i] = (y >= tops[i]) & (y < bottoms[i]) ? waveColor : background;
}

LaneRaster::LaneRaster(const LanePicture& picture, const Rect& area)
    : m_colors(picture.Colors),
      m_scale(LaneScale::Of(picture.Lane, picture.Margin, picture.VerticalOffset, picture.AmplitudeScale)),
      m_width(area.Width()), m_invertLeft(ClampedOffset(picture.SelectionLeft, area)),
      m_invertRight(ClampedOffset(picture.SelectionRight, area))
{
    if (m_scale.Span <= 0)
        return;
    const auto first = static_cast<size_t>(area.Left - picture.Lane.Left);
    m_runs.Compute(picture.Columns, first, first + static_cast<size_t>(m_width), m_scale, area.Top, area.Bottom);
}

void LaneRaster::PaintRow(int y, uint32_t* pixels) const
{
    if (y == m_scale.ZeroY || y == m_scale.UpperFullScaleY() || y == m_scale.LowerFullScaleY())
        std::fill_n(pixels, m_width, m_colors.Lines);
    else if (m_runs.Count() == 0)
        std::fill_n(pixels, m_width, m_colors.Background);
    else
        m_runs.PaintRow(y, m_colors.Wave, m_colors.Background, pixels);
    for (int x = m_invertLeft; x < m_invertRight; ++x)
        pixels[x] ^= InvertColor;
}

} // namespace ek
