// SPDX-License-Identifier: GPL-3.0-or-later
#include "platform/ProductSettings.h"
#include "platform/FileLock.h"
#include "platform/Paths.h"

#include <cerrno>
#include <mutex>
#include <optional>
#include <system_error>

namespace ek {

namespace {

std::mutex g_mutex;
std::optional<IniFile> g_inMemory;

/// Read anew at each call: other modules of the product write the same file. Empty without a home folder, where a name
/// would mean a file of the folder that the program happens to be in.
std::filesystem::path SettingsPath()
{
    const std::filesystem::path home = ConfigHome();
    return home.empty() ? home : home / "Quolm" / "Ek Quintaphonica" / "Ek Quintaphonica Zint 5.0.ini";
}

IoStatus Store(const std::filesystem::path& path, std::string_view section,
               const std::map<std::string, std::string>& values)
{
    IniFile file;
    // Saving what could not be read would lose every other setting.
    if (!file.Load(path))
        return IoStatus(EIO);
    for (const auto& [key, value] : values)
        file.Set(section, key, value);
    return file.Save(path);
}

} // namespace

std::string GetProductSetting(std::string_view section, std::string_view key, std::string_view fallback)
{
    const std::lock_guard lock(g_mutex);
    if (g_inMemory)
        return g_inMemory->Get(section, key, fallback);
    const std::filesystem::path path = SettingsPath();
    IniFile file;
    if (!path.empty())
        file.Load(path);
    return file.Get(section, key, fallback);
}

IoStatus SetProductSetting(std::string_view section, std::string_view key, std::string_view value)
{
    return SetProductSettings(section, {{std::string(key), std::string(value)}});
}

IoStatus SetProductSettings(std::string_view section, const std::map<std::string, std::string>& values)
{
    const std::lock_guard lock(g_mutex);
    if (g_inMemory) {
        for (const auto& [key, value] : values)
            g_inMemory->Set(section, key, value);
        return {};
    }
    const std::filesystem::path path = SettingsPath();
    if (path.empty())
        return IoStatus(ENOENT);
    std::error_code error;
    std::filesystem::create_directories(path.parent_path(), error);
    // Another process that stores between our reading and writing would lose its setting. Where the file system knows
    // no locks that is a lesser evil than storing nothing.
    const FileLock fileLock(path.string() + ".lock");
    return Store(path, section, values);
}

void KeepProductSettingsInMemory()
{
    const std::lock_guard lock(g_mutex);
    g_inMemory.emplace();
}

} // namespace ek
