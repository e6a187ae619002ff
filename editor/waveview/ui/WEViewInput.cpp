// SPDX-License-Identifier: GPL-3.0-or-later
#include "resources/CommandIds.h"
#include "resources/Menus.h"
#include "waveview/ui/CommandMenu.h"
#include "waveview/ui/WEView.h"

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

void CWEView::mousePressEvent(QMouseEvent* event)
{
    const bool left = event->button() == Qt::LeftButton;
    if (left || !(event->buttons() & Qt::LeftButton))
        m_dragMode = DragMode::None;
    if (left && HasSound())
        BeginDrag(m_device.Point(event->position()));
}

void CWEView::BeginDrag(QPoint point)
{
    if (m_layout.Overview.Contains(point.x(), point.y())) {
        PressInOverview(point);
    } else if (m_layout.Amplitude.Contains(point.x(), point.y())) {
        m_dragMode = DragMode::AmplitudeOffset;
        m_amplitude.BeginDrag(point.y(), Margin());
    }
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
    const auto frame = strip.FrameAt(point.x(), m_geometry.Length);
    if (!frame)
        return;
    m_geometry.SelectionStart = m_geometry.SelectionEnd = m_geometry.CursorFrame = *frame;
    m_wave.CursorLit = true;
    m_geometry.EnsureCursorVisible(false);
    ApplyScroll();
}

void CWEView::mouseMoveEvent(QMouseEvent* event)
{
    if (!(event->buttons() & Qt::LeftButton))
        m_dragMode = DragMode::None; // a menu or a modal window took the release
    const QPoint point = m_device.Point(event->position());
    if (m_dragMode == DragMode::AmplitudeOffset && m_amplitude.DragTo(point.y(), Margin())) {
        ApplyAmplitude();
    } else if (m_dragMode == DragMode::OverviewBox) {
        m_position.Strip().DragBox(m_geometry, m_dragStartFrame, m_dragStartX, point.x());
        ApplyScroll();
    }
}

void CWEView::mouseReleaseEvent(QMouseEvent* event)
{
    if (event->button() == Qt::LeftButton)
        m_dragMode = DragMode::None;
}

void CWEView::contextMenuEvent(QContextMenuEvent* event)
{
    const QPoint point = m_device.Point(event->pos());
    if (event->reason() == QContextMenuEvent::Keyboard)
        PopUpCommandMenu(*this, *this, MENU_AMPLITUDE, mapToGlobal(m_device.Place(m_layout.Amplitude).center()));
    else if (m_dragMode == DragMode::None && m_layout.Amplitude.Contains(point.x(), point.y()))
        PopUpCommandMenu(*this, *this, MENU_AMPLITUDE, event->globalPos());
}

void CWEView::ShowRatioMenu(QPoint place)
{
    PopUpCommandMenu(*this, *this, MENU_ZOOM_RATIO, place,
                     [this](uint32_t id) { return m_geometry.OffersRatio(uint32_t{1} << (id - ID_ZOOM_RATIO_FIRST)); });
}

} // namespace ek
