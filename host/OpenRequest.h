// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <filesystem>
#include <string>
#include <vector>

namespace ek {

/// A request to open files, as the module takes it: the word Open, then each path in double quotes.
struct OpenRequest {
    std::u16string Text; ///< empty when there is nothing to open
    /// Files whose names the request cannot carry: a double quote would end the name early and another file
    /// would be opened, and bytes that are not UTF-8 have no UTF-16 form.
    std::vector<std::filesystem::path> Refused;
};

OpenRequest MakeOpenRequest(const std::vector<std::filesystem::path>& files);

/// For a person: why the file was refused and what to do instead. UTF-8.
std::string RefusalText(const std::filesystem::path& file);

} // namespace ek
