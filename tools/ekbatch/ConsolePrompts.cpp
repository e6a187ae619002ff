// SPDX-License-Identifier: GPL-3.0-or-later
#include "ConsolePrompts.h"

#include "ekdatapr/EkDataPr.h"

#include <utility>

namespace ek {

void ConsolePrompts::PrepareSave(const std::filesystem::path& target, std::map<std::string, std::string> settings)
{
    m_target = target;
    m_settings = std::move(settings);
}

std::string ConsolePrompts::TakeMessages()
{
    return std::exchange(m_messages, {});
}

void ConsolePrompts::AddMessage(std::string_view text)
{
    if (!m_messages.empty())
        m_messages += '\n';
    m_messages += text;
}

MessageAnswer ConsolePrompts::ShowMessage(std::string_view text, MessageButtons buttons, MessageIcon)
{
    if (buttons == MessageButtons::YesNoCancel)
        return MessageAnswer::No; // a script that closes a changed sound has decided
    AddMessage(text);
    return MessageAnswer::Ok;
}

std::vector<std::filesystem::path> ConsolePrompts::ChooseFilesToOpen(std::string_view)
{
    return {};
}

std::optional<std::filesystem::path>
ConsolePrompts::ChooseFileToSave(std::string_view, std::string_view defaultExtension, const std::filesystem::path&)
{
    auto target = std::exchange(m_target, std::nullopt);
    if (!target)
        AddMessage("the sound has no file yet: name one");
    else if (!target->has_extension())
        target->replace_extension(defaultExtension);
    return target;
}

bool ConsolePrompts::ChooseSoundFormat(std::string_view extension)
{
    // Asked a second time, the answer would be the same: the settings do not suit the sound.
    auto settings = std::exchange(m_settings, std::nullopt);
    if (!settings)
        return false;
    std::string error;
    if (EkSetCoderOptions(extension, *settings, error))
        return true;
    AddMessage(error);
    return false;
}

} // namespace ek
