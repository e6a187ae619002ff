// SPDX-License-Identifier: GPL-3.0-or-later
#include "resources/Accelerators.h"

#include "resources/CommandIds.h"

#include <iterator>

namespace ek {

namespace {

// Values of Qt::Key and Qt::KeyboardModifier; letters are their capital's code.
constexpr int KeyTab = 0x01000001;
constexpr int KeyUp = 0x01000013;
constexpr int KeyDown = 0x01000015;
constexpr int KeyF4 = 0x01000033;
constexpr uint32_t None = 0;
constexpr uint32_t Shift = 0x02000000;
constexpr uint32_t Ctrl = 0x04000000;

constexpr Accelerator Entries[] = {
    {'*', None, true, ID_FIT_SELECTION},     {'/', None, true, ID_ZOOM_FULL},
    {'+', None, true, ID_ZOOM_IN},           {'-', None, true, ID_ZOOM_OUT},
    {'A', Ctrl, false, ID_SELECT_ALL},       {KeyF4, Ctrl, false, ID_CLOSE_WINDOW},
    {KeyTab, Ctrl, false, ID_NEXT_WINDOW},   {KeyTab, Ctrl | Shift, false, ID_PREVIOUS_WINDOW},
    {'C', Ctrl, false, ID_EDIT_COPY},        {'X', Ctrl, false, ID_EDIT_CUT},
    {'V', Ctrl, false, ID_EDIT_PASTE},       {'Y', Ctrl, false, ID_EDIT_REDO},
    {'Z', Ctrl, false, ID_EDIT_UNDO},        {'N', Ctrl, false, ID_FILE_NEW},
    {'N', Ctrl | Shift, false, ID_FILE_NEW}, {'O', Ctrl, false, ID_FILE_OPEN},
    {'S', Ctrl, false, ID_FILE_SAVE},        {'S', Ctrl | Shift, false, ID_FILE_SAVE_AS},
};

constexpr AcceleratorTable Table{Entries, std::size(Entries)};

// Shift turns '=' into '+' and '0' into ')' on many keyboards.
constexpr Accelerator ViewEntries[] = {
    {'+', Ctrl, false, ID_ZOOM_IN},
    {'+', Ctrl | Shift, false, ID_ZOOM_IN},
    {'=', Ctrl, false, ID_ZOOM_IN},
    {'-', Ctrl, false, ID_ZOOM_OUT},
    {'0', Ctrl, false, ID_ZOOM_FULL},
    {'E', Ctrl | Shift, false, ID_FIT_SELECTION},
    {KeyUp, Ctrl, false, ID_SCALE_IN},
    {KeyDown, Ctrl, false, ID_SCALE_OUT},
    {KeyUp, Ctrl | Shift, false, ID_ZOOM_IN_VERTICAL},
    {KeyDown, Ctrl | Shift, false, ID_ZOOM_OUT_VERTICAL},
    {'V', Ctrl | Shift, false, ID_PASTE_MIX},
    {'L', Ctrl | Shift, false, ID_SELECT_LEFT},
    {'R', Ctrl | Shift, false, ID_SELECT_RIGHT},
    {'C', Ctrl | Shift, false, ID_NEXT_CHANNEL},
    {'0', Ctrl | Shift, false, ID_CENTER_VIEW},
    {')', Ctrl | Shift, false, ID_CENTER_VIEW},
    {'O', Ctrl | Shift, false, ID_OVERVIEW},
};

constexpr AcceleratorTable ViewTable{ViewEntries, std::size(ViewEntries)};

} // namespace

const AcceleratorTable& MainAccelerators()
{
    return Table;
}

const AcceleratorTable& ViewAccelerators()
{
    return ViewTable;
}

} // namespace ek
