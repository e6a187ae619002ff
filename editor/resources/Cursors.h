// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <cstdint>
#include <span>

namespace ek {

/// Pointer shapes of the wave view. Over the lanes the shape names the channel that a press there would select.
enum CursorId : uint32_t {
    CURSOR_RIGHT = 1032,
    CURSOR_ALL_CHANNELS = 1033,
    CURSOR_LEFT = 1034,
    CURSOR_FRONT_LEFT = 1035,
    CURSOR_FRONT_RIGHT = 1036,
    CURSOR_FRONT_CENTRE = 1037,
    CURSOR_BACK_RIGHT = 1038,
    CURSOR_BACK_LEFT = 1040,
    CURSOR_LOW_FREQUENCY = 1042,
    CURSOR_FRONT_LEFT_OF_CENTRE = 1044,
    CURSOR_FRONT_RIGHT_OF_CENTRE = 1046,
    CURSOR_BACK_CENTRE = 1048,
    CURSOR_SIDE_LEFT = 1050,
    CURSOR_SIDE_RIGHT = 1052,
    CURSOR_DRAGGING = 1308,
    CURSOR_CAN_DRAG = 1309,
};

/// A drawing of CursorSize by CursorSize pixels at scale 1. The hot spot is a pixel of it.
inline constexpr int CursorSize = 32;
struct CursorInfo {
    uint32_t Id;
    const char* Image; ///< without folder and extension
    int HotX;
    int HotY;
};

std::span<const CursorInfo> CursorInfos(); ///< in the order of the ids
const CursorInfo* FindCursor(uint32_t id); ///< null: not in the table

} // namespace ek
