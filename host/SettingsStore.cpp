// SPDX-License-Identifier: GPL-3.0-or-later
#include "host/SettingsStore.h"

#include <cerrno>

namespace ek {

SettingsStore::SettingsStore(std::filesystem::path file) : m_file(std::move(file))
{
    // A file that cannot be read is reported when something is to be saved to it.
    if (!m_file.empty())
        static_cast<void>(m_values.Load(m_file));
}

std::optional<std::string> SettingsStore::Get(const std::string& section, const std::string& key) const
{
    return m_values.Get(section, key);
}

void SettingsStore::Set(const std::string& section, const std::string& key, const std::string& value)
{
    if (m_values.Get(section, key) == value)
        return;
    m_values.Set(section, key, value);
    m_changes[{section, key}] = value;
}

IoStatus SettingsStore::Save()
{
    if (!NeedsSaving())
        return {};
    IniFile merged;
    if (!merged.Load(m_file))
        return IoStatus(EACCES);
    for (const auto& [name, value] : m_changes)
        merged.Set(name.first, name.second, value);
    const IoStatus status = merged.Save(m_file);
    if (status.Ok())
        m_changes.clear();
    return status;
}

} // namespace ek
