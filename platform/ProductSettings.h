// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "platform/IniFile.h"

#include <map>
#include <string>
#include <string_view>

namespace ek {

/// Settings of the product as a whole, shared by its modules: ConfigHome()/Quolm/Ek Quintaphonica/
/// "Ek Quintaphonica Zint 5.0.ini". Sections are named like folders: "Providers\wav". Any thread.
std::string GetProductSetting(std::string_view section, std::string_view key, std::string_view fallback);
/// Stored at once, and nobody else's change is lost; the status is that of the write.
IoStatus SetProductSetting(std::string_view section, std::string_view key, std::string_view value);
/// Several keys of a section in one write: all of them or none.
IoStatus SetProductSettings(std::string_view section, const std::map<std::string, std::string>& values);

/// From now on this process starts from the defaults and stores nothing: for scripts, which must not depend on what a
/// person chose last, nor change it.
void KeepProductSettingsInMemory();

} // namespace ek
