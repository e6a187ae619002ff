// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "host/AudioSettings.h"
#include "host/TestTone.h"

#include <QDialog>

#include <functional>

class QComboBox;
class QLabel;
class QPushButton;
class QSpinBox;

namespace ek {

/// What there is to choose from.
struct DeviceLists {
    std::function<std::vector<std::string>()> Systems = ListAudioSystems;
    std::function<std::vector<AudioDeviceInfo>(const std::string& system, bool forCapture)> Devices = ListAudioDevices;
};

/// Asks for the audio system, its devices and the latency, and lets them be tried.
class DeviceDialog : public QDialog {
    Q_OBJECT

public:
    DeviceDialog(const AudioChoice& choice, DeviceLists lists, QWidget* parent);

    void ShowDeviceInUse(const QString& device);

signals:
    void Chosen(const AudioChoice& choice); ///< with OK and with Apply

private:
    void AddRows(const AudioChoice& choice);
    void AddButtons();
    void FillSystems(const std::string& chosen);
    void FillDevices();
    void Test();
    void FillWith(QComboBox& box, bool forCapture, const std::string& chosen);
    AudioChoice Shown() const;
    std::string System() const;

    DeviceLists m_lists;
    AudioChoice m_choice; ///< what was given or applied last
    QComboBox* m_system;
    QComboBox* m_output;
    QComboBox* m_input;
    QSpinBox* m_latency;
    QLabel* m_inUse;
    QPushButton* m_test;
    TestTone m_tone;
};

} // namespace ek
