// SPDX-License-Identifier: GPL-3.0-or-later
#include "waveview/ui/ViewColors.h"

#include "skincontrols/Skin.h"

namespace ek {

ViewColors ViewColors::FromSkin()
{
    return {.Wave = SkinColorOf(COLOR_EDITOR_WAVE),
            .FullScaleLines = SkinColorOf(COLOR_EDITOR_WAVE_HOR_LINES),
            .WaveBackground = SkinColorOf(COLOR_EDITOR_WAVE_BG),
            .Workspace = SkinColorOf(COLOR_EDITOR_WORKSPACE),
            .PositionSelection = SkinColorOf(COLOR_EDITOR_POS_SELECTION),
            .PanelLines = SkinColorOf(COLOR_EDITOR_PANELS_LINES),
            .Gradient1 = SkinColorOf(COLOR_EDITOR_GRADIENT1),
            .Gradient2 = SkinColorOf(COLOR_EDITOR_GRADIENT2),
            .Face = SkinPalette().color(QPalette::Window)};
}

} // namespace ek
