// SPDX-License-Identifier: GPL-3.0-or-later
#include "waveview/ui/WEView.h"

#include "resources/CommandIds.h"
#include "resources/Strings.h"
#include "skincontrols/SCScrollBar.h"
#include "skincontrols/Skin.h"
#include "waveview/ui/TimeScaleStatic.h"

#include <QPaintEvent>
#include <QSignalBlocker>
#include <QStyle>
#include <QTimer>
#include <QToolButton>

namespace ek {

namespace {

constexpr int LaneMargin = 5;
constexpr int StatusBarHeight = 20;
constexpr int CursorBlinkMilliseconds = 1000;

} // namespace

CWEView::CWEView(CWEDoc& document, ViewSite& site, QWidget* parent)
    : CView(document, site, parent), m_wave(&document, m_colors), m_amplitude(&document, m_colors),
      m_position(&document, m_colors, m_geometry), m_time(&document, m_colors), m_marker(nullptr, m_colors),
      m_tool(nullptr, m_colors)
{
    setAttribute(Qt::WA_OpaquePaintEvent);
    setFocusPolicy(Qt::StrongFocus);
    setAccessibleName(tr("Waveform"));
    CreateControls();
    OnSkinChanged();
    startTimer(CursorBlinkMilliseconds);
}

void CWEView::CreateControls()
{
    m_horizontalBar = new CSCScrollBar(Qt::Horizontal, this);
    m_horizontalBar->setAccessibleName(tr("Visible time"));
    connect(m_horizontalBar, &QScrollBar::valueChanged, this, [this](int value) { OnHorizontalScroll(value); });
    m_verticalBar = new CSCScrollBar(Qt::Vertical, this);
    m_verticalBar->setAccessibleName(tr("Visible channels"));
    connect(m_verticalBar, &QScrollBar::valueChanged, this, [this](int value) { OnVerticalScroll(value); });

    m_overviewButton = new QToolButton(this);
    m_overviewButton->setCheckable(true);
    m_overviewButton->setAutoRaise(true);
    m_overviewButton->setArrowType(Qt::DownArrow);
    m_overviewButton->setFocusPolicy(Qt::NoFocus);
    m_overviewButton->setAccessibleName(tr("Overview of every channel"));
    m_overviewButton->setToolTip(m_overviewButton->accessibleName());
    connect(m_overviewButton, &QToolButton::clicked, this, [this] { OnCmdMsg(ID_OVERVIEW, CN_COMMAND, nullptr); });

    m_zoomLabel = new CTimeScaleStatic(this, [this](QPoint place) { ShowRatioMenu(place); });
    m_zoomLabel->setToolTip(QString::fromStdString(LoadString(IDS_ZOOM_RATIO)));
}

int CWEView::Margin() const
{
    return ScaledLength(LaneMargin, m_device.Scale);
}

void CWEView::OnSkinChanged()
{
    m_colors = ViewColors::FromSkin();
    setPalette(SkinPalette());
    update();
}

void CWEView::LayOut()
{
    m_device.Scale = devicePixelRatioF();
    const int barExtent = m_device.Length(style()->pixelMetric(QStyle::PM_ScrollBarExtent, nullptr, m_verticalBar));
    m_layout = ViewLayout::Compute({.Client = {0, 0, m_device.Length(width()), m_device.Length(height())},
                                    .ScrollBarWidth = barExtent,
                                    .ScrollBarHeight = barExtent,
                                    .StatusBarHeight = ScaledLength(StatusBarHeight, m_device.Scale),
                                    .ChannelCount = WaveDocument().ChannelCount(),
                                    .OverviewExpanded = m_position.Expanded,
                                    .Scale = m_device.Scale});
    m_wave.SetArea(m_layout.Wave);
    m_amplitude.SetArea(m_layout.Amplitude);
    m_position.SetArea(m_layout.Overview);
    m_position.Inset = m_layout.OverviewInset;
    m_time.SetArea(m_layout.Time);
    m_marker.SetArea(m_layout.Marker);
    m_tool.SetArea(m_layout.Tool);
    PlaceControls();

    m_geometry.WavePanelLeft = m_layout.Wave.Left;
    m_geometry.WavePanelWidth = std::max(0, m_layout.Wave.Width());
    m_geometry.Align();
    SyncHorizontalScroll();
    SyncVerticalScroll();
    RefreshColumns();
    UpdateMarks();
}

void CWEView::PlaceControls()
{
    m_horizontalBar->setGeometry(m_device.Place(m_layout.HorizontalBar));
    m_verticalBar->setGeometry(m_device.Place(m_layout.VerticalBar));
    m_zoomLabel->setGeometry(m_device.Place(m_layout.ZoomLabel));
    m_overviewButton->setGeometry(m_device.Place(m_layout.ToggleButton));
}

bool CWEView::event(QEvent* event)
{
    // The release of the button goes elsewhere then.
    if (event->type() == QEvent::Hide || event->type() == QEvent::WindowDeactivate)
        m_dragMode = DragMode::None;
    return CView::event(event);
}

void CWEView::resizeEvent(QResizeEvent*)
{
    LayOut();
    if (m_fitsNewSize)
        ShowWholeSound();
}

void CWEView::SyncHorizontalScroll()
{
    const QSignalBlocker blocker(m_horizontalBar);
    m_scrollScale = ScrollScale::For(m_geometry.MaxPosition());
    m_horizontalBar->setRange(0, m_scrollScale.Maximum());
    m_horizontalBar->setPageStep(m_scrollScale.StepToBar(static_cast<uint64_t>(m_geometry.WavePanelWidth)));
    m_horizontalBar->setSingleStep(m_scrollScale.StepToBar(m_geometry.LineStep()));
    m_horizontalBar->setValue(m_scrollScale.ToBar(m_geometry.Position()));
}

void CWEView::SyncVerticalScroll()
{
    const QSignalBlocker blocker(m_verticalBar);
    const auto channels = static_cast<int>(WaveDocument().ChannelCount());
    const auto visible = static_cast<int>(WaveDocument().VisibleChannelCount);
    m_verticalBar->setRange(0, std::max(0, channels - visible));
    m_verticalBar->setPageStep(std::max(1, visible));
    m_verticalBar->setValue(static_cast<int>(WaveDocument().FirstVisibleChannel));
}

void CWEView::OnHorizontalScroll(int value)
{
    m_geometry.SetPosition(m_scrollScale.FromBar(value));
    m_geometry.FollowPlayback = false;
    ApplyScroll();
}

void CWEView::OnVerticalScroll(int value)
{
    ApplyLanes(VisibleLanes().ScrolledTo(value, WaveDocument().ChannelCount()));
}

void CWEView::OnInitialUpdate()
{
    WaveDocument().VisibleChannelCount = WaveDocument().ChannelCount();
    TakeChange(true);
}

void CWEView::OnDocumentChanged(const DocumentChange& change)
{
    if (change.What == DocumentChange::Kind::Reset || change.What == DocumentChange::Kind::Frames)
        TakeChange(change.What == DocumentChange::Kind::Reset);
}

void CWEView::TakeChange(bool isNewSound)
{
    CWEDoc& document = WaveDocument();
    document.Columns().Invalidate();
    Site().SetActiveFormat(document.Format());
    if (isNewSound) {
        m_geometry = {};
        m_amplitude.Center();
        m_dragMode = DragMode::None;
    }
    m_geometry.Length = document.IsReady() ? document.FrameCount() : 0;
    LayOut();
    if (isNewSound)
        ShowWholeSound();
    m_horizontalBar->setEnabled(document.IsReady());
    m_zoomLabel->setEnabled(document.IsReady());
    m_overviewButton->setEnabled(document.ChannelCount() > 0);
    Repaint(AllPanels);
}

void CWEView::ShowWholeSound()
{
    m_geometry.ZoomFull();
    ApplyZoom();
    m_fitsNewSize = true;
}

void CWEView::RefreshColumns()
{
    WaveDocument().RefreshColumnCache(m_geometry.FirstVisibleFrame, m_geometry.FramesPerPixel,
                                      static_cast<uint32_t>(m_geometry.WavePanelWidth));
}

void CWEView::ApplyZoom()
{
    m_fitsNewSize = false;
    m_zoomLabel->SetRatio(m_geometry.FramesPerPixel);
    SyncHorizontalScroll();
    RefreshColumns();
    UpdateMarks();
    Repaint(WaveMask | TimeMask | PositionMask | MarkerMask);
}

void CWEView::ApplyScroll()
{
    m_fitsNewSize = false;
    SyncHorizontalScroll();
    RefreshColumns();
    UpdateMarks();
    Repaint(WaveMask | TimeMask | PositionMask);
}

LaneRange CWEView::VisibleLanes() const
{
    return {WaveDocument().FirstVisibleChannel, WaveDocument().VisibleChannelCount};
}

void CWEView::ApplyLanes(const LaneRange& range)
{
    WaveDocument().FirstVisibleChannel = range.First;
    WaveDocument().VisibleChannelCount = range.Count;
    SyncVerticalScroll();
    UpdateMarks();
    Repaint(WaveMask | AmplitudeMask | PositionMask);
}

void CWEView::ApplyAmplitude()
{
    UpdateMarks();
    Repaint(WaveMask | AmplitudeMask);
}

void CWEView::UpdateMarks()
{
    m_wave.Margin = Margin();
    m_wave.VerticalOffset = m_amplitude.ShownOffset(Margin());
    m_wave.SelectionChannel = m_geometry.SelectionChannel;
    m_wave.CursorOffset = -1;
    if (m_geometry.CursorFrame != WaveGeometry::NoFrame && m_geometry.CursorFrame >= m_geometry.FirstVisibleFrame)
        m_wave.CursorOffset = m_geometry.FrameToX(m_geometry.CursorFrame) - m_layout.Wave.Left;
    m_wave.SelectionLeft = m_wave.SelectionRight = -1;
    if (m_geometry.HasSelection()) {
        const auto [start, end] = m_geometry.OrderedSelection();
        m_wave.SelectionLeft = m_geometry.FrameToX(start) - m_layout.Wave.Left;
        m_wave.SelectionRight = m_geometry.FrameToX(end) - m_layout.Wave.Left;
    }
}

void CWEView::Repaint(uint32_t mask)
{
    const struct {
        uint32_t Bit;
        const Rect& Area;
    } panels[] = {{WaveMask, m_layout.Wave},
                  {AmplitudeMask, m_layout.Amplitude},
                  {TimeMask, m_layout.Time},
                  {PositionMask, m_layout.Overview},
                  {MarkerMask, m_layout.Marker}};
    for (const auto& panel : panels) {
        if (mask & panel.Bit)
            update(m_device.Cover(panel.Area));
    }
    update(m_device.Cover(m_layout.Tool));
}

void CWEView::timerEvent(QTimerEvent*)
{
    if (m_geometry.CursorFrame == WaveGeometry::NoFrame)
        return;
    m_wave.CursorLit = !m_wave.CursorLit;
    update(m_device.Cover(CursorRect(m_layout.Wave, m_wave.Picture())));
}

void CWEView::paintEvent(QPaintEvent* event)
{
    m_fitsNewSize = false;
    if (devicePixelRatioF() != m_device.Scale)
        QTimer::singleShot(0, this, [this] {
            LayOut();
            update();
        });
    // The window's backing store is the off-screen bitmap: what is drawn here appears on the screen at once.
    QPainter painter(this);
    painter.scale(1 / m_device.Scale, 1 / m_device.Scale);
    Draw(painter, m_device.Touched(event->rect()));
}

void CWEView::Draw(QPainter& painter, const Rect& exposed)
{
    // A clip of one rectangle at a time lets the painter copy whole rows.
    const auto drawIn = [&](const Rect& area, const auto& draw) {
        const Rect visible = area.Intersected(exposed);
        if (visible.IsEmpty())
            return;
        painter.setClipRect(ToQRect(visible));
        draw();
    };
    const auto drawPanel = [&](const auto& panel) { drawIn(panel.Area(), [&] { panel.Draw(painter); }); };
    const auto fill = [&](const Rect& area) { drawIn(area, [&] { painter.fillRect(ToQRect(area), m_colors.Face); }); };
    fill({m_layout.Wave.Right, exposed.Top, exposed.Right, m_layout.Wave.Bottom});
    fill({exposed.Left, m_layout.Wave.Bottom, exposed.Right, exposed.Bottom});
    drawPanel(m_wave);
    drawPanel(m_amplitude);
    drawPanel(m_position);
    drawPanel(m_time);
    drawPanel(m_tool);
    drawPanel(m_marker);
}

} // namespace ek
