// SPDX-License-Identifier: GPL-3.0-or-later
#include "resources/Strings.h"

#include "resources/Commands.h"

#include <algorithm>

namespace ek {

namespace {

struct Text {
    uint32_t Id;
    const char* Value;
};

constexpr Text Table[] = {
    {IDS_WAVE_TEMPLATE, "\nWave Editor\nWave Editor\n\n\nWE.Document\nWE Document"},
    {IDS_MULTITRACK_TEMPLATE, "\nMulti Track\nMulti Track\n\n\nMT.Document\nMT Document"},
    {IDS_ABOUT_TITLE, "About %s"},
    {IDS_BUILD_DATE, "Build compilation date:\n\n %s"},
    {IDS_EFFECTS_LIBRARY, "Effects Library"},
    {IDS_EFFECT_MONO_OR_STEREO_ONLY, "Selected effect(s) can be used with mono or stereo sound only"},
    {IDS_EFFECT_STEREO_ONLY, "Selected effect(s) can be used with stereo sound only"},
    {IDS_EFFECT_FAILED, "Can't start playing with selected effect(s)"},
    {IDS_MORPH_MENU, "Morph"},
    {IDS_EFFECTS_TREE, "Effects Library"},
    {IDS_PASSED_MESSAGE, "Message: %s"},
    {IDS_MODULE_NAME, "Ek Wave Editor"},
    {IDS_HOST_TOO_OLD, "You have Ek MP3 Vantler frame version %s.\nYou need at least version 1.0 to use this module."},
    {IDS_CANNOT_OPEN_FILE, "Can't open file %s"},
    {IDS_NO_MULTITRACK, "Multitrack sessions are not available in this version."},
    {IDS_SOUND_FORMAT, "Sound Format"},
    {IDS_REPLACE_FILE, "%s already exists.\nDo you want to replace it?"},
    {IDS_LICENCE, "Free software under the GNU General Public License, version 3 or later. It comes with no warranty."},
    {IDS_ZOOM_RATIO, "Zoom ratio"},
    {IDS_MORPH_EFFECTS, "Editor Special Effects"},
};

} // namespace

std::string LoadString(uint32_t id)
{
    const auto* found = std::ranges::find(Table, id, &Text::Id);
    if (found != std::end(Table))
        return found->Value;
    const CommandInfo* command = FindCommand(id);
    if (!command || !*command->StatusText)
        return {};
    return std::string(command->StatusText) + '\n' + command->ToolTip;
}

} // namespace ek
