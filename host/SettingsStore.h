// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "platform/IniFile.h"

#include <filesystem>
#include <map>
#include <optional>
#include <string>
#include <utility>

namespace ek {

/// The host's settings: an ini file, with the changes that are not saved yet. Saving merges the changes into the
/// file as it is by then, so two running editors do not undo each other's settings.
class SettingsStore {
public:
    /// Reads the file; a missing one is empty. An empty path keeps everything in memory.
    explicit SettingsStore(std::filesystem::path file);

    std::optional<std::string> Get(const std::string& section, const std::string& key) const;
    /// An unchanged value needs no saving.
    void Set(const std::string& section, const std::string& key, const std::string& value);

    bool NeedsSaving() const { return !m_changes.empty() && !m_file.empty(); }
    /// After a failure the changes are kept, and the next call tries again. A file that exists and cannot be read is
    /// not replaced.
    IoStatus Save();

private:
    std::filesystem::path m_file;
    IniFile m_values;
    std::map<std::pair<std::string, std::string>, std::string> m_changes;
};

} // namespace ek
