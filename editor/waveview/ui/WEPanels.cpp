// SPDX-License-Identifier: GPL-3.0-or-later
#include "waveview/ui/WEPanels.h"

namespace ek {

namespace {

void DrawPlain(QPainter& painter, const Rect& rect, const QColor& color)
{
    if (!rect.IsEmpty())
        painter.fillRect(ToQRect(rect), color);
}

// The line that separates a head panel from the lanes below it.
void DrawBottomLine(QPainter& painter, const Rect& rect, const QColor& color)
{
    DrawPlain(painter, {rect.Left, rect.Bottom - 1, rect.Right, rect.Bottom}, color);
}

} // namespace

WavePicture CWaveDataPanel::Picture() const
{
    WavePicture picture;
    if (!Doc()->IsReady() || Length == 0)
        return picture;
    picture.Format = Doc()->Format();
    picture.FirstChannel = Doc()->FirstVisibleChannel;
    for (uint32_t i = 0; i < Doc()->VisibleChannelCount && picture.FirstChannel + i < Doc()->ChannelCount(); ++i)
        picture.Lanes.push_back(Doc()->Columns().Columns(picture.FirstChannel + i));
    picture.AmplitudeScale = Doc()->AmplitudeScale;
    picture.VerticalOffset = VerticalOffset;
    picture.Margin = Margin;
    picture.SelectionLeft = SelectionLeft;
    picture.SelectionRight = SelectionRight;
    picture.SelectionChannel = SelectionChannel;
    picture.CursorOffset = CursorOffset;
    picture.CursorLit = CursorLit;
    return picture;
}

void CWaveDataPanel::DrawRect(QPainter& painter, const Rect& rect) const
{
    DrawWave(painter, rect, Colors(), Picture());
}

void CAmplitudePanel::DrawRect(QPainter& painter, const Rect& rect) const
{
    DrawPlain(painter, rect, Colors().Gradient2);
    DrawPlain(painter, {rect.Right - 1, rect.Top, rect.Right, rect.Bottom}, Colors().PanelLines);
}

int CAmplitudePanel::Clamped(int wanted, int margin) const
{
    const Lanes lanes{Area(), Doc()->FirstVisibleChannel, Doc()->VisibleChannelCount};
    return ClampedVerticalOffset(wanted, lanes.Height(), margin, Doc()->AmplitudeScale);
}

bool CAmplitudePanel::DragTo(int y, int margin)
{
    const int offset = Clamped(y - m_dragOriginY, margin);
    if (offset == m_verticalOffset)
        return false;
    m_verticalOffset = offset;
    return true;
}

void CPositionPanel::DrawRect(QPainter& painter, const Rect& rect) const
{
    DrawOverview(painter, {rect, Inset}, Colors(), m_geometry);
    DrawBottomLine(painter, rect, Colors().PanelLines);
}

void CTimePanel::DrawRect(QPainter& painter, const Rect& rect) const
{
    DrawPlain(painter, rect, Colors().Gradient2);
}

void CMarkerPanel::DrawRect(QPainter& painter, const Rect& rect) const
{
    DrawPlain(painter, rect, Colors().Gradient1);
    DrawBottomLine(painter, rect, Colors().PanelLines);
}

void CToolPanel::DrawRect(QPainter& painter, const Rect& rect) const
{
    DrawPlain(painter, rect, Colors().Gradient2);
    DrawBottomLine(painter, rect, Colors().PanelLines);
}

} // namespace ek
