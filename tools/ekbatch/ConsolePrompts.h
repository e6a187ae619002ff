// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "framework/Prompts.h"

#include <map>
#include <string>

namespace ek {

/// Prompts without a person: messages are collected, questions are answered from the command in hand.
class ConsolePrompts final : public Prompts {
public:
    /// What the next save command answers when it is asked for a file and for the coder's settings.
    void PrepareSave(const std::filesystem::path& target, std::map<std::string, std::string> settings);

    /// The texts a person would have been shown since the last call, joined by newlines.
    std::string TakeMessages();

    MessageAnswer ShowMessage(std::string_view text, MessageButtons buttons, MessageIcon icon) override;
    std::vector<std::filesystem::path> ChooseFilesToOpen(std::string_view filter) override;
    std::optional<std::filesystem::path> ChooseFileToSave(std::string_view filter, std::string_view defaultExtension,
                                                          const std::filesystem::path& suggestion) override;
    bool ChooseSoundFormat(std::string_view extension) override;

private:
    void AddMessage(std::string_view text);

    std::optional<std::filesystem::path> m_target;
    std::optional<std::map<std::string, std::string>> m_settings;
    std::string m_messages;
};

} // namespace ek
