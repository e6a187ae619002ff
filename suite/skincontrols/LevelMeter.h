// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "ek/WaveFormat.h"

#include <QWidget>

#include <cstddef>
#include <span>
#include <vector>

class QPainter;

namespace ek {

/// What a meter shows of one channel. Amplitudes: 1 is full scale.
struct MeterChannel {
    float Level = 0;
    float Peak = 0;         ///< the highest level of the last while
    double PeakAge = 0;     ///< milliseconds since it was reached
    bool IsClipped = false; ///< full scale was reached since the lights were put out

    bool operator==(const MeterChannel&) const = default;
};

/// How a meter moves: up at once, down by 20 dB in 1.7 seconds as IEC 60268-18 asks of a peak meter, the peak mark
/// after a rest. Time comes from outside.
class MeterLevels {
public:
    void SetChannels(size_t count); ///< all silent, the lights out
    /// The largest amplitudes since the last call; channels without one were silent.
    void Feed(std::span<const float> peaks, double elapsedMilliseconds);
    void PutLightsOut();

    std::span<const MeterChannel> Channels() const { return m_channels; }

private:
    std::vector<MeterChannel> m_channels;
};

/// 0 .. 1 of a meter's length: -60 dB and less, up to full scale and more, even in decibels.
double MeterPosition(float amplitude);

/// One bar per channel from the left, its peak mark, and at the right end its clip light.
void PaintLevelMeter(QPainter& painter, const QRect& place, std::span<const MeterChannel> channels);

/// A level meter. A click puts the clip lights out.
class CSCLevelMeter final : public QWidget {
public:
    explicit CSCLevelMeter(QWidget* parent = nullptr);

    void SetFormat(const WAVEFORMATEXTENSIBLE& format); ///< another channel count clears the meter
    /// Switched on, the lights go out; switched off, the levels fall to silence at once and the lights stay.
    void SetOn(bool on);
    void SetPeaks(std::span<const float> peaks, double elapsedMilliseconds); ///< ignored while off

    QSize sizeHint() const override;

protected:
    void paintEvent(QPaintEvent* event) override;
    void mousePressEvent(QMouseEvent* event) override;

private:
    MeterLevels m_levels;
    bool m_isOn = false;
};

} // namespace ek
