// SPDX-License-Identifier: GPL-3.0-or-later
#include "waveview/ui/WEView.h"

#include "background/ProgressDlg.h"
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
constexpr int AutoScrollMilliseconds = 10;
constexpr int PlayCursorMilliseconds = 33;

} // namespace

CWEView::CWEView(CWEDoc& document, ViewSite& site, QWidget* parent)
    : CView(document, site, parent), m_edits(document, m_geometry), m_wave(&document, m_colors),
      m_amplitude(&document, m_colors), m_position(&document, m_colors, m_geometry), m_time(&document, m_colors),
      m_marker(nullptr, m_colors), m_tool(nullptr, m_colors),
      m_playback(document, m_geometry, site.Player(), site.GetEffectTree(), *this)
{
    setAttribute(Qt::WA_OpaquePaintEvent);
    setFocusPolicy(Qt::StrongFocus);
    setMouseTracking(true);
    setAccessibleName(tr("Waveform"));
    CreateControls();
    CreateTimers();
    OnSkinChanged();
}

CWEView::~CWEView() = default;

void CWEView::CreateTimers()
{
    const auto prepare = [this](QTimer& timer, const char* name, int milliseconds, void (CWEView::*step)()) {
        timer.setObjectName(name);
        timer.setParent(this);
        timer.setInterval(milliseconds);
        timer.setTimerType(Qt::PreciseTimer);
        connect(&timer, &QTimer::timeout, this, step);
    };
    prepare(m_blinkTimer, "Blink", CursorBlinkMilliseconds, &CWEView::Blink);
    prepare(m_scrollTimer, "AutoScroll", AutoScrollMilliseconds, &CWEView::AutoScroll);
    prepare(m_playTimer, "PlayCursor", PlayCursorMilliseconds, &CWEView::OnPlayTimer);
    m_blinkTimer.setTimerType(Qt::CoarseTimer);
    m_blinkTimer.start();
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
    for (QWidget* control : {static_cast<QWidget*>(m_horizontalBar), static_cast<QWidget*>(m_verticalBar),
                             static_cast<QWidget*>(m_overviewButton), static_cast<QWidget*>(m_zoomLabel)})
        control->setCursor(Qt::ArrowCursor); // else they have that of the panels
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
    UpdatePointerShape();
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
        EndDrag();
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
    TakeChange({.What = DocumentChange::Kind::Reset});
}

void CWEView::OnDocumentChanged(const DocumentChange& change)
{
    if (change.What == DocumentChange::Kind::Reset || change.What == DocumentChange::Kind::Frames)
        TakeChange(change);
}

void CWEView::TakeChange(const DocumentChange& change)
{
    CWEDoc& document = WaveDocument();
    const bool isNewSound = change.What == DocumentChange::Kind::Reset;
    const bool wasEmpty = m_geometry.Length == 0;
    m_playback.Stop();
    Site().SetActiveFormat(document.Format());
    if (isNewSound) {
        EndDrag();
        m_geometry = {};
        m_amplitude.Center();
    }
    if (isNewSound || change.StartFrame < m_geometry.FirstVisibleFrame + m_geometry.Span())
        document.Columns().Invalidate();
    m_geometry.SetLength(document.IsReady() ? document.FrameCount() : 0);
    LayOut();
    if (isNewSound || wasEmpty)
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
    m_columnsAreOld = IsWorkRunning(); // it may be changing the sound; the columns stay as they are until it has ended
    if (m_columnsAreOld)
        return;
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
    m_wave.Length = m_geometry.Length;
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

void CWEView::RepaintColumns(int64_t left, int64_t right)
{
    const Rect& wave = m_layout.Wave;
    const int64_t width = wave.Width();
    const Rect columns{wave.Left + static_cast<int>(std::clamp<int64_t>(left, 0, width)), wave.Top,
                       wave.Left + static_cast<int>(std::clamp<int64_t>(right, 0, width)), wave.Bottom};
    if (!columns.IsEmpty())
        update(m_device.Cover(columns));
}

void CWEView::RepaintMarks()
{
    const int64_t left = m_wave.SelectionLeft;
    const int64_t right = m_wave.SelectionRight;
    const int64_t cursor = m_wave.CursorOffset;
    const ChannelCode channel = m_wave.SelectionChannel;
    UpdateMarks();
    if (channel == m_wave.SelectionChannel) {
        RepaintColumns(std::min(left, m_wave.SelectionLeft), std::max(left, m_wave.SelectionLeft));
        RepaintColumns(std::min(right, m_wave.SelectionRight), std::max(right, m_wave.SelectionRight));
    } else {
        RepaintColumns(std::min(left, m_wave.SelectionLeft), std::max(right, m_wave.SelectionRight));
    }
    RepaintColumns(cursor, cursor + 1);
    RepaintColumns(m_wave.CursorOffset, m_wave.CursorOffset + 1);
    Repaint(PositionMask | MarkerMask);
}

void CWEView::RepaintCursor()
{
    update(m_device.Cover(CursorRect(m_layout.Wave, m_wave.Picture())));
}

void CWEView::LightCursor()
{
    m_wave.CursorLit = true;
    m_blinkTimer.start();
}

void CWEView::Blink()
{
    if (m_columnsAreOld && !IsWorkRunning()) {
        RefreshColumns();
        Repaint(WaveMask);
    }
    if (m_geometry.CursorFrame == WaveGeometry::NoFrame || m_playback.IsPlaying())
        return;
    m_wave.CursorLit = !m_wave.CursorLit;
    RepaintCursor();
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
    for (const QRect& rect : event->region()) // two columns far from each other, when a cursor moved
        Draw(painter, m_device.Touched(rect));
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
