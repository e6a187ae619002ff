// SPDX-License-Identifier: GPL-3.0-or-later
#include "skincontrols/LevelMeter.h"

#include "skincontrols/Skin.h"
#include "skincontrols/SystemColors.h"

#include <QPainter>

#include <algorithm>
#include <cmath>

namespace ek {

namespace {

constexpr double FloorDecibels = -60;
constexpr double DecibelsPerMillisecond = 20.0 / 1700;
constexpr double PeakRestMilliseconds = 1500;
constexpr float FullScale = 1;
constexpr float Silence = 0.001F; ///< the floor as an amplitude

constexpr int MinimumChannels = 2; ///< an idle meter looks like a stereo one
constexpr int LightWidth = 6;
constexpr int Gap = 2;
constexpr int PeakWidth = 2;

/// The colours of a bar, each up to its level.
struct Zone {
    float End;
    QColor Color;
};
const Zone Zones[] = {{0.251F, QColor(0x3F, 0xA8, 0x6A)}, // -12 dB
                      {0.708F, QColor(0xDF, 0xA9, 0x2F)}, // -3 dB
                      {FullScale, QColor(0xD8, 0x4B, 0x45)}};

float Fallen(float amplitude, double milliseconds)
{
    const double fallen = amplitude * std::pow(10.0, -DecibelsPerMillisecond * milliseconds / 20);
    return fallen < Silence ? 0 : static_cast<float>(fallen);
}

void Move(MeterChannel& channel, float amplitude, double milliseconds)
{
    channel.Level = std::max(amplitude, Fallen(channel.Level, milliseconds));
    channel.PeakAge += milliseconds;
    if (channel.PeakAge > PeakRestMilliseconds)
        channel.Peak = Fallen(channel.Peak, std::min(milliseconds, channel.PeakAge - PeakRestMilliseconds));
    if (channel.Level >= channel.Peak) {
        channel.Peak = channel.Level;
        channel.PeakAge = 0;
    }
    channel.IsClipped = channel.IsClipped || amplitude >= FullScale;
}

const QColor& ZoneColor(float amplitude)
{
    const auto* zone = std::find_if(std::begin(Zones), std::end(Zones) - 1,
                                    [amplitude](const Zone& candidate) { return amplitude <= candidate.End; });
    return zone->Color;
}

void PaintBar(QPainter& painter, const QRect& bar, const MeterChannel& channel)
{
    painter.fillRect(bar, SkinColorOf(ColorScrollBar));
    const auto xOf = [&bar](float amplitude) {
        return bar.left() + static_cast<int>(std::lround(bar.width() * MeterPosition(amplitude)));
    };
    int left = bar.left();
    for (const Zone& zone : Zones) {
        const int right = xOf(std::min(zone.End, channel.Level));
        painter.fillRect(QRect(left, bar.top(), std::max(right - left, 0), bar.height()), zone.Color);
        left = std::max(left, right);
    }
    if (channel.Peak > 0) {
        const int right = std::max(xOf(channel.Peak), bar.left() + PeakWidth);
        painter.fillRect(QRect(right - PeakWidth, bar.top(), PeakWidth, bar.height()), ZoneColor(channel.Peak));
    }
}

} // namespace

double MeterPosition(float amplitude)
{
    return amplitude <= Silence ? 0 : std::clamp(1 - 20 * std::log10(amplitude) / FloorDecibels, 0.0, 1.0);
}

void MeterLevels::SetChannels(size_t count)
{
    m_channels.assign(count, MeterChannel());
}

void MeterLevels::Feed(std::span<const float> peaks, double elapsedMilliseconds)
{
    for (size_t i = 0; i < m_channels.size(); ++i)
        Move(m_channels[i], i < peaks.size() ? peaks[i] : 0, elapsedMilliseconds);
}

void MeterLevels::PutLightsOut()
{
    for (MeterChannel& channel : m_channels)
        channel.IsClipped = false;
}

void PaintLevelMeter(QPainter& painter, const QRect& place, std::span<const MeterChannel> channels)
{
    const int count = std::max(static_cast<int>(channels.size()), MinimumChannels);
    const int gap = count > MinimumChannels ? 1 : Gap;
    for (int i = 0; i < count; ++i) {
        const MeterChannel channel = i < static_cast<int>(channels.size()) ? channels[i] : MeterChannel();
        const int top = place.top() + i * (place.height() + gap) / count;
        const int height = std::max(place.top() + (i + 1) * (place.height() + gap) / count - gap - top, 1);
        PaintBar(painter, QRect(place.left(), top, place.width() - LightWidth - Gap, height), channel);
        painter.fillRect(QRect(place.right() + 1 - LightWidth, top, LightWidth, height),
                         channel.IsClipped ? std::end(Zones)[-1].Color : SkinColorOf(ColorButtonShadow));
    }
}

CSCLevelMeter::CSCLevelMeter(QWidget* parent) : QWidget(parent)
{
    setSizePolicy(QSizePolicy::Preferred, QSizePolicy::Fixed);
    setAttribute(Qt::WA_OpaquePaintEvent);
}

QSize CSCLevelMeter::sizeHint() const
{
    return {150, std::max(fontMetrics().height(), 16)};
}

void CSCLevelMeter::SetFormat(const WAVEFORMATEXTENSIBLE& format)
{
    if (m_levels.Channels().size() == format.nChannels)
        return;
    m_levels.SetChannels(format.nChannels);
    update();
}

void CSCLevelMeter::SetOn(bool on)
{
    if (m_isOn == on)
        return;
    m_isOn = on;
    if (on)
        m_levels.SetChannels(m_levels.Channels().size());
    else
        m_levels.Feed({}, HUGE_VAL);
    update();
}

void CSCLevelMeter::SetPeaks(std::span<const float> peaks, double elapsedMilliseconds)
{
    if (!m_isOn)
        return;
    const std::vector<MeterChannel> before(m_levels.Channels().begin(), m_levels.Channels().end());
    m_levels.Feed(peaks, elapsedMilliseconds);
    const auto looksAlike = [](const MeterChannel& a, const MeterChannel& b) {
        return a.Level == b.Level && a.Peak == b.Peak && a.IsClipped == b.IsClipped;
    };
    if (!std::ranges::equal(before, m_levels.Channels(), looksAlike))
        update();
}

void CSCLevelMeter::paintEvent(QPaintEvent*)
{
    QPainter painter(this);
    painter.fillRect(rect(), palette().window());
    PaintLevelMeter(painter, rect(), m_levels.Channels());
}

void CSCLevelMeter::mousePressEvent(QMouseEvent*)
{
    m_levels.PutLightsOut();
    update();
}

} // namespace ek
