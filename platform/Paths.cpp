// SPDX-License-Identifier: GPL-3.0-or-later
#include "platform/Paths.h"
#include "platform/File.h"
#include "platform/IniFile.h"
#include "platform/Text.h"

#include <array>
#include <cstdlib>
#include <pwd.h>
#include <system_error>
#include <unistd.h>

namespace ek {

namespace {

constexpr size_t MaxProductNameUnits = 99;
constexpr size_t MaxLanguageNameUnits = 20;

std::filesystem::path HomeFolder()
{
    if (const char* const home = std::getenv("HOME"); home && *home)
        return home;
    std::array<char, 4096> buffer;
    passwd record{};
    passwd* found = nullptr;
    getpwuid_r(getuid(), &record, buffer.data(), buffer.size(), &found);
    return found ? found->pw_dir : "";
}

/// A base folder named by the environment; relative names there do not count.
std::filesystem::path BaseFolder(const char* variable, const char* underHome)
{
    const char* const value = std::getenv(variable);
    if (value && *value == '/')
        return value;
    const std::filesystem::path home = HomeFolder();
    return home.empty() ? home : home / underHome;
}

std::string DefaultProductName()
{
    IniFile defaults;
    defaults.Load(ResolveModulePath("appdatadefault.ini"));
    const std::string name = defaults.Get("General", "Name", "Ek Quintaphonica Zint 5.0");
    return std::string(CutToUtf16Units(name, MaxProductNameUnits));
}

} // namespace

std::filesystem::path ExecutableFolder()
{
    std::error_code error;
    return std::filesystem::read_symlink("/proc/self/exe", error).parent_path();
}

std::filesystem::path DataHome()
{
    return BaseFolder("XDG_DATA_HOME", ".local/share");
}

std::filesystem::path ConfigHome()
{
    return BaseFolder("XDG_CONFIG_HOME", ".config");
}

std::filesystem::path StateHome()
{
    return BaseFolder("XDG_STATE_HOME", ".local/state");
}

std::filesystem::path ResolveModulePath(const std::filesystem::path& name)
{
    return ExecutableFolder() / name;
}

std::filesystem::path GetUserDataFilePath(const char* fileName, const char* productName)
{
    if (!fileName)
        return {};
    const std::filesystem::path base = DataHome();
    if (base.empty())
        return {};
    const std::filesystem::path folder = base / "Quolm" / (productName ? productName : DefaultProductName());
    std::error_code error;
    std::filesystem::create_directories(folder, error);
    return IsFolder(folder) ? folder / fileName : std::filesystem::path();
}

std::filesystem::path GetLanguageFilePath(const char* subFolder, const char* fileName)
{
    if (!fileName)
        return {};
    const std::filesystem::path settings = GetUserDataFilePath("Language.ini");
    if (settings.empty())
        return {};
    IniFile language;
    language.Load(settings);
    const std::string shortName = language.Get("Language", "ShortName", "eng");
    std::filesystem::path folder = settings.parent_path();
    if (subFolder)
        folder /= subFolder;
    return folder / CutToUtf16Units(shortName, MaxLanguageNameUnits) / fileName;
}

} // namespace ek
