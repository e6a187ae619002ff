// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "platform/File.h"

#include <filesystem>
#include <map>
#include <optional>
#include <string>
#include <string_view>

namespace ek {

/// Sections of key = value, UTF-8. Section and key names compare without regard to case. Any value comes back exactly:
/// those that would not survive a line of their own (line breaks, blanks at an end, a quote in front) are quoted.
/// Comments are whole lines that begin with ; or #, and do not survive saving.
class IniFile {
public:
    /// A missing file is an empty one; what cannot be parsed is passed over. Of two equal keys the first holds.
    /// False only when the file exists and cannot be read; what was loaded before then stays.
    bool Load(const std::filesystem::path& path);
    /// Written beside the target, synced and renamed over it; makes the folder when it is missing.
    IoStatus Save(const std::filesystem::path& path) const;

    std::optional<std::string> Get(std::string_view section, std::string_view key) const;
    std::string Get(std::string_view section, std::string_view key, std::string_view fallback) const;
    /// Names hold no line breaks and no blanks at an end. A key is not empty, holds no = and begins with none of [;#.
    void Set(std::string_view section, std::string_view key, std::string_view value);

private:
    struct LessIgnoreCase {
        using is_transparent = void;
        bool operator()(std::string_view a, std::string_view b) const;
    };
    using Section = std::map<std::string, std::string, LessIgnoreCase>;

    void Parse(std::string_view text);

    std::map<std::string, Section, LessIgnoreCase> m_sections;
};

} // namespace ek
