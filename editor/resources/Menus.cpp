// SPDX-License-Identifier: GPL-3.0-or-later
#include "resources/Menus.h"

#include "resources/CommandIds.h"

#include <algorithm>
#include <array>
#include <iterator>

namespace ek {

namespace {

constexpr MenuItem Separator;

template <uint32_t Count>
constexpr MenuItem Submenu(const char* text, const MenuItem (&items)[Count])
{
    return {0, text, items, Count};
}

constexpr MenuItem FileMenu[] = {
    {ID_FILE_NEW, "New\tCtrl+N"},
    {ID_FILE_OPEN, "Open\tCtrl+O"},
    {ID_FILE_SAVE, "Save\tCtrl+S"},
    {ID_FILE_SAVE_AS, "Save As..."},
    Separator,
};

constexpr MenuItem EditMenu[] = {
    {ID_EDIT_UNDO, "Undo\tCtrl+Z"},
    {ID_EDIT_REDO, "Redo\tCtrl+Y"},
    Separator,
    {ID_EDIT_CUT, "Cut\tCtrl+X"},
    {ID_EDIT_COPY, "Copy\tCtrl+C"},
    {ID_EDIT_PASTE, "Paste\tCtrl+V"},
    {ID_DELETE, "Delete\tDel"},
    Separator,
    {ID_SELECT_ALL, "Select All\tCtrl+A"},
};

constexpr MenuItem ViewMenu[] = {
    {ID_EFFECTS_LIBRARY, "Effects Library"},
    Separator,
    {ID_ZOOM_IN, "Zoom In\tCtrl++"},
    {ID_ZOOM_OUT, "Zoom Out\tCtrl+-"},
    {ID_ZOOM_FULL, "Zoom Full\tCtrl+0"},
    {ID_FIT_SELECTION, "Fit Selection\tCtrl+Shift+E"},
    Separator,
    {ID_ZOOM_IN_VERTICAL, "Zoom In Vertical\tCtrl+Shift+Up"},
    {ID_ZOOM_OUT_VERTICAL, "Zoom Out Vertical\tCtrl+Shift+Down"},
    {ID_SCALE_IN, "Scale In\tCtrl+Up"},
    {ID_SCALE_OUT, "Scale Out\tCtrl+Down"},
    {ID_CENTER_VIEW, "Center View\tCtrl+Shift+0"},
    {ID_OVERVIEW, "Show/Hide Overview\tCtrl+Shift+O"},
};

constexpr MenuItem MorphMenu[] = {
    {0, "none"},
};

constexpr MenuItem WindowMenu[] = {
    {ID_WINDOW_CASCADE, "Cascade"},
    {ID_WINDOW_TILE_HORIZONTALLY, "Tile Horizontally"},
    {ID_WINDOW_TILE_VERTICALLY, "Tile Vertically"},
};

constexpr MenuItem MainMenu[] = {
    Submenu("File", FileMenu),   Submenu("Edit", EditMenu),     Submenu("View", ViewMenu),
    Submenu("Morph", MorphMenu), Submenu("Window", WindowMenu),
};

constexpr MenuItem ZoomRatioMenu[] = {
    {1131, "1 : 524288"}, {1130, "1 : 262144"}, {1129, "1 : 131072"}, {1128, "1 : 65536"}, {1127, "1 : 32768"},
    {1126, "1 : 16384"},  {1125, "1 : 8192"},   {1124, "1 : 4096"},   {1123, "1 : 2048"},  {1122, "1 : 1024"},
    {1121, "1 : 512"},    {1120, "1 : 256"},    {1119, "1 : 128"},    {1118, "1 : 64"},    {1117, "1 : 32"},
    {1116, "1 : 16"},     {1115, "1 : 8"},      {1114, "1 : 4"},      {1113, "1 : 2"},     {1112, "1 : 1"},
};

constexpr MenuItem AmplitudeMenu[] = {
    {ID_CENTER_VIEW, "Center View"},
    {ID_ZOOM_IN_VERTICAL, "Zoom In"},
    {ID_ZOOM_OUT_VERTICAL, "Zoom Out"},
    {ID_SCALE_FULL, "Zoom Out Full"},
};

constexpr MenuItem WaveZoomMenu[] = {
    {ID_FIT_SELECTION, "Fit Selection"},
    {ID_ZOOM_FULL, "Zoom Out Full"},
    {ID_ZOOM_IN, "Zoom In"},
    {ID_ZOOM_OUT, "Zoom Out"},
};

constexpr MenuItem WaveMenuStart[] = {
    Submenu("Zoom", WaveZoomMenu), {ID_EDIT_CUT, "Cut"},  {ID_EDIT_COPY, "Copy"},
    {ID_EDIT_PASTE, "Paste"},      {ID_DELETE, "Delete"}, {ID_SELECT_ALL, "Select All"},
};

constexpr MenuItem Left{ID_SELECT_LEFT, "Select All Left"};
constexpr MenuItem Right{ID_SELECT_RIGHT, "Select All Right"};
constexpr MenuItem FrontLeft{ID_SELECT_FRONT_LEFT, "Select All Front Left"};
constexpr MenuItem FrontRight{ID_SELECT_FRONT_RIGHT, "Select All Front Right"};
constexpr MenuItem FrontCenter{ID_SELECT_FRONT_CENTER, "Select All Front Center"};
constexpr MenuItem BackLeft{ID_SELECT_BACK_LEFT, "Select All Back Left"};
constexpr MenuItem BackRight{ID_SELECT_BACK_RIGHT, "Select All Back Right"};
constexpr MenuItem BackCenter{ID_SELECT_BACK_CENTER, "Select All Back Center"};
constexpr MenuItem SideLeft{ID_SELECT_SIDE_LEFT, "Select All Side Left"};
constexpr MenuItem SideRight{ID_SELECT_SIDE_RIGHT, "Select All Side Right"};
constexpr MenuItem LowFrequency{ID_SELECT_LOW_FREQUENCY, "Select All Low Frequency"};

/// What all menus of the lanes have, and then one line for each channel.
template <class... Items>
constexpr auto WaveMenu(const Items&... channels)
{
    std::array<MenuItem, std::size(WaveMenuStart) + sizeof...(channels)> menu{};
    std::ranges::copy(WaveMenuStart, menu.begin());
    size_t next = std::size(WaveMenuStart);
    ((menu[next++] = channels), ...);
    return menu;
}

constexpr auto WaveMenuMono = WaveMenu();
constexpr auto WaveMenuStereo = WaveMenu(Left, Right);
constexpr auto WaveMenu4 = WaveMenu(FrontLeft, FrontRight, BackLeft, BackRight);
constexpr auto WaveMenu5 = WaveMenu(FrontLeft, FrontRight, FrontCenter, BackCenter, LowFrequency);
constexpr auto WaveMenu6 = WaveMenu(FrontLeft, FrontRight, FrontCenter, BackLeft, BackRight, LowFrequency);
constexpr auto WaveMenu8 =
    WaveMenu(FrontLeft, FrontRight, FrontCenter, SideLeft, SideRight, BackLeft, BackRight, LowFrequency);

constexpr uint32_t MainToolBar[] = {
    ID_FILE_OPEN,
    ID_FILE_NEW,
    ID_NEW_MULTITRACK,
    ID_CLOSE_WINDOW,
    ID_FILE_SAVE,
    0,
    ID_EDIT_CUT,
    ID_EDIT_COPY,
    ID_EDIT_PASTE,
    ID_PASTE_MIX,
    0,
    ID_EDIT_UNDO,
    ID_EDIT_REDO,
    0,
    ID_ZOOM_IN,
    ID_ZOOM_OUT,
    ID_ZOOM_FULL,
    ID_FIT_SELECTION,
    ID_ZOOM_IN_VERTICAL,
    ID_ZOOM_OUT_VERTICAL,
    ID_SCALE_IN,
    ID_SCALE_OUT,
};

} // namespace

std::span<const MenuItem> LoadMenu(uint32_t menuId)
{
    switch (menuId) {
    case MENU_MAIN:
        return MainMenu;
    case MENU_WAVE_MONO:
        return WaveMenuMono;
    case MENU_WAVE_STEREO:
        return WaveMenuStereo;
    case MENU_WAVE_4:
        return WaveMenu4;
    case MENU_WAVE_5:
        return WaveMenu5;
    case MENU_WAVE_6:
        return WaveMenu6;
    case MENU_WAVE_8:
        return WaveMenu8;
    case MENU_ZOOM_RATIO:
        return ZoomRatioMenu;
    case MENU_AMPLITUDE:
        return AmplitudeMenu;
    default:
        return {};
    }
}

uint32_t WaveMenuOf(uint32_t channels)
{
    switch (channels) {
    case 0:
    case 2:
        return MENU_WAVE_STEREO;
    case 1:
        return MENU_WAVE_MONO;
    case 4:
        return MENU_WAVE_4;
    case 5:
        return MENU_WAVE_5;
    case 6:
        return MENU_WAVE_6;
    case 8:
        return MENU_WAVE_8;
    default:
        return 0;
    }
}

std::span<const uint32_t> LoadToolBar(uint32_t toolBarId)
{
    return toolBarId == TOOLBAR_MAIN ? std::span<const uint32_t>(MainToolBar) : std::span<const uint32_t>();
}

} // namespace ek
