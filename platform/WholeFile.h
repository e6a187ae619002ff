// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "platform/File.h"

#include <filesystem>
#include <string>
#include <string_view>

namespace ek {

// Small files (settings, skins, element trees) that are read and written in one piece.

/// At most 256 MiB (EFBIG). On failure `content` is untouched.
IoStatus ReadWholeFile(const std::filesystem::path& path, std::string& content);

/// Writes beside the target, syncs and renames over it (see RenameOver): on failure the old file is there byte for
/// byte and nothing else is left. A link is followed; the mode of an old file is kept, a new one is private to the
/// user.
IoStatus SaveWholeFile(const std::filesystem::path& path, std::string_view content);

} // namespace ek
