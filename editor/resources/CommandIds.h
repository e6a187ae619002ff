// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <cstdint>

namespace ek {

/// Ids of the commands, shared by menus, tool bars, keys, hosts and handlers. They are part of the contract with
/// hosts and never change.
enum CommandId : uint32_t {
    ID_ZOOM_IN = 1025,
    ID_ZOOM_OUT = 1027,
    ID_ZOOM_FULL = 1028,
    ID_FIT_SELECTION = 1029,
    ID_UNDO_HISTORY = 1030,
    ID_REDO_HISTORY = 1031,
    ID_TRANSPORT_POSITION = 1035, ///< the percentage of the play range travels as lParam
    ID_ZOOM_IN_VERTICAL = 1056,
    ID_ZOOM_OUT_VERTICAL = 1057,
    ID_NEW_MULTITRACK = 1097,
    ID_PASTE_MIX = 1098,
    ID_DELETE = 1101,
    ID_EFFECTS_LIBRARY = 1110,
    ID_CLOSE_WINDOW = 1111,
    ID_ZOOM_RATIO_FIRST = 1112, ///< 1 : 1
    ID_ZOOM_RATIO_LAST = 1131,  ///< 1 : 524288
    ID_SELECT_ALL = 1133,
    ID_ABOUT = 1138,
    ID_FILE_TABS = 1147,
    ID_FULL_SCREEN = 1148,
    ID_NEXT_WINDOW = 1149,
    ID_PREVIOUS_WINDOW = 1150,
    ID_CLOSE_ALL = 1151,
    ID_SAVE_ALL = 1152,
    ID_WINDOW_LIST = 1153,
    ID_SCALE_FULL = 1301,
    ID_CENTER_VIEW = 1302,
    ID_OVERVIEW = 1303,
    ID_SCALE_IN = 1304,
    ID_SCALE_OUT = 1305,
    ID_RECENT_FIRST = 8000,
    ID_RECENT_LAST = 8009,
    ID_HOST_REQUEST_FIRST = 11000, ///< requests that a panel or a document sends up to the host
    ID_HOST_REQUEST_ROUTED = 11001,
    ID_HOST_REQUEST_LAST = 11002,
    ID_TRANSPORT_START = 13000,
    ID_TRANSPORT_BACK = 13005,
    ID_TRANSPORT_PLAY = 13010,
    ID_TRANSPORT_PAUSE = 13015,
    ID_TRANSPORT_STOP = 13020,
    ID_TRANSPORT_FORWARD = 13025,
    ID_TRANSPORT_END = 13030,
    ID_RECORD = 13090,
    ID_MORPH_FIRST = 17100,
    ID_MORPH_LAST = 17500,
    ID_FILE_NEW = 57600,
    ID_FILE_OPEN = 57601,
    ID_FILE_CLOSE = 57602,
    ID_FILE_SAVE = 57603,
    ID_FILE_SAVE_AS = 57604,
    ID_EDIT_COPY = 57634,
    ID_EDIT_CUT = 57635,
    ID_EDIT_PASTE = 57637,
    ID_EDIT_UNDO = 57643,
    ID_EDIT_REDO = 57644,
    ID_WINDOW_ARRANGE = 57649,
    ID_WINDOW_CASCADE = 57650,
    ID_WINDOW_TILE_HORIZONTALLY = 57651,
    ID_WINDOW_TILE_VERTICALLY = 57652,
};

} // namespace ek
