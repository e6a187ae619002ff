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
    MENU_MAIN = 1008,        ///< the lines are the top-level submenus
    MENU_WAVE_STEREO = 1011, ///< of the lanes; also of a document without channels
    MENU_WAVE_4 = 1016,      ///< the same for as many channels
    MENU_WAVE_5 = 1017,
    MENU_WAVE_6 = 1018,
    MENU_WAVE_8 = 1019,
    MENU_WAVE_MONO = 1020,
    MENU_ZOOM_RATIO = 1171, ///< "1 : 524288" down to "1 : 1"
    MENU_AMPLITUDE = 1310,  ///< of the amplitude panel
};

/// The menu of the lanes; 0: a sound of that many channels has none.
uint32_t WaveMenuOf(uint32_t channels);

std::span<const MenuItem> LoadMenu(uint32_t menuId); ///< empty for an unknown id

enum ToolBarId : uint32_t { TOOLBAR_MAIN = 1009 };

std::span<const uint32_t> LoadToolBar(uint32_t toolBarId); ///< command ids in order, 0 for a separator

} // namespace ek
