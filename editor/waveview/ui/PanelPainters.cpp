// SPDX-License-Identifier: GPL-3.0-or-later
#include "waveview/ui/PanelPainters.h"

#include <QImage>

namespace ek {

namespace {

constexpr int SmallestPanel = 3;
constexpr int BandRows = 32; // a band of rows stays in the processor's cache until it is copied

Rect ClipOf(const QPainter& painter, const Rect& panel)
{
    if (!painter.hasClipping())
        return panel;
    const QRect clip = painter.clipBoundingRect().toAlignedRect();
    return panel.Intersected({clip.left(), clip.top(), clip.left() + clip.width(), clip.top() + clip.height()});
}

void Fill(QPainter& painter, const Rect& rect, const QColor& color)
{
    if (!rect.IsEmpty())
        painter.fillRect(ToQRect(rect), color);
}

void DrawRaster(QPainter& painter, const Rect& area, const LaneRaster& raster)
{
    QImage band(area.Width(), std::min(BandRows, area.Height()), QImage::Format_RGB32);
    for (int top = area.Top; top < area.Bottom; top += band.height()) {
        const int rows = std::min(band.height(), area.Bottom - top);
        for (int row = 0; row < rows; ++row)
            raster.PaintRow(top + row, reinterpret_cast<uint32_t*>(band.scanLine(row)));
        painter.drawImage(QPoint(area.Left, top), band, QRect(0, 0, area.Width(), rows));
    }
}

// One lane within the clip; the workspace colour right of its data.
void DrawLane(QPainter& painter, const Rect& clip, const ViewColors& colors, const LanePicture& picture)
{
    const Rect& lane = picture.Lane;
    const int dataRight = lane.Left + std::min(lane.Width(), static_cast<int>(picture.Columns.size()));
    const Rect data = Rect{lane.Left, lane.Top, dataRight, lane.Bottom}.Intersected(clip);
    if (!data.IsEmpty())
        DrawRaster(painter, data, LaneRaster(picture, data));
    Fill(painter, Rect{dataRight, lane.Top, lane.Right, lane.Bottom}.Intersected(clip), colors.Workspace);
}

LanePicture PictureOfLane(const Rect& panel, const Rect& lane, uint32_t index, const ViewColors& colors,
                          const WavePicture& picture)
{
    LanePicture result{.Lane = lane,
                       .Columns = picture.Lanes[index],
                       .Colors = colors.OfLane(),
                       .Margin = picture.Margin,
                       .VerticalOffset = picture.VerticalOffset,
                       .AmplitudeScale = picture.AmplitudeScale};
    const ChannelCode code = GetChannelByIndex(picture.Format, picture.FirstChannel + index);
    if (picture.SelectionChannel == ChannelAll || picture.SelectionChannel == code) {
        result.SelectionLeft = panel.Left + picture.SelectionLeft;
        result.SelectionRight = panel.Left + picture.SelectionRight;
    }
    return result;
}

Lanes LanesOf(const Rect& panel, const WavePicture& picture)
{
    return {panel, picture.FirstChannel, static_cast<uint32_t>(picture.Lanes.size())};
}

// The vertical lines of the box with their short serifs, which show the range where it is narrow too.
void DrawVisibleBox(QPainter& painter, const Rect& area, int64_t left, int64_t right, const QColor& color)
{
    constexpr int Serif = 5;
    const int x0 = static_cast<int>(left);
    const int x1 = static_cast<int>(right);
    Fill(painter, {x0, area.Top, x0 + 1, area.Bottom}, color);
    Fill(painter, {x1, area.Top, x1 + 1, area.Bottom}, color);
    const int serif = std::min(Serif, x1 - x0);
    for (const int y : {area.Top, area.Bottom - 1}) {
        Fill(painter, {x0, y, x0 + serif, y + 1}, color);
        Fill(painter, {x1 - serif, y, x1, y + 1}, color);
    }
}

} // namespace

void DrawWave(QPainter& painter, const Rect& panel, const ViewColors& colors, const WavePicture& picture)
{
    if (panel.Width() < SmallestPanel || panel.Height() < SmallestPanel)
        return;
    const Rect clip = ClipOf(painter, panel);
    if (picture.Lanes.empty()) {
        Fill(painter, clip, colors.Workspace);
        return;
    }
    const Lanes lanes = LanesOf(panel, picture);
    for (uint32_t i = 0; i < lanes.VisibleCount; ++i) {
        const int separator = lanes.SeparatorAbove(i);
        if (i > 0)
            Fill(painter, Rect{panel.Left, separator, panel.Right, separator + 1}.Intersected(clip), colors.PanelLines);
        DrawLane(painter, clip, colors, PictureOfLane(panel, lanes.Lane(i), i, colors, picture));
    }
    const Rect rest{panel.Left, lanes.SeparatorAbove(lanes.VisibleCount), panel.Right, panel.Bottom};
    Fill(painter, rest.Intersected(clip), colors.Workspace);

    const Rect cursor = CursorRect(panel, picture);
    if (picture.CursorLit && !cursor.IsEmpty()) {
        painter.setCompositionMode(QPainter::CompositionMode_Difference);
        Fill(painter, cursor, Qt::white);
        painter.setCompositionMode(QPainter::CompositionMode_SourceOver);
    }
}

Rect CursorRect(const Rect& panel, const WavePicture& picture)
{
    if (picture.CursorOffset < 0 || picture.CursorOffset >= panel.Width())
        return {};
    Rect rect = LanesOf(panel, picture).RowsOf(picture.Format, picture.SelectionChannel);
    if (rect.IsEmpty())
        return {};
    rect.Left = panel.Left + static_cast<int>(picture.CursorOffset);
    rect.Right = rect.Left + 1;
    return rect;
}

void DrawOverview(QPainter& painter, const OverviewStrip& strip, const ViewColors& colors, const WaveGeometry& geometry)
{
    Fill(painter, strip.Area, colors.Gradient2);
    if (geometry.Length == 0 || strip.Area.Height() < SmallestPanel)
        return;
    const Rect inner{strip.Area.Left + 1, strip.Area.Top + 1, strip.Area.Right - 1, strip.Area.Bottom - 1};
    const auto [left, right] = strip.VisibleBox(geometry);
    DrawVisibleBox(painter, inner, left, right, colors.PanelLines);
    if (geometry.CursorFrame != WaveGeometry::NoFrame) {
        const int x = static_cast<int>(strip.FrameToX(geometry.CursorFrame, geometry.Length));
        Fill(painter, {x, inner.Top, x + 1, inner.Bottom}, colors.Wave);
    }
}

} // namespace ek
