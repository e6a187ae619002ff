// SPDX-License-Identifier: GPL-3.0-or-later
#include "support/ScriptedPrompts.h"

#include <optional>
#include <utility>

namespace ek {

namespace {

template <class Answer>
std::optional<Answer> TakeFirst(std::deque<Answer>& answers)
{
    if (answers.empty())
        return std::nullopt;
    Answer first = std::move(answers.front());
    answers.pop_front();
    return first;
}

} // namespace

ScriptedPrompts::ScriptedPrompts()
{
    SetPrompts(this);
}

ScriptedPrompts::~ScriptedPrompts()
{
    SetPrompts(nullptr);
}

void ScriptedPrompts::AnswerSoundFormat(std::function<bool(std::string_view extension)> answer)
{
    m_formats.push_back(std::move(answer));
}

MessageAnswer ScriptedPrompts::ShowMessage(std::string_view text, MessageButtons buttons, MessageIcon icon)
{
    m_messages.emplace_back(text);
    m_icons.push_back(icon);
    if (buttons == MessageButtons::Ok)
        return MessageAnswer::Ok;
    return TakeFirst(m_answers).value_or(MessageAnswer::Cancel);
}

std::vector<std::filesystem::path> ScriptedPrompts::ChooseFilesToOpen(std::string_view filter)
{
    m_questions.push_back("open " + std::string(filter));
    return TakeFirst(m_open).value_or(std::vector<std::filesystem::path>());
}

std::optional<std::filesystem::path> ScriptedPrompts::ChooseFileToSave(std::string_view, std::string_view,
                                                                       const std::filesystem::path& suggestion)
{
    m_questions.push_back("save " + suggestion.string());
    return TakeFirst(m_save);
}

bool ScriptedPrompts::ChooseSoundFormat(std::string_view extension)
{
    m_questions.push_back("format " + std::string(extension));
    const auto answer = TakeFirst(m_formats);
    return answer && (*answer)(extension);
}

} // namespace ek
