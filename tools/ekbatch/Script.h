// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <istream>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

namespace ek {

/// One command of a script: its words, and where it stands for error messages.
struct ScriptCommand {
    std::string Origin; ///< "SCRIPT:LINE"
    std::vector<std::string> Words;
};

/// Splits a line into words at blanks. Inside double quotes blanks belong to the word, and \" and \\ stand for a
/// quote and a backslash. A # outside quotes, at the start of a word, begins a comment. Nothing when a quote is
/// left open.
std::optional<std::vector<std::string>> SplitWords(std::string_view line);

/// The commands of a script, blank and comment lines left out. A line with an open quote gives false and `error`.
bool ReadScript(std::istream& input, const std::string& name, std::vector<ScriptCommand>& commands, std::string& error);

} // namespace ek
