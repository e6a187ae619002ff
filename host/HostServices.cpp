// SPDX-License-Identifier: GPL-3.0-or-later
#include "host/HostServices.h"

#include "host/SettingsStore.h"

#include "debugmanager/DebugManager.h"
#include "platform/Text.h"

#include <QTimer>

#include <algorithm>

namespace ek {

namespace {

constexpr char OwnSection[] = "Host";
constexpr int FailureTextMilliseconds = 10000;

} // namespace

HostServices::HostServices(SettingsStore& settings) : m_settings(settings) {}

void HostServices::WriteSetting(const char16_t* section, const char16_t* key, const char16_t* value)
{
    m_settings.Set(ToUtf8(section), ToUtf8(key), ToUtf8(value));
    SaveLater();
}

int HostServices::ReadSetting(const char16_t* section, const char16_t* key, char16_t* buffer, uint32_t maxChars)
{
    const std::optional<std::string> value = m_settings.Get(ToUtf8(section), ToUtf8(key));
    if (!value || maxChars == 0)
        return 0;
    const std::u16string text = ToUtf16(CutToUtf16Units(*value, maxChars - 1));
    std::copy(text.begin(), text.end(), buffer);
    buffer[text.size()] = 0;
    return 1;
}

void HostServices::RefreshMenu(const char16_t*)
{
    emit MenuChanged();
}

void HostServices::ShowStatusText(const char16_t* text, uint32_t milliseconds)
{
    emit StatusText(QString::fromUtf16(text), static_cast<int>(milliseconds));
}

void HostServices::WriteOwnSetting(const std::string& key, const std::string& value)
{
    m_settings.Set(OwnSection, key, value);
    SaveLater();
}

std::string HostServices::ReadOwnSetting(const std::string& key) const
{
    return m_settings.Get(OwnSection, key).value_or(std::string());
}

void HostServices::SaveLater()
{
    if (m_isSaveDue || !m_settings.NeedsSaving())
        return;
    m_isSaveDue = true;
    QTimer::singleShot(0, this, &HostServices::SaveSettings);
}

void HostServices::SaveSettings()
{
    m_isSaveDue = false;
    const IoStatus status = m_settings.Save();
    if (status.Ok())
        return;
    enDebugManager().WriteLogMessage("Host", LogError, "Error: the settings could not be saved: %s",
                                     status.Text().c_str());
    if (!m_toldOfFailure)
        emit StatusText(tr("The settings could not be saved: %1").arg(QString::fromStdString(status.Text())),
                        FailureTextMilliseconds);
    m_toldOfFailure = true;
}

} // namespace ek
