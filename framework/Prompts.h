// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "servicefuncs/MessageBox.h"

#include <filesystem>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

namespace ek {

/// Every question that the editor asks a person. There are three implementations: dialogs, a test's script and
/// the console of ekbatch. Filters are pairs of description and pattern, each followed by "|".
class Prompts : public MessageBoxPort {
public:
    /// Empty: the user cancelled.
    virtual std::vector<std::filesystem::path> ChooseFilesToOpen(std::string_view filter) = 0;
    /// `suggestion` is the present path or title. A name without extension gets the one of the chosen filter,
    /// or `defaultExtension` (without dot). An existing file was confirmed.
    virtual std::optional<std::filesystem::path> ChooseFileToSave(std::string_view filter,
                                                                  std::string_view defaultExtension,
                                                                  const std::filesystem::path& suggestion) = 0;
    /// Lets the user choose the coder settings for the extension (without dot); they are stored when the answer
    /// is true. False: cancelled.
    virtual bool ChooseSoundFormat(std::string_view extension) = 0;
};

/// The prompts in force; the message boxes of AfxSCMessageBox go there too. Null is allowed at start and exit
/// only. User-interface thread.
void SetPrompts(Prompts* prompts);
Prompts& CurrentPrompts();

} // namespace ek
