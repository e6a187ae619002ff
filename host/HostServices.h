// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "ek/HostFrame.h"

#include <QObject>
#include <QString>

namespace ek {

class SettingsStore;

/// What the module gets from the host besides its window. Changed settings are saved when the event loop is reached
/// again, so a burst of changes is one write.
class HostServices final : public QObject, public CHostServices {
    Q_OBJECT

public:
    explicit HostServices(SettingsStore& settings);

    void WriteSetting(const char16_t* section, const char16_t* key, const char16_t* value) override;
    int ReadSetting(const char16_t* section, const char16_t* key, char16_t* buffer, uint32_t maxChars) override;
    void RefreshMenu(const char16_t* moduleName) override;
    void ShowStatusText(const char16_t* text, uint32_t milliseconds) override;

    /// The host's own settings, in a section of their own.
    void WriteOwnSetting(const std::string& key, const std::string& value);
    std::string ReadOwnSetting(const std::string& key) const; ///< empty when there is none

    void SaveSettings();

signals:
    void MenuChanged();
    void StatusText(const QString& text, int milliseconds);

private:
    void SaveLater();

    SettingsStore& m_settings;
    bool m_isSaveDue = false;
    bool m_toldOfFailure = false;
};

class CHostSkin;

/// The object that EkInitialize gets.
class HostObjects final : public CHostFrame {
public:
    HostObjects(CHostServices& services, CHostPlayer& player, CHostRecorder& recorder, CHostSkin& skin)
        : m_services(services), m_player(player), m_recorder(recorder), m_skin(skin)
    {
    }

    uint32_t GetVersion() override { return 0x01000000; }
    CHostServices* GetServices() override { return &m_services; }
    CHostPlayer* GetPlayer() override { return &m_player; }
    CHostRecorder* GetRecorder() override { return &m_recorder; }
    CHostSkin* GetSkin() override { return &m_skin; }

private:
    CHostServices& m_services;
    CHostPlayer& m_player;
    CHostRecorder& m_recorder;
    CHostSkin& m_skin;
};

} // namespace ek
