// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "platform/File.h"

#include <filesystem>

namespace ek {

// Before a file is saved by writing another one and renaming it over the target.

/// Where a write to the path would land: links are followed, also one that leads to a file yet to be made. Absolute.
std::filesystem::path FollowLinks(const std::filesystem::path& path);

/// Success when nothing is at the path, or a regular file that may be written. The folder's permission would be enough
/// to put another file in its place, but a file that its owner has made read-only is meant to stay.
IoStatus MayReplace(const std::filesystem::path& target);

} // namespace ek
