// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "framework/Prompts.h"

#include <deque>
#include <functional>
#include <string>
#include <vector>

namespace ek {

/// Answers questions from a script and records them. A question without an answer left is cancelled; a message
/// box with no choice is always Ok. In force while it lives.
class ScriptedPrompts final : public Prompts {
public:
    ScriptedPrompts();
    ~ScriptedPrompts() override;

    void AnswerMessage(MessageAnswer answer) { m_answers.push_back(answer); }
    void AnswerOpen(std::vector<std::filesystem::path> paths) { m_open.push_back(std::move(paths)); }
    void AnswerSave(const std::filesystem::path& path) { m_save.push_back(path); }
    void AnswerSoundFormat(bool ok)
    {
        AnswerSoundFormat([ok](std::string_view) { return ok; });
    }
    void AnswerSoundFormat(std::function<bool(std::string_view extension)> answer); ///< may set coder options

    const std::vector<std::string>& Messages() const { return m_messages; }
    const std::vector<MessageIcon>& Icons() const { return m_icons; }
    const std::vector<std::string>& Questions() const { return m_questions; } ///< "open ...", "save ...", "format ..."

    MessageAnswer ShowMessage(std::string_view text, MessageButtons buttons, MessageIcon icon) override;
    std::vector<std::filesystem::path> ChooseFilesToOpen(std::string_view filter) override;
    std::optional<std::filesystem::path> ChooseFileToSave(std::string_view filter, std::string_view defaultExtension,
                                                          const std::filesystem::path& suggestion) override;
    bool ChooseSoundFormat(std::string_view extension) override;

private:
    std::deque<MessageAnswer> m_answers;
    std::deque<std::vector<std::filesystem::path>> m_open;
    std::deque<std::filesystem::path> m_save;
    std::deque<std::function<bool(std::string_view)>> m_formats;
    std::vector<std::string> m_messages;
    std::vector<MessageIcon> m_icons;
    std::vector<std::string> m_questions;
};

} // namespace ek
