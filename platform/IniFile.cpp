// SPDX-License-Identifier: GPL-3.0-or-later
#include "platform/IniFile.h"
#include "platform/Text.h"
#include "platform/WholeFile.h"

#include <cassert>
#include <cerrno>
#include <system_error>

namespace ek {

namespace {

constexpr std::string_view Blanks = " \t";
constexpr std::string_view LineBreaks = "\r\n";
constexpr std::string_view ByteOrderMark = "\xEF\xBB\xBF";

std::string_view Trimmed(std::string_view text)
{
    const size_t first = text.find_first_not_of(Blanks);
    if (first == std::string_view::npos)
        return {};
    return text.substr(first, text.find_last_not_of(Blanks) - first + 1);
}

std::string_view TakeLine(std::string_view& text)
{
    const size_t end = text.find_first_of(LineBreaks);
    const std::string_view line = text.substr(0, end);
    text.remove_prefix(end == std::string_view::npos ? text.size() : end + 1);
    return line;
}

bool NeedsQuotes(std::string_view value)
{
    return value.starts_with('"') || Trimmed(value) != value || value.find_first_of(LineBreaks) != value.npos;
}

std::string Quoted(std::string_view value)
{
    std::string result = "\"";
    for (const char c : value) {
        if (c == '"' || c == '\\')
            result += '\\';
        if (c == '\n')
            result += "\\n";
        else if (c == '\r')
            result += "\\r";
        else
            result += c;
    }
    return result + '"';
}

char Unescaped(char c)
{
    return c == 'n' ? '\n' : c == 'r' ? '\r' : c;
}

/// Anything but one whole quoted text is taken as it stands.
std::string Unquoted(std::string_view value)
{
    if (!value.starts_with('"'))
        return std::string(value);
    std::string result;
    for (size_t i = 1; i < value.size(); ++i) {
        if (value[i] == '"')
            return i + 1 == value.size() ? result : std::string(value);
        if (value[i] == '\\' && i + 1 < value.size())
            result += Unescaped(value[++i]);
        else
            result += value[i];
    }
    return std::string(value);
}

#ifndef NDEBUG
bool IsName(std::string_view name)
{
    return Trimmed(name) == name && name.find_first_of(LineBreaks) == name.npos;
}

bool IsKey(std::string_view name)
{
    return IsName(name) && !name.empty() && name.find('=') == name.npos && name.find_first_of("[;#") != 0;
}
#endif

} // namespace

bool IniFile::LessIgnoreCase::operator()(std::string_view a, std::string_view b) const
{
    return CompareIgnoreCase(a, b) < 0;
}

bool IniFile::Load(const std::filesystem::path& path)
{
    std::string text;
    const IoStatus status = ReadWholeFile(path, text);
    const bool missing = status.Errno() == ENOENT || status.Errno() == ENOTDIR;
    if (!status.Ok() && !missing)
        return false;
    m_sections.clear();
    Parse(text);
    return true;
}

void IniFile::Parse(std::string_view text)
{
    if (text.starts_with(ByteOrderMark))
        text.remove_prefix(ByteOrderMark.size());
    std::string section;
    while (!text.empty()) {
        const std::string_view line = Trimmed(TakeLine(text));
        if (line.empty() || line.front() == ';' || line.front() == '#')
            continue;
        if (line.front() == '[') {
            if (line.back() == ']')
                section = Trimmed(line.substr(1, line.size() - 2));
            continue;
        }
        const size_t equals = line.find('=');
        if (equals == 0 || equals == line.npos)
            continue;
        std::string key(Trimmed(line.substr(0, equals)));
        m_sections[section].try_emplace(std::move(key), Unquoted(Trimmed(line.substr(equals + 1))));
    }
}

IoStatus IniFile::Save(const std::filesystem::path& path) const
{
    std::string text;
    for (const auto& [name, section] : m_sections) {
        if (!name.empty())
            text += (text.empty() ? "[" : "\n[") + name + "]\n";
        for (const auto& [key, value] : section)
            text += key + " = " + (NeedsQuotes(value) ? Quoted(value) : value) + "\n";
    }
    std::error_code error;
    if (path.has_parent_path())
        std::filesystem::create_directories(path.parent_path(), error);
    return error ? IoStatus(error.value()) : SaveWholeFile(path, text);
}

std::optional<std::string> IniFile::Get(std::string_view section, std::string_view key) const
{
    const auto foundSection = m_sections.find(section);
    if (foundSection == m_sections.end())
        return std::nullopt;
    const auto found = foundSection->second.find(key);
    if (found == foundSection->second.end())
        return std::nullopt;
    return found->second;
}

std::string IniFile::Get(std::string_view section, std::string_view key, std::string_view fallback) const
{
    return Get(section, key).value_or(std::string(fallback));
}

void IniFile::Set(std::string_view section, std::string_view key, std::string_view value)
{
    assert(IsName(section) && IsKey(key));
    m_sections[std::string(section)].insert_or_assign(std::string(key), std::string(value));
}

} // namespace ek
