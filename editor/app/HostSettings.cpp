// SPDX-License-Identifier: GPL-3.0-or-later
#include "app/HostSettings.h"

#include "app/ModuleIdentity.h"
#include "ek/HostFrame.h"
#include "platform/Text.h"

namespace ek {

namespace {
constexpr uint32_t BufferChars = 1024;
}

std::optional<std::string> HostSettings::ReadSetting(const std::string& key)
{
    char16_t buffer[BufferChars] = {};
    if (!m_services || !m_services->ReadSetting(ModuleNameUtf16, ToUtf16(key).c_str(), buffer, BufferChars))
        return std::nullopt;
    buffer[BufferChars - 1] = 0;
    return ToUtf8(buffer);
}

void HostSettings::WriteSetting(const std::string& key, const std::string& value)
{
    if (m_services)
        m_services->WriteSetting(ModuleNameUtf16, ToUtf16(key).c_str(), ToUtf16(value).c_str());
}

} // namespace ek
