// SPDX-License-Identifier: GPL-3.0-or-later
#include "resources/CommandIds.h"
#include "resources/Cursors.h"
#include "resources/Menus.h"
#include "waveview/ui/CommandMenu.h"
#include "waveview/ui/WEView.h"
#include "waveview/ui/WaveCursors.h"

#include <QContextMenuEvent>
#include <QMouseEvent>
#include <QWheelEvent>

namespace ek {

namespace {

constexpr int LinesPerNotch = 3; // of scrolling, as elsewhere on the desktop

} // namespace

void CWEView::wheelEvent(QWheelEvent* event)
{
    event->accept();
    if (!HasSound())
        return;
    const QPoint delta = event->angleDelta();
    const bool sideways = std::abs(delta.x()) > std::abs(delta.y());
    if (sideways)
        ScrollByWheel(delta.x());
    else if (event->modifiers() & Qt::ShiftModifier)
        ScrollByWheel(delta.y());
    else
        TurnWheel(m_device.Point(event->position()), delta.y());
}

void CWEView::ScrollByWheel(int delta)
{
    const auto columnsPerNotch = static_cast<int64_t>(LinesPerNotch * m_geometry.LineStep());
    const int64_t columns = -m_scrollWheel.Take(delta, columnsPerNotch);
    if (columns == 0)
        return;
    m_geometry.ScrollBy(columns);
    m_geometry.FollowPlayback = false;
    ApplyScroll();
}

void CWEView::TurnWheel(QPoint point, int delta)
{
    if (m_layout.Amplitude.Contains(point.x(), point.y())) {
        const int64_t notches = m_amplitudeWheel.Take(delta);
        if (notches > 0)
            OnScaleIn();
        else if (notches < 0)
            OnScaleOut();
        return;
    }
    const int64_t steps = -m_zoomWheel.Take(delta);
    if (steps == 0)
        return;
    m_geometry.ZoomBySteps(static_cast<int>(steps), point.x());
    ApplyZoom();
}

void CWEView::keyPressEvent(QKeyEvent* event)
{
    const struct {
        int Key;
        Qt::KeyboardModifiers Modifiers;
        uint32_t Command;
    } keys[] = {{Qt::Key_Delete, Qt::NoModifier, ID_DELETE},
                {Qt::Key_Delete, Qt::ShiftModifier, ID_EDIT_CUT},
                {Qt::Key_Insert, Qt::ShiftModifier, ID_EDIT_PASTE},
                {Qt::Key_Insert, Qt::ControlModifier, ID_EDIT_COPY}};
    for (const auto& key : keys) {
        if (event->key() == key.Key && (event->modifiers() & ~Qt::KeypadModifier) == key.Modifiers) {
            OnCmdMsg(key.Command, CN_COMMAND, nullptr);
            return;
        }
    }
    CView::keyPressEvent(event);
}

void CWEView::mousePressEvent(QMouseEvent* event)
{
    const bool left = event->button() == Qt::LeftButton;
    if (left || !(event->buttons() & Qt::LeftButton))
        EndDrag();
    m_pointer = m_device.Point(event->position());
    if (left && HasSound())
        BeginDrag(m_pointer, event->modifiers() & Qt::ShiftModifier);
    UpdatePointerShape();
}

void CWEView::BeginDrag(QPoint point, bool extends)
{
    if (m_layout.Overview.Contains(point.x(), point.y())) {
        PressInOverview(point);
    } else if (m_layout.Amplitude.Contains(point.x(), point.y())) {
        m_dragMode = DragMode::AmplitudeOffset;
        m_amplitude.BeginDrag(point.y(), Margin());
    } else if (m_layout.Wave.Contains(point.x(), point.y())) {
        BeginSelecting(point, extends);
    }
}

void CWEView::EndDrag()
{
    if (m_dragMode == DragMode::Selecting) {
        m_scrollTimer.stop();
        m_geometry.OrderSelection();
    }
    m_dragMode = DragMode::None;
}

void CWEView::PressInOverview(QPoint point)
{
    const OverviewStrip strip = m_position.Strip();
    if (strip.IsInBox(m_geometry, point.x(), point.y())) {
        m_dragMode = DragMode::OverviewBox;
        m_dragStartX = point.x();
        m_dragStartFrame = m_geometry.FirstVisibleFrame;
        return;
    }
    StopOwnPlayback();
    const auto frame = strip.FrameAt(point.x(), m_geometry.Length);
    if (!frame)
        return;
    m_geometry.SelectionStart = m_geometry.SelectionEnd = m_geometry.CursorFrame = *frame;
    LightCursor();
    m_geometry.EnsureCursorVisible(false);
    ApplyScroll();
}

ChannelCode CWEView::ChannelAt(int y) const
{
    const LaneRange lanes = VisibleLanes();
    return Lanes{m_layout.Wave, lanes.First, lanes.Count}.ChannelAt(WaveDocument().Format(), y);
}

void CWEView::SetSelectionChannel(ChannelCode code)
{
    if (code == m_geometry.SelectionChannel)
        return;
    m_geometry.SelectionChannel = code;
    m_playback.OnSelectionChannelChanged();
}

void CWEView::BeginSelecting(QPoint point, bool extends)
{
    StopOwnPlayback();
    m_dragMode = DragMode::Selecting;
    m_scrollTimer.start();
    if (extends)
        m_geometry.ExtendSelection(point.x());
    else
        m_geometry.BeginSelection(point.x());
    SetSelectionChannel(ChannelAt(point.y()));
    LightCursor();
    RepaintMarks();
}

void CWEView::SelectTo(QPoint point)
{
    const Rect& wave = m_layout.Wave;
    m_geometry.DragSelection(point.x());
    SetSelectionChannel(ChannelAt(std::clamp(point.y(), wave.Top, std::max(wave.Top, wave.Bottom - 1))));
    LightCursor();
    RepaintMarks();
}

void CWEView::AutoScroll()
{
    if (m_pointer.y() < m_layout.Wave.Top || m_pointer.y() >= m_layout.Wave.Bottom)
        return;
    const uint64_t first = m_geometry.FirstVisibleFrame;
    const std::optional<uint64_t> end = m_geometry.AutoScroll(m_pointer.x());
    if (!end)
        return;
    m_geometry.DragSelectionTo(std::min(*end, m_geometry.Length));
    if (m_geometry.FirstVisibleFrame != first)
        ApplyScroll();
    else
        RepaintMarks();
}

void CWEView::mouseDoubleClickEvent(QMouseEvent* event)
{
    const QPoint point = m_device.Point(event->position());
    if (event->button() == Qt::LeftButton && HasChannels() && m_layout.Wave.Contains(point.x(), point.y()))
        SelectChannel(ChannelAt(point.y()));
    else
        mousePressEvent(event);
}

void CWEView::mouseMoveEvent(QMouseEvent* event)
{
    if (!(event->buttons() & Qt::LeftButton))
        EndDrag(); // a menu or a modal window took the release
    m_pointer = m_device.Point(event->position());
    if (m_dragMode == DragMode::AmplitudeOffset && m_amplitude.DragTo(m_pointer.y(), Margin())) {
        ApplyAmplitude();
    } else if (m_dragMode == DragMode::OverviewBox) {
        m_position.Strip().DragBox(m_geometry, m_dragStartFrame, m_dragStartX, m_pointer.x());
        ApplyScroll();
    } else if (m_dragMode == DragMode::Selecting) {
        SelectTo(m_pointer);
    }
    UpdatePointerShape();
}

void CWEView::mouseReleaseEvent(QMouseEvent* event)
{
    if (event->button() == Qt::LeftButton)
        EndDrag();
    UpdatePointerShape();
}

uint32_t CWEView::ShapeAt(QPoint point) const
{
    if (m_dragMode == DragMode::Selecting)
        return CURSOR_ALL_CHANNELS;
    if (m_dragMode != DragMode::None)
        return CURSOR_DRAGGING;
    if (!HasSound())
        return 0;
    if (m_layout.Amplitude.Contains(point.x(), point.y()) ||
        m_position.Strip().IsInBox(m_geometry, point.x(), point.y()))
        return CURSOR_CAN_DRAG;
    return m_layout.Wave.Contains(point.x(), point.y()) ? CursorOfChannel(ChannelAt(point.y())) : 0;
}

void CWEView::UpdatePointerShape()
{
    const uint32_t shape = ShapeAt(m_pointer);
    if (shape == m_pointerShape && m_pointerScale == m_device.Scale)
        return;
    m_pointerShape = shape;
    m_pointerScale = m_device.Scale;
    setCursor(LoadCursor(shape, m_device.Scale));
}

void CWEView::contextMenuEvent(QContextMenuEvent* event)
{
    const QPoint point = m_device.Point(event->pos());
    if (m_dragMode != DragMode::None)
        return;
    if (event->reason() == QContextMenuEvent::Keyboard)
        ShowWaveMenu(mapToGlobal(m_device.Place(m_layout.Wave).center()));
    else if (m_layout.Amplitude.Contains(point.x(), point.y()))
        PopUpCommandMenu(*this, *this, MENU_AMPLITUDE, event->globalPos());
    else if (m_layout.Wave.Contains(point.x(), point.y()))
        ShowWaveMenu(event->globalPos());
}

void CWEView::ShowRatioMenu(QPoint place)
{
    PopUpCommandMenu(*this, *this, MENU_ZOOM_RATIO, place,
                     [this](uint32_t id) { return m_geometry.OffersRatio(uint32_t{1} << (id - ID_ZOOM_RATIO_FIRST)); });
}

} // namespace ek
