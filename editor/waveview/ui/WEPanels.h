// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "waveedit/WEDoc.h"
#include "waveview/ui/ViewPanel.h"

namespace ek {

/// A panel that needs no document.
class CNULLDoc {};

/// The lanes. The marks are offsets in pixels from the panel's left edge, as the view computes them.
class CWaveDataPanel final : public CViewPanel<CWEDoc> {
public:
    using CViewPanel::CViewPanel;
    void DrawRect(QPainter& painter, const Rect& rect) const override;
    /// What there is to draw; without lanes while there is no sound.
    WavePicture Picture() const;

    uint64_t Length = 0; ///< frames that the view shows; the document's own count may change on a worker's thread
    int Margin = 5;
    int VerticalOffset = 0;
    int64_t SelectionLeft = -1; ///< both -1: no selection
    int64_t SelectionRight = -1;
    int64_t CursorOffset = -1;
    ChannelCode SelectionChannel = ChannelAll;
    bool CursorLit = false; ///< the blink state
};

/// The amplitude scale left of the lanes. Dragging in it shifts the zero line of all lanes.
class CAmplitudePanel final : public CViewPanel<CWEDoc> {
public:
    using CViewPanel::CViewPanel;
    void DrawRect(QPainter& painter, const Rect& rect) const override;

    int VerticalOffset() const { return m_verticalOffset; } ///< rows; 0: the zero line is in the middle of each lane
    /// The offset as the lanes can show it now; the stored one may be from when they were higher.
    int ShownOffset(int margin) const { return Clamped(m_verticalOffset, margin); }
    void Center() { m_verticalOffset = 0; }
    void BeginDrag(int y, int margin) { m_dragOriginY = y - ShownOffset(margin); }
    bool DragTo(int y, int margin); ///< true when the offset changed
    void Reclamp(int margin) { m_verticalOffset = ShownOffset(margin); }

private:
    int Clamped(int wanted, int margin) const;

    int m_verticalOffset = 0;
    int m_dragOriginY = 0;
};

/// The strip at the top that stands for the whole sound.
class CPositionPanel final : public CViewPanel<CWEDoc> {
public:
    CPositionPanel(CWEDoc* document, const ViewColors& colors, const WaveGeometry& geometry)
        : CViewPanel(document, colors), m_geometry(geometry)
    {
    }
    void DrawRect(QPainter& painter, const Rect& rect) const override;
    OverviewStrip Strip() const { return {Area(), Inset}; }

    int Inset = 0;
    bool Expanded = false; ///< one row per channel

private:
    const WaveGeometry& m_geometry;
};

class CTimePanel final : public CViewPanel<CWEDoc> {
public:
    using CViewPanel::CViewPanel;
    void DrawRect(QPainter& painter, const Rect& rect) const override;
};

/// The thin strip under the time ruler.
class CMarkerPanel final : public CViewPanel<CNULLDoc> {
public:
    using CViewPanel::CViewPanel;
    void DrawRect(QPainter& painter, const Rect& rect) const override;
};

/// The corner left of the time ruler, below the toggle button of the overview.
class CToolPanel final : public CViewPanel<CNULLDoc> {
public:
    using CViewPanel::CViewPanel;
    void DrawRect(QPainter& painter, const Rect& rect) const override;
};

} // namespace ek
