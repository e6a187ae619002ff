// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "ek/HostSkin.h"

#include <array>
#include <optional>
#include <string_view>

namespace ek {

struct SkinColorName {
    std::string_view Name;
    uint32_t Id;
};

/// The 38 names of colours that skins use: the system colours 0 to 28 (there is no 25) under their usual names,
/// then the editor's own.
const std::array<SkinColorName, 38>& SkinColorNames();

std::optional<uint32_t> SkinColorId(std::string_view name); ///< without regard to case
/// The colour of the light default skin; black for an unknown id.
SkinColor DefaultSkinColor(uint32_t id);

} // namespace ek
