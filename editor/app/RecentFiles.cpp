// SPDX-License-Identifier: GPL-3.0-or-later
#include "app/RecentFiles.h"

#include "platform/File.h"
#include "platform/Text.h"

#include <algorithm>

namespace ek {

namespace {

std::string KeyOf(size_t position)
{
    return "RecentFile" + std::to_string(position + 1);
}

bool SameFile(const std::filesystem::path& a, const std::filesystem::path& b)
{
    std::error_code ignored;
    return a == b || (EqualsIgnoreCase(a.native(), b.native()) && std::filesystem::equivalent(a, b, ignored));
}

} // namespace

void RecentFiles::Load(SettingsPort& settings)
{
    for (size_t position = 0; position < Limit && m_paths.size() < Limit; ++position) {
        const auto value = settings.ReadSetting(KeyOf(position));
        const auto isValue = [&](const auto& held) { return SameFile(held, *value); };
        if (value && IsFile(*value) && std::ranges::none_of(m_paths, isValue))
            m_paths.emplace_back(*value);
    }
}

void RecentFiles::Save(SettingsPort& settings) const
{
    for (size_t position = 0; position < Limit; ++position)
        settings.WriteSetting(KeyOf(position), position < m_paths.size() ? m_paths[position].string() : std::string());
}

bool RecentFiles::Add(const std::filesystem::path& path)
{
    std::error_code failed;
    const std::filesystem::path full = std::filesystem::absolute(path, failed);
    if (failed || !IsFile(full) || (!m_paths.empty() && SameFile(m_paths.front(), full)))
        return false;
    std::erase_if(m_paths, [&](const auto& held) { return SameFile(held, full); });
    m_paths.insert(m_paths.begin(), full);
    m_paths.resize(std::min(m_paths.size(), Limit));
    return true;
}

std::filesystem::path RecentFiles::Take(size_t position)
{
    if (position >= m_paths.size())
        return {};
    std::filesystem::path taken = std::move(m_paths[position]);
    m_paths.erase(m_paths.begin() + static_cast<std::ptrdiff_t>(position));
    return taken;
}

} // namespace ek
