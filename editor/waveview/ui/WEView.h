// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "framework/ui/View.h"
#include "waveview/EditCommands.h"
#include "waveview/ScrollScale.h"
#include "waveview/ViewLayout.h"
#include "waveview/WavePlayback.h"
#include "waveview/WheelAccumulator.h"
#include "waveview/ui/DevicePixels.h"
#include "waveview/ui/WEPanels.h"

#include <QTimer>

class QScrollBar;
class QToolButton;

namespace ek {

class CTimeScaleStatic;

/// The view of a wave document. It works in device pixels throughout, so that one column of the waveform is one
/// pixel of the display at every scale. Painting reads the document's column cache and never its samples.
class CWEView final : public CView, private PlaybackSite {
public:
    static constexpr uint32_t GoToTimeMessage = 2145; ///< lParam: milliseconds

    CWEView(CWEDoc& document, ViewSite& site, QWidget* parent);
    ~CWEView() override; ///< stops what plays

    bool OnCmdMsg(uint32_t id, CommandCode code, CommandUi* ui) override; ///< runs nothing while work runs
    std::span<const CommandEntry> CommandTable() const override;
    void OnInitialUpdate() override;
    void OnSkinChanged() override;
    void OnDocumentChanged(const DocumentChange& change) override;
    void OnHostMessage(MessageEvent& message) override;
    bool CanPlay() const override { return HasSound(); }
    bool IsPlaying() const override { return m_playback.IsPlaying() || m_playback.IsStarting(); }
    void OnActivateView(bool active) override { m_isActive = active; }

    CWEDoc& WaveDocument() const { return static_cast<CWEDoc&>(Document()); }
    const WaveGeometry& Geometry() const { return m_geometry; }
    const ViewLayout& Places() const { return m_layout; }
    int VerticalOffset() const { return m_amplitude.VerticalOffset(); }
    double DisplayScale() const { return m_device.Scale; }
    uint32_t PointerShape() const { return m_pointerShape; } ///< a CursorId; 0: the arrow

    /// Draws what lies in `exposed`; the painter's unit is a device pixel. The scroll bars, the button and the zoom
    /// label draw themselves.
    void Draw(QPainter& painter, const Rect& exposed);

protected:
    bool event(QEvent* event) override;
    void paintEvent(QPaintEvent* event) override;
    void resizeEvent(QResizeEvent* event) override;
    void wheelEvent(QWheelEvent* event) override;
    void keyPressEvent(QKeyEvent* event) override;
    void mousePressEvent(QMouseEvent* event) override;
    void mouseDoubleClickEvent(QMouseEvent* event) override;
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
    void CreateTimers();
    void LayOut();
    void PlaceControls();
    int Margin() const;
    void SyncHorizontalScroll();
    void SyncVerticalScroll();
    void OnHorizontalScroll(int value);
    void OnVerticalScroll(int value);

    // What follows from a change.
    void TakeChange(const DocumentChange& change);
    void ShowWholeSound();
    void RefreshColumns();
    void ApplyZoom();
    void ApplyScroll();
    void ApplyLanes(const LaneRange& range);
    void ApplyAmplitude();
    void UpdateMarks();
    void Repaint(uint32_t mask);
    void RepaintMarks(); ///< what selection and cursor changed since the marks were updated
    void RepaintColumns(int64_t left, int64_t right);
    void RepaintCursor();
    void RepaintOverviewAt(uint64_t frame);
    void Blink();
    void LightCursor();
    bool HasSound() const { return WaveDocument().IsReady() && m_geometry.Length > 0; }
    bool HasChannels() const { return WaveDocument().IsReady() && WaveDocument().ChannelCount() > 0; }
    LaneRange VisibleLanes() const;

    // Mouse.
    void BeginDrag(QPoint point, bool extends);
    void EndDrag();
    void PressInOverview(QPoint point);
    void BeginSelecting(QPoint point, bool extends);
    void SelectTo(QPoint point);
    void AutoScroll();
    ChannelCode ChannelAt(int y) const;
    void SetSelectionChannel(ChannelCode code);
    uint32_t ShapeAt(QPoint point) const;
    void UpdatePointerShape();
    void ScrollByWheel(int delta);
    void TurnWheel(QPoint point, int delta);
    void ShowRatioMenu(QPoint place);
    void ShowWaveMenu(QPoint place);

    // Playback. What came from the transport is in WavePlayback.
    void OnCursorMoved(uint64_t oldCursor) override;
    void OnPlaybackStarted() override;
    void OnPlaybackStopped() override;
    void OnRangePlayed() override; ///< on the player's thread
    bool IsTransportOurs() override { return m_isActive; }
    void OnPlayTimer() { m_playback.Tick(); }
    void StopOwnPlayback();
    void RunTransport(uint32_t id, intptr_t parameter);
    void GoToTime(int64_t milliseconds);

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

    // Edit and selection commands.
    void Edit(bool (EditCommands::*edit)()) { RepeatEdit(edit, 1); }
    void SelectChannel(ChannelCode code);
    void ShowHistory(uint32_t command);
    void RepeatEdit(bool (EditCommands::*edit)(), int count);
    void OnSelect(uint32_t id);
    void OnUpdateSelect(CommandUi& ui);
    void OnNextChannel();
    void OnUpdateNextChannel(CommandUi& ui);
    void OnCopy();
    void OnCut() { Edit(&EditCommands::Cut); }
    void OnDelete() { Edit(&EditCommands::Delete); }
    void OnUpdateCopy(CommandUi& ui);
    void OnPaste() { Edit(&EditCommands::Paste); }
    void OnPasteMix() { Edit(&EditCommands::PasteMix); }
    void OnUpdatePaste(CommandUi& ui) { ui.Enabled = m_edits.CanPaste(); }
    void OnUndo() { Edit(&EditCommands::Undo); }
    void OnUndoHistory();
    void OnUpdateUndo(CommandUi& ui) { ui.Enabled = m_edits.CanUndo(); }
    void OnRedo() { Edit(&EditCommands::Redo); }
    void OnRedoHistory();
    void OnUpdateRedo(CommandUi& ui) { ui.Enabled = m_edits.CanRedo(); }

    DevicePixels m_device;
    ViewLayout m_layout;
    WaveGeometry m_geometry;
    ScrollScale m_scrollScale;
    ViewColors m_colors;
    EditCommands m_edits;

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
    QTimer m_blinkTimer;
    QTimer m_scrollTimer; // while a selection is dragged
    QTimer m_playTimer;

    DragMode m_dragMode = DragMode::None;
    int m_dragStartX = 0;
    uint64_t m_dragStartFrame = 0;
    QPoint m_pointer; // where the mouse was seen last
    uint32_t m_pointerShape = 0;
    double m_pointerScale = 0;
    WheelAccumulator m_zoomWheel;
    WheelAccumulator m_scrollWheel;
    WheelAccumulator m_amplitudeWheel;
    bool m_fitsNewSize = false; // a new sound that was not painted yet: it is shown whole in whatever size comes
    bool m_isActive = true;
    bool m_columnsAreOld = false; // the layout changed while work ran on the sound
    WavePlayback m_playback;      // last: it goes first, and with it the calls on the player's thread
};

} // namespace ek
