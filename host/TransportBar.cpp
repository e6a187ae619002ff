// SPDX-License-Identifier: GPL-3.0-or-later
#include "host/TransportBar.h"

#include "host/HeardDisplay.h"
#include "host/TransportActions.h"

#include "skincontrols/LevelMeter.h"
#include "skincontrols/SCSlider.h"
#include "skincontrols/Skin.h"

#include <QMenu>
#include <QToolButton>

#include <algorithm>

namespace ek {

namespace {

constexpr qint64 SeekEveryMilliseconds = 150;
constexpr int IconSize = 16;

} // namespace

TransportBar::TransportBar(const TransportActions& actions, QWidget* parent)
    : QToolBar(tr("Transport"), parent), m_slider(new CSCSlider(this)), m_heard(new HeardDisplay(this)),
      m_meter(new CSCLevelMeter(this)), m_deviceMenu(new QMenu(this)), m_device(new QToolButton(this))
{
    setObjectName(QStringLiteral("transport"));
    setMovable(false);
    setContextMenuPolicy(Qt::PreventContextMenu);
    setIconSize({IconSize, IconSize});
    for (const TransportCommand command : {TransportToStart, TransportBack, TransportPlay, TransportPause,
                                           TransportStop, TransportForward, TransportToEnd})
        addAction(actions.Of(command));
    addSeparator();
    addAction(actions.Loop());
    addAction(actions.Of(TransportRecord));
    addSeparator();
    AddSlider();
    addWidget(m_heard);
    addWidget(m_meter);
    m_meter->setToolTip(tr("Level; click to put out the clip lights"));
    m_device->setMenu(m_deviceMenu);
    m_device->setPopupMode(QToolButton::InstantPopup);
    m_device->setAccessibleName(tr("Audio device"));
    addWidget(m_device);
    Show(TransportState());
}

void TransportBar::AddSlider()
{
    m_slider->setTracking(false);
    m_slider->setAccessibleName(tr("Position"));
    m_slider->setToolTip(tr("Position"));
    addWidget(m_slider);
    connect(m_slider, &QSlider::sliderPressed, this, [this] { m_soughtPercent.reset(); });
    connect(m_slider, &QSlider::sliderMoved, this, &TransportBar::SeekWhileDragged);
    connect(m_slider, &QSlider::sliderReleased, this, &TransportBar::Seek);
    connect(m_slider, &QSlider::actionTriggered, this, [this](int action) {
        if (action != QAbstractSlider::SliderMove) // that one is the mouse's
            Seek();
    });
}

int TransportBar::PercentOfSlider() const
{
    return qRound(100.0 * m_slider->sliderPosition() / std::max(m_slider->maximum(), 1));
}

void TransportBar::Seek()
{
    if (!m_slider->isEnabled()) // playing has stopped under the hand, which lets the handle go
        return;
    const int percent = PercentOfSlider();
    m_soughtPercent = percent;
    m_sinceSeek.start();
    emit SeekWanted(percent);
}

/// A pause is kept as long as the hand is on the slider: seeking would end it.
void TransportBar::SeekWhileDragged()
{
    const bool isTooSoon = m_sinceSeek.isValid() && m_sinceSeek.elapsed() < SeekEveryMilliseconds;
    if (m_isRunning && !isTooSoon && m_soughtPercent != PercentOfSlider())
        Seek();
}

void TransportBar::Show(const TransportState& state)
{
    m_isRunning = state.IsRunning();
    m_slider->setEnabled(!state.IsStopped());
    if (!m_slider->isSliderDown()) {
        const int range = static_cast<int>(state.ProgressRange);
        m_slider->setRange(0, range);
        m_slider->setSingleStep(std::max(range / 100, 1));
        m_slider->setPageStep(std::max(range / 10, 1));
        m_slider->setValue(static_cast<int>(state.Progress));
    }
    m_heard->Show(state.HeardMilliseconds);
    m_meter->SetOn(state.IsRunning());
}

void TransportBar::ShowDevice(const QString& toolTip, bool isInTrouble)
{
    m_device->setToolTip(toolTip);
    m_isInTrouble = isInTrouble;
    SetIcons(m_iconColor);
}

void TransportBar::SetIcons(const QColor& color)
{
    m_iconColor = color;
    const char* name = m_isInTrouble ? "speaker-trouble" : "speaker";
    m_device->setIcon(MakeIcon(QStringLiteral(":/ek-host/icons/%1.svg").arg(QLatin1String(name)), color));
}

} // namespace ek
