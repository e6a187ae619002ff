// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "platform/File.h"

#include <filesystem>
#include <string>
#include <string_view>

namespace ek {

// Small files (settings, skins, element trees) that are read and written in one piece.

/// At most 256 MiB (EFBIG), of a regular file (see File::Open). On failure `content` is untouched.
IoStatus ReadWholeFile(const std::filesystem::path& path, std::string& content);

/// Writes beside the target, syncs and renames over it: on failure the old file is there byte for byte and nothing else
/// is left; only when the last sync, that of the folder, is what failed, the new file is in place. A link is followed,
/// also to a file yet to be made; what may not be replaced (see MayReplace) is refused. The mode of an old file is
/// kept, a new one is private to the user.
IoStatus SaveWholeFile(const std::filesystem::path& path, std::string_view content);

} // namespace ek
