// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <filesystem>
#include <string>
#include <string_view>

namespace ek {

std::filesystem::path ExecutableFolder();
std::filesystem::path DataHome();   ///< $XDG_DATA_HOME, default ~/.local/share; shared data of the installation
std::filesystem::path ConfigHome(); ///< $XDG_CONFIG_HOME, default ~/.config
std::filesystem::path StateHome();  ///< $XDG_STATE_HOME, default ~/.local/state

/// An absolute path as it is; any other name inside the folder of the executable.
std::filesystem::path ResolveModulePath(const std::filesystem::path& name);

/// The path of a per-installation data file: DataHome()/Quolm/<product>/<fileName>, folders made on the way.
/// Without a product name it is key "Name" of section "General" in "appdatadefault.ini" beside the executable
/// (99 characters at most), default "Ek Quintaphonica Zint 5.0". nullptr for the file name, or a folder that
/// cannot be had, gives an empty path; an empty file name gives the folder with a trailing separator.
std::filesystem::path GetUserDataFilePath(const char* fileName, const char* productName = nullptr);

/// The path of a data file in the user's language: the user data folder, the sub-folder unless null, the short
/// name of the language ("Language.ini", section "Language", key "ShortName", default "eng"), the file name.
std::filesystem::path GetLanguageFilePath(const char* subFolder, const char* fileName);

} // namespace ek
