// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <string_view>

class QWidget;

namespace ek {

/// `show`: makes the settings panel of the coder for `extension` (without dot) as a child of `window`, filled
/// with the settings in force, at its natural size. Otherwise: keeps what the panel inside `window` shows and removes
/// the panel. False when there is no coder for the extension or no panel in the window.
bool EkCoderShowSettings(std::string_view extension, QWidget* window, bool show);

} // namespace ek
