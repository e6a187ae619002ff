// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "host/TransportActions.h"
#include "host/TransportKeys.h"

#include <QElapsedTimer>
#include <QPointer>
#include <QTimer>

class QMainWindow;
class QMessageBox;

namespace ek {

class DeviceDialog;
struct AudioChoice;
class HostAudio;
class TransportBar;

/// The transport of a window: the bar, the menu, the keys and the dialog of the devices, kept to what the player does
/// and turned into commands for the module.
class Transport : public QObject {
    Q_OBJECT

public:
    /// Everything given outlives it.
    Transport(HostAudio& audio, QMainWindow& window);

    TransportActions& Actions() { return m_actions; }
    TransportBar& Bar() { return *m_bar; }
    QMenu* Menu() const { return m_menu; }
    void SetIcons(const QColor& color);
    void SetCanRecord(bool canRecord); ///< what the module says of its recorder

signals:
    void StatusText(const QString& text, int milliseconds);
    void DevicesChosen(const AudioChoice& choice); ///< by a person; they are in use already

private:
    void Refresh();
    void ShowPlaying();
    void Run(TransportCommand command, intptr_t parameter = 0);
    void TellOfTrouble(const QString& text, bool isEnd);
    void TakeDevice();
    void ShowDevice();
    void FillDeviceMenu();
    void AddDevice(const QString& text, const std::string& device);
    void TakeChoice(const AudioChoice& choice);
    void OpenDeviceDialog();

    HostAudio& m_audio;
    QMainWindow& m_window;
    TransportActions m_actions;
    TransportKeys m_keys;
    TransportBar* m_bar;
    QMenu* m_menu;
    QTimer m_look; ///< at what plays
    QElapsedTimer m_sinceLook;
    QPointer<DeviceDialog> m_dialog;
    QPointer<QMessageBox> m_message;
    QString m_trouble; ///< of the device; kept until the one wished for is in use
    bool m_canRecord = false;
};

} // namespace ek
