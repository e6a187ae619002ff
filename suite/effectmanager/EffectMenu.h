// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <cstdint>
#include <string>

namespace ek {

/// A menu that the tree fills.
class EffectMenu {
public:
    virtual ~EffectMenu() = default;
    virtual void AddItem(uint32_t command, const std::string& text) = 0;
    virtual EffectMenu& AddPopup(const std::string& text) = 0; ///< lives as long as this menu
};

inline constexpr uint32_t MorphCommandFirst = 17100; ///< + the node's id
inline constexpr uint32_t MorphCommandLast = 17500;
inline constexpr uint32_t SimpleEffectCommandFirst = 2024; ///< + the effect's place among the library's effects

} // namespace ek
