// SPDX-License-Identifier: GPL-3.0-or-later
#include "app/FileFilter.h"

#include "platform/Text.h"

#include <algorithm>

namespace ek {

namespace {

constexpr std::string_view SessionPattern = "*.mts";

std::vector<std::string> Split(std::string_view text, char separator)
{
    std::vector<std::string> parts;
    while (!text.empty()) {
        const size_t end = std::min(text.find(separator), text.size());
        parts.emplace_back(text.substr(0, end));
        text.remove_prefix(std::min(end + 1, text.size()));
    }
    return parts;
}

std::string Join(const FileType& type)
{
    std::string text = type.Description + '|';
    for (size_t i = 0; i < type.Patterns.size(); ++i)
        text += (i == 0 ? "" : ";") + type.Patterns[i];
    return text + '|';
}

/// ".wav" of "*.wav"; empty for a pattern with anything but a plain extension.
std::string_view ExtensionOf(std::string_view pattern)
{
    if (!pattern.starts_with("*.") || pattern.find_first_of("*?", 1) != std::string_view::npos)
        return {};
    return pattern.substr(1);
}

bool HasExtension(const FileType& type, std::string_view extension)
{
    return std::ranges::any_of(type.Patterns, [&](const std::string& pattern) {
        return !ExtensionOf(pattern).empty() && EqualsIgnoreCase(ExtensionOf(pattern), extension);
    });
}

} // namespace

std::vector<FileType> ParseFileFilter(std::string_view filter)
{
    const std::vector<std::string> fields = Split(filter, '|');
    std::vector<FileType> types;
    for (size_t i = 0; i + 1 < fields.size() && !fields[i + 1].empty(); i += 2)
        types.push_back({fields[i], Split(fields[i + 1], ';')});
    return types;
}

std::string MakeOpenFileFilter(std::string_view readableTypes, bool withAllFiles)
{
    std::vector<FileType> types = ParseFileFilter(readableTypes);
    if (types.empty())
        return {};
    types.front().Patterns.emplace_back(SessionPattern);
    types.push_back({"Multitrack Session Files (*.mts)", {std::string(SessionPattern)}});
    std::string filter = withAllFiles ? "All Files (*.*)|*.*|" : "";
    for (const FileType& type : types)
        filter += Join(type);
    return filter + '|';
}

std::filesystem::path CompleteFileName(const std::filesystem::path& typed, const std::vector<FileType>& types,
                                       size_t chosen, std::string_view defaultExtension)
{
    const std::string extension = typed.extension().string();
    if (std::ranges::any_of(types, [&](const FileType& type) { return HasExtension(type, extension); }))
        return typed;
    std::filesystem::path completed = typed;
    if (chosen < types.size() && !types[chosen].Patterns.empty()) {
        const std::string_view own = ExtensionOf(types[chosen].Patterns.front());
        if (!own.empty())
            return completed += own;
    }
    completed += '.';
    return completed += defaultExtension;
}

} // namespace ek
