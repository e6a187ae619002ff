// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <filesystem>
#include <string>
#include <string_view>
#include <vector>

namespace ek {

/// One pair of a file dialog's filter.
struct FileType {
    std::string Description;
    std::vector<std::string> Patterns; ///< "*.wav"
    bool operator==(const FileType&) const = default;
};

/// The pairs of "Description|*.a;*.b|...|"; a description without a pattern ends the list.
std::vector<FileType> ParseFileFilter(std::string_view filter);

/// The filter of the open dialog from the list of readable types: session files join the first pair, which covers
/// all types, and get a pair of their own at the end. Empty when `readableTypes` has no pair.
std::string MakeOpenFileFilter(std::string_view readableTypes, bool withAllFiles);

/// `typed` as it is when its extension belongs to one of the types. Otherwise what looks like an extension is a
/// part of the name ("Take 1.2"), and the extension of the chosen type is appended, or `defaultExtension` (without
/// dot) when that type has none.
std::filesystem::path CompleteFileName(const std::filesystem::path& typed, const std::vector<FileType>& types,
                                       size_t chosen, std::string_view defaultExtension);

} // namespace ek
