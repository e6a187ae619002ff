// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "app/RecentFiles.h"

namespace ek {

class CHostServices;

/// The module's section of the host's settings. Without services nothing is kept.
class HostSettings final : public SettingsPort {
public:
    explicit HostSettings(CHostServices* services) : m_services(services) {}

    std::optional<std::string> ReadSetting(const std::string& key) override;
    void WriteSetting(const std::string& key, const std::string& value) override;

private:
    CHostServices* m_services;
};

} // namespace ek
