// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "devices/HostPlayer.h"
#include "devices/HostRecorder.h"
#include "host/AudioSettings.h"
#include "host/TransportState.h"

#include <QObject>
#include <QPointer>
#include <QString>
#include <QTimer>
#include <QWidget>

#include <mutex>
#include <string>

namespace ek {

/// The devices, and what host and module tell each other about them.
class HostAudio final : public QObject, private HostPlayerListener, private HostRecorderListener {
    Q_OBJECT

public:
    explicit HostAudio(const AudioChoice& choice);
    ~HostAudio() override;

    HostPlayer& Player() { return m_player; }
    HostRecorder& Recorder() { return m_recorder; }

    void Choose(const AudioChoice& choice);
    const AudioChoice& Choice() const { return m_choice; }
    QString DeviceText() const; ///< for a person: the device in use, or else the chosen one; empty: the default one
    /// Nothing, or something else than what was chosen, is heard of what plays, or of what played last.
    bool IsDeviceInTrouble() const { return m_isDeviceKnown && m_player.IsInTrouble(); }

    /// The frame that gets commands and messages; null: there is no module.
    void SetModule(QWidget* frame) { m_frame = frame; }
    bool Send(TransportCommand command, intptr_t parameter = 0);
    /// Asks the module to give the player back, whatever it plays.
    void TakePlayerAway();

    TransportState State() const;

signals:
    void StateChanged();  ///< State() may have changed in more than its progress
    void DeviceChanged(); ///< DeviceText() or IsDeviceInTrouble() may have
    /// Of a device; the same only once while playing goes on. `isEnd`: it ended what was played or recorded, of which
    /// nobody else tells.
    void Trouble(const QString& text, bool isEnd);

private:
    void OnPlayerGranted() override;
    void OnPlayerReconfigured() override;
    void OnControlsChanged() override;
    void OnDeviceChanged() override;
    void OnInputGranted() override;
    void OnDeviceTrouble(const std::string& text) override;

    bool SendMessage(uint32_t id, uintptr_t wParam = 0, intptr_t lParam = 0);
    bool IsPlaying() const { return m_player.GetState() != CHostAudioDevice::Stopped; }
    void TakeControls();
    bool HasEndedByItself() const;
    void TellOfTrouble();

    AudioChoice m_choice;
    QPointer<QWidget> m_frame;
    QTimer m_watch; ///< runs while something plays
    QString m_toldTrouble;
    bool m_wasPlaying = false;
    bool m_isDeviceKnown = false; ///< the player's device was opened for the present choice
    std::mutex m_troubleLock;
    std::string m_trouble; ///< not told yet; this and the next with m_troubleLock
    bool m_isEnd = false;
    mutable HostPlayer m_player; ///< the devices last: their threads end before what they report to
    HostRecorder m_recorder;
};

} // namespace ek
