// SPDX-License-Identifier: GPL-3.0-or-later
#include "skincontrols/Skin.h"

#include "skincontrols/SystemColors.h"
#include "skinmanager/SkinColors.h"

#include <array>

namespace ek {

namespace {

CHostSkin* g_skin = nullptr;

struct RoleColor {
    QPalette::ColorRole Role;
    uint32_t Color;
};

constexpr std::array PaletteColors = {
    RoleColor{QPalette::Window, ColorButtonFace},
    RoleColor{QPalette::WindowText, ColorButtonText},
    RoleColor{QPalette::Base, ColorWindow},
    RoleColor{QPalette::AlternateBase, ColorButtonFace},
    RoleColor{QPalette::Text, ColorWindowText},
    RoleColor{QPalette::Button, ColorButtonFace},
    RoleColor{QPalette::ButtonText, ColorButtonText},
    RoleColor{QPalette::Light, ColorButtonHighlight},
    RoleColor{QPalette::Dark, ColorButtonShadow},
    RoleColor{QPalette::Highlight, ColorHighlight},
    RoleColor{QPalette::HighlightedText, ColorHighlightText},
    RoleColor{QPalette::ToolTipBase, ColorInfoBackground},
    RoleColor{QPalette::ToolTipText, ColorInfoText},
};

} // namespace

void SetCurrentSkin(CHostSkin* skin)
{
    g_skin = skin;
}

CHostSkin* CurrentSkin()
{
    return g_skin;
}

QColor SkinColorOf(uint32_t colorId)
{
    const SkinColor color = g_skin ? g_skin->GetColor(colorId) : DefaultSkinColor(colorId);
    return QColor(color & 0xFF, (color >> 8) & 0xFF, (color >> 16) & 0xFF);
}

QPalette SkinPalette()
{
    // The shades that the skin does not name follow from its button colour.
    QPalette palette(SkinColorOf(ColorButtonFace));
    for (const RoleColor& entry : PaletteColors)
        palette.setColor(entry.Role, SkinColorOf(entry.Color));
    for (const auto role : {QPalette::WindowText, QPalette::Text, QPalette::ButtonText})
        palette.setColor(QPalette::Disabled, role, SkinColorOf(ColorGrayText));
    return palette;
}

} // namespace ek
