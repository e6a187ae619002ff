// SPDX-License-Identifier: GPL-3.0-or-later
#include "resources/Commands.h"

#include "resources/Strings.h"

#include <algorithm>

namespace ek {

namespace {

#define EK_COMMAND(symbol, icon, statusText, toolTip, keys)                                                            \
    {                                                                                                                  \
        symbol, #symbol, icon, statusText, toolTip, keys                                                               \
    }

constexpr CommandInfo Table[] = {
    EK_COMMAND(ID_ZOOM_IN, "zoom-in", "Zoom In", "Zoom In", "Ctrl++"),
    EK_COMMAND(ID_ZOOM_OUT, "zoom-out", "Zoom Out", "Zoom Out", "Ctrl+-"),
    EK_COMMAND(ID_ZOOM_FULL, "zoom-full", "Zoom Full", "Zoom Full", "Ctrl+0"),
    EK_COMMAND(ID_FIT_SELECTION, "fit-selection", "Fit Selection", "Fit Selection", "Ctrl+Shift+E"),
    EK_COMMAND(ID_UNDO_HISTORY, "", "", "", ""),
    EK_COMMAND(ID_REDO_HISTORY, "", "", "", ""),
    EK_COMMAND(ID_TRANSPORT_POSITION, "", "", "", ""),
    EK_COMMAND(ID_ZOOM_IN_VERTICAL, "zoom-in-vertical", "Zoom In Vertical", "Zoom In Vertical", "Ctrl+Shift+Up"),
    EK_COMMAND(ID_ZOOM_OUT_VERTICAL, "zoom-out-vertical", "Zoom Out Vertical", "Zoom Out Vertical", "Ctrl+Shift+Down"),
    EK_COMMAND(ID_NEW_MULTITRACK, "new-multitrack", "New Multitrack Session", "New Multitrack Session", "Ctrl+Shift+N"),
    EK_COMMAND(ID_PASTE_MIX, "paste-mix", "Paste Mix", "Paste Mix", "Ctrl+Shift+V"),
    EK_COMMAND(ID_DELETE, "", "", "", "Del"),
    EK_COMMAND(ID_EFFECTS_LIBRARY, "", "Show/Hide Tree of Effects", "Show/Hide Tree of Effects", ""),
    EK_COMMAND(ID_CLOSE_WINDOW, "close", "Close File", "Close File", "Ctrl+F4"),
    EK_COMMAND(ID_SELECT_ALL, "", "", "", "Ctrl+A"),
    EK_COMMAND(ID_ABOUT, "about", "", "", ""),
    EK_COMMAND(ID_SELECT_LEFT, "", "Select All Left", "Select All Left", "Ctrl+Shift+L"),
    EK_COMMAND(ID_SELECT_RIGHT, "", "Select All Right", "Select All Right", "Ctrl+Shift+R"),
    EK_COMMAND(ID_NEXT_CHANNEL, "", "Select Next Channel", "Select Next Channel", "Ctrl+Shift+C"),
    EK_COMMAND(ID_FILE_TABS, "", "Toggle open file tabs on and off", "Open File Tabs", ""),
    EK_COMMAND(ID_FULL_SCREEN, "", "Toggle Full Screen mode on and off", "Toggle Full Screen Mode", ""),
    EK_COMMAND(ID_NEXT_WINDOW, "", "Activate the next window", "Next Window", "Ctrl+Tab"),
    EK_COMMAND(ID_PREVIOUS_WINDOW, "", "Activate the previous window", "Previous Window", "Ctrl+Shift+Tab"),
    EK_COMMAND(ID_CLOSE_ALL, "", "Close all opened windows", "Close All", ""),
    EK_COMMAND(ID_SAVE_ALL, "", "Save all modified open files", "Save All", ""),
    EK_COMMAND(ID_WINDOW_LIST, "", "Manages the currently open windows", "Window List", ""),
    EK_COMMAND(ID_SELECT_BACK_LEFT, "", "Select All Back Left", "Select All Back Left", ""),
    EK_COMMAND(ID_SELECT_BACK_RIGHT, "", "Select All Back Right", "Select All Back Right", ""),
    EK_COMMAND(ID_SELECT_FRONT_RIGHT, "", "Select All Front Right", "Select All Front Right", ""),
    EK_COMMAND(ID_SELECT_FRONT_LEFT, "", "Select All Front Left", "Select All Front Left", ""),
    EK_COMMAND(ID_SELECT_LOW_FREQUENCY, "", "Select All Low Frequency", "Select All Low Frequency", ""),
    EK_COMMAND(ID_SELECT_FRONT_CENTER, "", "Select All Front Center", "Select All Front Center", ""),
    EK_COMMAND(ID_SELECT_SIDE_LEFT, "", "Select All Side Left", "Select All Side Left", ""),
    EK_COMMAND(ID_SELECT_SIDE_RIGHT, "", "Select All Side Right", "Select All Side Right", ""),
    EK_COMMAND(ID_SELECT_BACK_CENTER, "", "Select All Back Center", "Select All Back Center", ""),
    EK_COMMAND(ID_SCALE_FULL, "", "", "", ""),
    EK_COMMAND(ID_CENTER_VIEW, "", "Center View", "Center View", "Ctrl+Shift+0"),
    EK_COMMAND(ID_OVERVIEW, "overview", "Show/Hide Overview", "Show/Hide Overview", "Ctrl+Shift+O"),
    EK_COMMAND(ID_SCALE_IN, "scale-in", "Scale In", "Scale In", "Ctrl+Up"),
    EK_COMMAND(ID_SCALE_OUT, "scale-out", "Scale Out", "Scale Out", "Ctrl+Down"),
    EK_COMMAND(ID_TRANSPORT_START, "", "", "", ""),
    EK_COMMAND(ID_TRANSPORT_BACK, "", "", "", ""),
    EK_COMMAND(ID_TRANSPORT_PLAY, "", "", "", ""),
    EK_COMMAND(ID_TRANSPORT_PAUSE, "", "", "", ""),
    EK_COMMAND(ID_TRANSPORT_STOP, "", "", "", ""),
    EK_COMMAND(ID_TRANSPORT_FORWARD, "", "", "", ""),
    EK_COMMAND(ID_TRANSPORT_END, "", "", "", ""),
    EK_COMMAND(ID_RECORD, "", "", "", ""),
    EK_COMMAND(ID_FILE_NEW, "new", "New Wave File", "New Wave File", "Ctrl+N"),
    EK_COMMAND(ID_FILE_OPEN, "open", "Open File", "Open File", "Ctrl+O"),
    EK_COMMAND(ID_FILE_CLOSE, "", "Close File", "Close File", ""),
    EK_COMMAND(ID_FILE_SAVE, "save", "Save", "Save", "Ctrl+S"),
    EK_COMMAND(ID_FILE_SAVE_AS, "save-as", "", "", "Ctrl+Shift+S"),
    EK_COMMAND(ID_EDIT_COPY, "copy", "Copy", "Copy", "Ctrl+C"),
    EK_COMMAND(ID_EDIT_CUT, "cut", "Cut", "Cut", "Ctrl+X"),
    EK_COMMAND(ID_EDIT_PASTE, "paste", "Paste", "Paste", "Ctrl+V"),
    EK_COMMAND(ID_EDIT_UNDO, "undo", "Undo", "Undo", "Ctrl+Z"),
    EK_COMMAND(ID_EDIT_REDO, "redo", "Redo", "Redo", "Ctrl+Y"),
    EK_COMMAND(ID_WINDOW_ARRANGE, "", "", "", ""),
    EK_COMMAND(ID_WINDOW_CASCADE, "", "Cascade", "Cascade", ""),
    EK_COMMAND(ID_WINDOW_TILE_HORIZONTALLY, "", "Tile Horizontally", "Tile Horizontally", ""),
    EK_COMMAND(ID_WINDOW_TILE_VERTICALLY, "", "Tile Vertically", "Tile Vertically", ""),
};

#undef EK_COMMAND

static_assert(std::ranges::is_sorted(Table, {}, &CommandInfo::Id));

} // namespace

std::span<const CommandInfo> CommandInfos()
{
    return Table;
}

const CommandInfo* FindCommand(uint32_t id)
{
    const auto* found = std::ranges::lower_bound(Table, id, {}, &CommandInfo::Id);
    return found != std::end(Table) && found->Id == id ? found : nullptr;
}

std::string CommandStatusText(uint32_t id)
{
    const std::string text = LoadString(id);
    return text.substr(0, text.find('\n'));
}

std::string CommandToolTip(uint32_t id)
{
    const std::string text = LoadString(id);
    const size_t newline = text.find('\n');
    return newline == std::string::npos ? std::string() : text.substr(newline + 1);
}

} // namespace ek
