// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "platform/File.h"

#include <filesystem>
#include <map>
#include <optional>
#include <string>
#include <string_view>

namespace ek {

/// Sections of key = value, UTF-8. Section and key names compare without regard to case. Values that would not
/// survive a line of their own (newlines, leading or trailing blanks, a quote or backslash in front) are quoted.
class IniFile {
public:
    /// A missing file is an empty one; what cannot be parsed is passed over. False only when the file exists
    /// and cannot be read.
    bool Load(const std::filesystem::path& path);
    /// Written beside the target, synced and renamed over it; makes the folder when it is missing.
    IoStatus Save(const std::filesystem::path& path) const;

    std::optional<std::string> Get(std::string_view section, std::string_view key) const;
    std::string Get(std::string_view section, std::string_view key, std::string_view fallback) const;
    void Set(std::string_view section, std::string_view key, std::string_view value);

private:
    struct LessIgnoreCase {
        using is_transparent = void;
        bool operator()(std::string_view a, std::string_view b) const;
    };
    using Section = std::map<std::string, std::string, LessIgnoreCase>;
    std::map<std::string, Section, LessIgnoreCase> m_sections;
};

} // namespace ek
