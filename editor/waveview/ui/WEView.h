// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "framework/ui/View.h"
#include "waveview/ScrollScale.h"
#include "waveview/ViewLayout.h"
#include "waveview/WheelAccumulator.h"
#include "waveview/ui/DevicePixels.h"
#include "waveview/ui/WEPanels.h"

class QScrollBar;
class QToolButton;

namespace ek {

class CTimeScaleStatic;

/// The view of a wave document. It works in device pixels throughout, so that one column of the waveform is one
/// pixel of the display at every scale. Painting reads the document's column cache and never its samples.
class CWEView final : public CView {
public:
    CWEView(CWEDoc& document, ViewSite& site, QWidget* parent);

    std::span<const CommandEntry> CommandTable() const override;
    void OnInitialUpdate() override;
    void OnSkinChanged() override;
    void OnDocumentChanged(const DocumentChange& change) override;

    CWEDoc& WaveDocument() const { return static_cast<CWEDoc&>(Document()); }
    const WaveGeometry& Geometry() const { return m_geometry; }
    const ViewLayout& Places() const { return m_layout; }
    int VerticalOffset() const { return m_amplitude.VerticalOffset(); }
    double DisplayScale() const { return m_device.Scale; }

    /// Draws what lies in `exposed`; the painter's unit is a device pixel. The scroll bars, the button and the zoom
    /// label draw themselves.
    void Draw(QPainter& painter, const Rect& exposed);

protected:
    bool event(QEvent* event) override;
    void paintEvent(QPaintEvent* event) override;
    void resizeEvent(QResizeEvent* event) override;
    void timerEvent(QTimerEvent* event) override;
    void wheelEvent(QWheelEvent* event) override;
    void mousePressEvent(QMouseEvent* event) override;
    void mouseMoveEvent(QMouseEvent* event) override;
    void mouseReleaseEvent(QMouseEvent* event) override;
    void contextMenuEvent(QContextMenuEvent* event) override;

private:
    enum class DragMode { None, Selecting, AmplitudeOffset, OverviewBox };
    /// The panels of a repaint, as bits.
    enum PanelMask : uint32_t {
        WaveMask = 1,
        AmplitudeMask = 2,
        TimeMask = 8,
        PositionMask = 16,
        MarkerMask = 32,
        AllPanels = 63,
    };

    // Layout and scroll bars.
    void CreateControls();
    void LayOut();
    void PlaceControls();
    int Margin() const;
    void SyncHorizontalScroll();
    void SyncVerticalScroll();
    void OnHorizontalScroll(int value);
    void OnVerticalScroll(int value);

    // What follows from a change.
    void TakeChange(bool isNewSound);
    void ShowWholeSound();
    void RefreshColumns();
    void ApplyZoom();
    void ApplyScroll();
    void ApplyLanes(const LaneRange& range);
    void ApplyAmplitude();
    void UpdateMarks();
    void Repaint(uint32_t mask);
    bool HasSound() const { return WaveDocument().IsReady() && m_geometry.Length > 0; }
    bool HasChannels() const { return WaveDocument().IsReady() && WaveDocument().ChannelCount() > 0; }
    LaneRange VisibleLanes() const;

    // Mouse.
    void BeginDrag(QPoint point);
    void PressInOverview(QPoint point);
    void ScrollByWheel(int delta);
    void TurnWheel(QPoint point, int delta);
    void ShowRatioMenu(QPoint place);

    // Commands.
    void OnZoomIn();
    void OnUpdateZoomIn(CommandUi& ui);
    void OnZoomOut();
    void OnUpdateZoomOut(CommandUi& ui);
    void OnZoomFull();
    void OnFitSelection();
    void OnUpdateFitSelection(CommandUi& ui);
    void OnZoomRatio(uint32_t id);
    void OnUpdateZoomRatio(CommandUi& ui);
    void OnZoomInVertical();
    void OnUpdateZoomInVertical(CommandUi& ui);
    void OnZoomOutVertical();
    void OnUpdateZoomOutVertical(CommandUi& ui);
    void OnScaleIn();
    void OnUpdateScaleIn(CommandUi& ui);
    void OnScaleOut();
    void OnUpdateScaleOut(CommandUi& ui);
    void OnScaleFull();
    void OnCenterView();
    void OnUpdateAmplitude(CommandUi& ui);
    void OnOverview();
    void OnUpdateOverview(CommandUi& ui);

    DevicePixels m_device;
    ViewLayout m_layout;
    WaveGeometry m_geometry;
    ScrollScale m_scrollScale;
    ViewColors m_colors;

    CWaveDataPanel m_wave;
    CAmplitudePanel m_amplitude;
    CPositionPanel m_position;
    CTimePanel m_time;
    CMarkerPanel m_marker;
    CToolPanel m_tool;
    QScrollBar* m_horizontalBar = nullptr; // the widgets are children of the view
    QScrollBar* m_verticalBar = nullptr;
    QToolButton* m_overviewButton = nullptr;
    CTimeScaleStatic* m_zoomLabel = nullptr;

    DragMode m_dragMode = DragMode::None;
    int m_dragStartX = 0;
    uint64_t m_dragStartFrame = 0;
    WheelAccumulator m_zoomWheel;
    WheelAccumulator m_scrollWheel;
    WheelAccumulator m_amplitudeWheel;
    bool m_fitsNewSize = false; // a new sound that was not painted yet: it is shown whole in whatever size comes
};

} // namespace ek
