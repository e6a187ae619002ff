// SPDX-License-Identifier: GPL-3.0-or-later
#include "platform/ProductSettings.h"
#include "platform/Paths.h"

#include <cerrno>
#include <mutex>
#include <optional>

namespace ek {

namespace {

std::mutex g_mutex;
std::optional<IniFile> g_inMemory;

// Read anew at each call: other modules of the product write the same file.
std::filesystem::path SettingsPath()
{
    return ConfigHome() / "Quolm" / "Ek Quintaphonica" / "Ek Quintaphonica Zint 5.0.ini";
}

} // namespace

std::string GetProductSetting(std::string_view section, std::string_view key, std::string_view fallback)
{
    const std::lock_guard lock(g_mutex);
    if (g_inMemory)
        return g_inMemory->Get(section, key, fallback);
    IniFile file;
    file.Load(SettingsPath());
    return file.Get(section, key, fallback);
}

IoStatus SetProductSetting(std::string_view section, std::string_view key, std::string_view value)
{
    const std::lock_guard lock(g_mutex);
    if (g_inMemory) {
        g_inMemory->Set(section, key, value);
        return {};
    }
    if (ConfigHome().empty())
        return IoStatus(ENOENT);
    IniFile file;
    // Saving what could not be read would lose every other setting.
    if (!file.Load(SettingsPath()))
        return IoStatus(EIO);
    file.Set(section, key, value);
    return file.Save(SettingsPath());
}

void KeepProductSettingsInMemory()
{
    const std::lock_guard lock(g_mutex);
    g_inMemory.emplace();
}

} // namespace ek
