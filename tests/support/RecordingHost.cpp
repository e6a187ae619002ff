// SPDX-License-Identifier: GPL-3.0-or-later
#include "support/RecordingHost.h"

#include "platform/Text.h"

#include <algorithm>
#include <utility>

namespace ek {

std::string HostCalls::ToText(const char16_t* text)
{
    return ToUtf8(text);
}

void HostCalls::AddLine(const std::string& name, const std::vector<std::string>& arguments)
{
    std::string line = name + '(';
    for (size_t i = 0; i < arguments.size(); ++i)
        line += (i == 0 ? "" : ", ") + arguments[i];
    m_lines.push_back(line + ')');
}

std::vector<std::string> HostCalls::Take()
{
    return std::exchange(m_lines, {});
}

size_t HostCalls::Count(const std::string& call) const
{
    return static_cast<size_t>(std::ranges::count(m_lines, call));
}

int RecordingPlayer::Acquire(const char16_t* moduleName)
{
    Calls.Add("Player.Acquire", moduleName);
    if (Owner.empty()) {
        Owner = moduleName;
        if (OnGranted)
            OnGranted();
    }
    return Owner == moduleName ? 1 : 0;
}

void RecordingPlayer::Release(const char16_t* moduleName)
{
    Calls.Add("Player.Release", moduleName);
    if (Owner == moduleName)
        Owner.clear();
}

void RecordingServices::WriteSetting(const char16_t* section, const char16_t* key, const char16_t* value)
{
    m_calls.Add("WriteSetting", section, key, value);
    Settings[std::u16string(section) + u'/' + key] = ToUtf8(value);
}

int RecordingServices::ReadSetting(const char16_t* section, const char16_t* key, char16_t* buffer, uint32_t maxChars)
{
    m_calls.Add("ReadSetting", section, key, maxChars);
    const auto found = Settings.find(std::u16string(section) + u'/' + key);
    if (found == Settings.end() || maxChars == 0)
        return 0;
    const std::u16string value = ToUtf16(found->second).substr(0, maxChars - 1);
    std::ranges::copy(value, buffer);
    buffer[value.size()] = 0;
    return 1;
}

const enXml* RecordingSkin::GetSkinXml(const char16_t* moduleName, const char16_t* elementName)
{
    m_calls.Add("GetSkinXml", moduleName, elementName);
    return Elements[elementName];
}

} // namespace ek
