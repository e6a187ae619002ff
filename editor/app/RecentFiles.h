// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <cstddef>
#include <filesystem>
#include <optional>
#include <string>
#include <vector>

namespace ek {

/// Where the list is kept between sessions.
class SettingsPort {
public:
    virtual std::optional<std::string> ReadSetting(const std::string& key) = 0; ///< empty: there is no such key
    virtual void WriteSetting(const std::string& key, const std::string& value) = 0;

protected:
    ~SettingsPort() = default;
};

/// The files opened or saved last, the latest first.
class RecentFiles {
public:
    static constexpr size_t Limit = 10;

    const std::vector<std::filesystem::path>& Paths() const { return m_paths; }

    /// Appends the stored entries that are still files, each once.
    void Load(SettingsPort& settings);
    void Save(SettingsPort& settings) const; ///< positions without a file are stored empty
    /// Puts the file in front. False, and nothing changed, when it is there already or is no file. One file under two
    /// spellings of its name, on a disk that does not tell them apart, has one entry.
    bool Add(const std::filesystem::path& path);
    std::filesystem::path Take(size_t position); ///< out of the list; empty when there is no such entry

private:
    std::vector<std::filesystem::path> m_paths;
};

} // namespace ek
