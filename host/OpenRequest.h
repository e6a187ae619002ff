// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <filesystem>
#include <string>
#include <vector>

namespace ek {

/// A request to open files, as the module takes it: the word Open, then each path in double quotes.
struct OpenRequest {
    std::u16string Text; ///< empty when there is nothing to open
    /// What is not asked for, as texts for a person, UTF-8: files that are not there, and those whose names the request
    /// cannot carry. A double quote would end the name early, so that another file would be opened; bytes that are not
    /// UTF-8 have no UTF-16 form.
    std::vector<std::string> Refusals;
};

OpenRequest MakeOpenRequest(const std::vector<std::filesystem::path>& files);

} // namespace ek
