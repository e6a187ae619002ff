// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "platform/File.h"

#include <cstdint>
#include <filesystem>
#include <string_view>

namespace ek {

/// $TMPDIR when it names a folder, else /var/tmp, else the folder of the program. No trailing separator.
std::filesystem::path TempFolder();

/// A free name in `folder` (default: the temporary folder): a dot (hidden), the prefix, a decimal counter that starts
/// at the system's millisecond ticks and goes up while the name is taken, and the extension, given with its dot.
std::filesystem::path MakeTempFileName(std::string_view prefix, std::string_view extension);
std::filesystem::path MakeTempFileName(std::string_view prefix, std::string_view extension,
                                       const std::filesystem::path& folder);

/// Makes such a name and creates the file, mode 0600, open for reading and writing. A name that another
/// process takes in between is passed over. On failure `path` is the name that was tried last, and nothing is there.
IoStatus CreateTempFile(std::string_view prefix, std::string_view extension, File& file, std::filesystem::path& path);
/// The same in a folder and with a mode of the caller's.
IoStatus CreateTempFile(std::string_view prefix, std::string_view extension, const std::filesystem::path& folder,
                        uint32_t mode, File& file, std::filesystem::path& path);

} // namespace ek
