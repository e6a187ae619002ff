// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <cstdint>
#include <span>

namespace ek {

/// One line of a menu: a command, a submenu (Items), a separator (neither id nor text), or a text without a
/// command, which is never enabled. The part of a text behind a tab names the key.
struct MenuItem {
    uint32_t Id = 0;
    const char* Text = "";
    const MenuItem* Items = nullptr;
    uint32_t ItemCount = 0;

    std::span<const MenuItem> Submenu() const { return {Items, ItemCount}; }
    bool IsSeparator() const { return Id == 0 && *Text == 0; }
};

enum MenuId : uint32_t {
    MENU_MAIN = 1008,       ///< the lines are the top-level submenus
    MENU_ZOOM_RATIO = 1171, ///< "1 : 524288" down to "1 : 1"
    MENU_AMPLITUDE = 1310,  ///< of the amplitude panel
};

std::span<const MenuItem> LoadMenu(uint32_t menuId); ///< empty for an unknown id

enum ToolBarId : uint32_t { TOOLBAR_MAIN = 1009 };

std::span<const uint32_t> LoadToolBar(uint32_t toolBarId); ///< command ids in order, 0 for a separator

} // namespace ek
