// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "devices/HostPlayer.h"
#include "ek/SoundData.h"

#include <QObject>
#include <QString>

namespace ek {

/// A short quiet tone to try a device with. It has a player of its own: what a module plays goes on beside it.
class TestTone final : public QObject, private HostPlayerListener {
    Q_OBJECT

public:
    TestTone();
    ~TestTone() override;

    void Play(const AudioDeviceChoice& choice); ///< from its beginning, also when it plays already

signals:
    void Failed(const QString& text); ///< nothing is heard, for a reason for a person

private:
    static uint32_t Fill(CHostAudioDevice* device, void* request, void* user);
    uint32_t Deliver(_SOUNDDATAEX_& block);

    void OnPlayerGranted() override {}
    void OnPlayerReconfigured() override {}
    void OnControlsChanged() override {}
    void OnDeviceTrouble(const std::string& text) override;

    uint32_t m_position = 0; ///< the frame that comes next
    HostPlayer m_player;     ///< last: its thread ends before the rest
};

} // namespace ek
