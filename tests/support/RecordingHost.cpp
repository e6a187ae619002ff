// SPDX-License-Identifier: GPL-3.0-or-later
#include "support/RecordingHost.h"

#include "platform/Text.h"

#include <algorithm>
#include <utility>

namespace ek {

void HostCalls::Add(const std::string& name, const std::vector<std::string>& arguments)
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

template <class Device>
int RecordingDevice<Device>::Start()
{
    Record("Start", {});
    return StartAnswer ? 1 : 0;
}

template <class Device>
void RecordingDevice<Device>::SetFormat(const WAVEFORMATEXTENSIBLE* format)
{
    Format = *format;
    Record("SetFormat", {std::to_string(format->nSamplesPerSec), std::to_string(format->nChannels)});
}

template <class Device>
void RecordingDevice<Device>::SetBufferCount(uint32_t count)
{
    BufferCount = count;
    Record("SetBufferCount", {std::to_string(count)});
}

template <class Device>
void RecordingDevice<Device>::SetBufferSize(uint32_t bytes)
{
    BufferSize = bytes;
    Record("SetBufferSize", {std::to_string(bytes)});
}

template <class Device>
void RecordingDevice<Device>::SetCallback(AudioCallback callback, void* user)
{
    Callback = callback;
    User = user;
    Record("SetCallback", {});
}

template class RecordingDevice<CHostPlayer>;
template class RecordingDevice<CHostRecorder>;

void RecordingPlayer::SetProgress(uint32_t value)
{
    Record("SetProgress", {std::to_string(value)});
}

int RecordingPlayer::Acquire(const char16_t* moduleName)
{
    Record("Acquire", {ToUtf8(moduleName)});
    if (Owner.empty())
        Owner = moduleName;
    return Owner == moduleName ? 1 : 0;
}

void RecordingPlayer::Release(const char16_t* moduleName)
{
    Record("Release", {ToUtf8(moduleName)});
    if (Owner == moduleName)
        Owner.clear();
}

void RecordingPlayer::UpdateControls(const char16_t* moduleName, int canPlay)
{
    Record("UpdateControls", {ToUtf8(moduleName), std::to_string(canPlay)});
}

int RecordingRecorder::AcquireInput(const char16_t* moduleName)
{
    Record("AcquireInput", {ToUtf8(moduleName)});
    return AcquireAnswer ? 1 : 0;
}

void RecordingRecorder::ReleaseInput(const char16_t* moduleName)
{
    Record("ReleaseInput", {ToUtf8(moduleName)});
}

void RecordingRecorder::Register(const char16_t* moduleName, int interested)
{
    Record("Register", {ToUtf8(moduleName), std::to_string(interested)});
}

void RecordingServices::WriteSetting(const char16_t* section, const char16_t* key, const char16_t* value)
{
    m_calls.Add("WriteSetting", {ToUtf8(section), ToUtf8(key), ToUtf8(value)});
    Settings[ToUtf8(section) + '/' + ToUtf8(key)] = ToUtf8(value);
}

int RecordingServices::ReadSetting(const char16_t* section, const char16_t* key, char16_t* buffer, uint32_t maxChars)
{
    m_calls.Add("ReadSetting", {ToUtf8(section), ToUtf8(key), std::to_string(maxChars)});
    const auto found = Settings.find(ToUtf8(section) + '/' + ToUtf8(key));
    if (found == Settings.end() || maxChars == 0)
        return 0;
    const std::u16string value = ToUtf16(found->second).substr(0, maxChars - 1);
    std::ranges::copy(value, buffer);
    buffer[value.size()] = 0;
    return 1;
}

void RecordingServices::RefreshMenu(const char16_t* moduleName)
{
    m_calls.Add("RefreshMenu", {ToUtf8(moduleName)});
}

void RecordingServices::ShowStatusText(const char16_t* text, uint32_t milliseconds)
{
    m_calls.Add("ShowStatusText", {ToUtf8(text), std::to_string(milliseconds)});
}

SkinColor RecordingSkin::GetColor(uint32_t colorId)
{
    AskedColors.push_back(colorId);
    const auto found = Colors.find(colorId);
    return found == Colors.end() ? 0 : found->second;
}

void RecordingSkin::SkinWindow(QWidget*, int recursive)
{
    m_calls.Add("SkinWindow", {std::to_string(recursive)});
}

const enXml* RecordingSkin::GetSkinXml(const char16_t* moduleName, const char16_t* elementName)
{
    m_calls.Add("GetSkinXml", {ToUtf8(moduleName), ToUtf8(elementName)});
    const auto found = Elements.find(ToUtf8(elementName));
    return found == Elements.end() ? nullptr : found->second;
}

} // namespace ek
