// SPDX-License-Identifier: GPL-3.0-or-later
#include "resources/Cursors.h"

#include <algorithm>
#include <iterator>

namespace ek {

namespace {

// The middle of the beam, and the middle of the hand.
constexpr int BeamX = 7;
constexpr int BeamY = 13;
constexpr int HandX = 15;
constexpr int HandY = 16;

constexpr CursorInfo Table[] = {
    {CURSOR_RIGHT, "right", BeamX, BeamY},
    {CURSOR_ALL_CHANNELS, "all-channels", BeamX, BeamY},
    {CURSOR_LEFT, "left", BeamX, BeamY},
    {CURSOR_FRONT_LEFT, "front-left", BeamX, BeamY},
    {CURSOR_FRONT_RIGHT, "front-right", BeamX, BeamY},
    {CURSOR_FRONT_CENTRE, "front-centre", BeamX, BeamY},
    {CURSOR_BACK_RIGHT, "back-right", BeamX, BeamY},
    {CURSOR_BACK_LEFT, "back-left", BeamX, BeamY},
    {CURSOR_LOW_FREQUENCY, "low-frequency", BeamX, BeamY},
    {CURSOR_FRONT_LEFT_OF_CENTRE, "front-left-of-centre", BeamX, BeamY},
    {CURSOR_FRONT_RIGHT_OF_CENTRE, "front-right-of-centre", BeamX, BeamY},
    {CURSOR_BACK_CENTRE, "back-centre", BeamX, BeamY},
    {CURSOR_SIDE_LEFT, "side-left", BeamX, BeamY},
    {CURSOR_SIDE_RIGHT, "side-right", BeamX, BeamY},
    {CURSOR_DRAGGING, "dragging", HandX, HandY},
    {CURSOR_CAN_DRAG, "can-drag", HandX, HandY},
};

static_assert(std::ranges::is_sorted(Table, {}, &CursorInfo::Id));

} // namespace

std::span<const CursorInfo> CursorInfos()
{
    return Table;
}

const CursorInfo* FindCursor(uint32_t id)
{
    const auto* found = std::ranges::lower_bound(Table, id, {}, &CursorInfo::Id);
    return found != std::end(Table) && found->Id == id ? found : nullptr;
}

} // namespace ek
