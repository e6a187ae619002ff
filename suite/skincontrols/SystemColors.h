// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <cstdint>

namespace ek {

/// The usual indices of system colours.
enum SystemColor : uint32_t {
    ColorScrollBar = 0,
    ColorWindow = 5,
    ColorWindowText = 8,
    ColorHighlight = 13,
    ColorHighlightText = 14,
    ColorButtonFace = 15,
    ColorButtonShadow = 16,
    ColorGrayText = 17,
    ColorButtonText = 18,
    ColorButtonHighlight = 20,
    ColorInfoText = 23,
    ColorInfoBackground = 24,
};

} // namespace ek
