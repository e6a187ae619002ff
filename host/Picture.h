// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <filesystem>

namespace ek {

class HostWindow;

/// Draws the window as it is now into a PNG, at the screen's scale. False when the file could not be written.
bool SavePicture(HostWindow& window, const std::filesystem::path& file);

} // namespace ek
