// SPDX-License-Identifier: GPL-3.0-or-later
#include "skinmanager/SkinColors.h"
#include "platform/Text.h"

namespace ek {

namespace {

struct Row {
    SkinColorName Color;
    uint32_t DefaultRgb; // 0xRRGGBB, as designers write it
};

// Texts stand on BACKGROUND, BTNSHADOW and the gradients as well as on WINDOW, so all of these are pale.
constexpr std::array<Row, 38> Rows = {{
    {{"COLOR_SCROLLBAR", 0}, 0xE9EDF0},
    {{"COLOR_BACKGROUND", 1}, 0xD3E5F2},
    {{"COLOR_ACTIVECAPTION", 2}, 0x2F6F9F},
    {{"COLOR_INACTIVECAPTION", 3}, 0xC4CED7},
    {{"COLOR_MENU", 4}, 0xF7F9FA},
    {{"COLOR_WINDOW", 5}, 0xFFFFFF},
    {{"COLOR_WINDOWFRAME", 6}, 0x8A97A3},
    {{"COLOR_MENUTEXT", 7}, 0x1F2A33},
    {{"COLOR_WINDOWTEXT", 8}, 0x1F2A33},
    {{"COLOR_CAPTIONTEXT", 9}, 0xFFFFFF},
    {{"COLOR_ACTIVEBORDER", 10}, 0xC4CED7},
    {{"COLOR_INACTIVEBORDER", 11}, 0xD8DFE5},
    {{"COLOR_APPWORKSPACE", 12}, 0xE4E8EC},
    {{"COLOR_HIGHLIGHT", 13}, 0x2F6F9F},
    {{"COLOR_HIGHLIGHTTEXT", 14}, 0xFFFFFF},
    {{"COLOR_BTNFACE", 15}, 0xF0F3F5},
    {{"COLOR_BTNSHADOW", 16}, 0xC8D1D9},
    {{"COLOR_GRAYTEXT", 17}, 0x7D8A95},
    {{"COLOR_BTNTEXT", 18}, 0x1F2A33},
    {{"COLOR_INACTIVECAPTIONTEXT", 19}, 0x4A5763},
    {{"COLOR_BTNHIGHLIGHT", 20}, 0xFFFFFF},
    {{"COLOR_3DDKSHADOW", 21}, 0x7D8A95},
    {{"COLOR_3DLIGHT", 22}, 0xE4E9ED},
    {{"COLOR_INFOTEXT", 23}, 0x1F2A33},
    {{"COLOR_INFOBK", 24}, 0xFFFBE6},
    {{"COLOR_HOTLIGHT", 26}, 0x1D5F96},
    {{"COLOR_GRADIENTACTIVECAPTION", 27}, 0x5B94BD},
    {{"COLOR_GRADIENTINACTIVECAPTION", 28}, 0xDBE2E8},
    {{"COLOR_EDITOR_TAB_ACTIVE", COLOR_EDITOR_TAB_ACTIVE}, 0xFFFFFF},
    {{"COLOR_EDITOR_TAB_INACTIVE", COLOR_EDITOR_TAB_INACTIVE}, 0xDDE3E8},
    {{"COLOR_EDITOR_WAVE_BG", COLOR_EDITOR_WAVE_BG}, 0xFBFCFD},
    {{"COLOR_EDITOR_WAVE", COLOR_EDITOR_WAVE}, 0x2F6F9F},
    {{"COLOR_EDITOR_WORKSPACE", COLOR_EDITOR_WORKSPACE}, 0xE4E8EC},
    {{"COLOR_EDITOR_POS_SELECTION", COLOR_EDITOR_POS_SELECTION}, 0xB9D7EC},
    {{"COLOR_EDITOR_PANELS_LINES", COLOR_EDITOR_PANELS_LINES}, 0x9AA7B3},
    {{"COLOR_EDITOR_WAVE_HOR_LINES", COLOR_EDITOR_WAVE_HOR_LINES}, 0xC9D2DA},
    {{"COLOR_EDITOR_GRADIENT1", COLOR_EDITOR_GRADIENT1}, 0xF6F8FA},
    {{"COLOR_EDITOR_GRADIENT2", COLOR_EDITOR_GRADIENT2}, 0xE7EBEF},
}};

constexpr std::array<SkinColorName, Rows.size()> MakeNames()
{
    std::array<SkinColorName, Rows.size()> names;
    for (size_t i = 0; i < names.size(); ++i)
        names[i] = Rows[i].Color;
    return names;
}

constexpr std::array<SkinColorName, Rows.size()> Names = MakeNames();

constexpr SkinColor FromRgb(uint32_t rgb)
{
    return (rgb & 0xFF) << 16 | (rgb & 0xFF00) | rgb >> 16;
}

} // namespace

const std::array<SkinColorName, 38>& SkinColorNames()
{
    return Names;
}

std::optional<uint32_t> SkinColorId(std::string_view name)
{
    for (const SkinColorName& color : Names) {
        if (EqualsIgnoreCase(color.Name, name))
            return color.Id;
    }
    return std::nullopt;
}

SkinColor DefaultSkinColor(uint32_t id)
{
    for (const Row& row : Rows) {
        if (row.Color.Id == id)
            return FromRgb(row.DefaultRgb);
    }
    return 0;
}

} // namespace ek
