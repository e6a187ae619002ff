// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "host/TransportState.h"

#include <QElapsedTimer>
#include <QToolBar>

#include <optional>

class QToolButton;

namespace ek {

class CSCLevelMeter;
class CSCSlider;
class HeardDisplay;
class TransportActions;

/// The buttons of the transport, the seek slider, what was heard, the levels, and the device.
class TransportBar : public QToolBar {
    Q_OBJECT

public:
    /// `actions` outlive the bar. The menu of the device button is the bar's owner's to fill.
    TransportBar(const TransportActions& actions, QWidget* parent);

    /// The slider follows unless it is dragged.
    void Show(const TransportState& state);
    CSCLevelMeter& Meter() { return *m_meter; }
    QMenu& DeviceMenu() { return *m_deviceMenu; }
    /// `toolTip` says which device is in use, or what is wrong with it.
    void ShowDevice(const QString& toolTip, bool isInTrouble);
    void SetIcons(const QColor& color);

signals:
    /// Sent when the handle is let go, and a few times a second while it is dragged during playing.
    void SeekWanted(int percent);

private:
    void AddSlider();
    int PercentOfSlider() const;
    void Seek();
    void SeekWhileDragged();

    CSCSlider* m_slider;
    HeardDisplay* m_heard;
    CSCLevelMeter* m_meter;
    QMenu* m_deviceMenu;
    QToolButton* m_device;
    QColor m_iconColor;
    bool m_isInTrouble = false;
    bool m_isRunning = false;
    QElapsedTimer m_sinceSeek;
    std::optional<int> m_soughtPercent; ///< during the present drag
};

} // namespace ek
