// SPDX-License-Identifier: GPL-3.0-or-later
#include "Script.h"

namespace ek {

namespace {

class WordSplitter {
public:
    explicit WordSplitter(std::string_view line) : m_line(line) {}

    std::optional<std::vector<std::string>> Split()
    {
        while (m_at < m_line.size() && !IsComment())
            Step();
        if (m_quoted)
            return std::nullopt;
        EndWord();
        return std::move(m_words);
    }

private:
    bool IsComment() const { return !m_quoted && !m_inWord && m_line[m_at] == '#'; }

    void Step()
    {
        const char c = m_line[m_at++];
        if (c == '"') {
            m_quoted = !m_quoted;
            m_inWord = true;
        } else if (m_quoted && c == '\\' && m_at < m_line.size() && IsEscapable(m_line[m_at])) {
            m_word += m_line[m_at++];
        } else if (!m_quoted && (c == ' ' || c == '\t' || c == '\r')) {
            EndWord();
        } else {
            m_word += c;
            m_inWord = true;
        }
    }

    static bool IsEscapable(char c) { return c == '"' || c == '\\'; }

    void EndWord()
    {
        if (m_inWord)
            m_words.push_back(std::move(m_word));
        m_word.clear();
        m_inWord = false;
    }

    std::string_view m_line;
    size_t m_at = 0;
    bool m_quoted = false;
    bool m_inWord = false;
    std::string m_word;
    std::vector<std::string> m_words;
};

} // namespace

std::optional<std::vector<std::string>> SplitWords(std::string_view line)
{
    return WordSplitter(line).Split();
}

bool ReadScript(std::istream& input, const std::string& name, std::vector<ScriptCommand>& commands, std::string& error)
{
    std::string line;
    for (int number = 1; std::getline(input, line); ++number) {
        const std::string origin = name + ":" + std::to_string(number);
        auto words = SplitWords(line);
        if (!words) {
            error = origin + ": a double quote is not closed";
            return false;
        }
        if (!words->empty())
            commands.push_back({origin, std::move(*words)});
    }
    if (input.bad())
        error = name + ": the script could not be read to its end";
    return !input.bad();
}

} // namespace ek
