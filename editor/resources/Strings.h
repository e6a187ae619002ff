// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <cstdint>
#include <string>

namespace ek {

/// Texts that no command carries.
enum StringId : uint32_t {
    IDS_WAVE_TEMPLATE = 1010,
    IDS_MULTITRACK_TEMPLATE = 1013,
    IDS_ABOUT_TITLE = 1176,
    IDS_BUILD_DATE = 1178,
    IDS_EFFECTS_LIBRARY = 1180,
    IDS_EFFECT_MONO_OR_STEREO_ONLY = 1181,
    IDS_EFFECT_STEREO_ONLY = 1182,
    IDS_EFFECT_FAILED = 1183,
    IDS_MORPH_MENU = 1186,
    IDS_EFFECTS_TREE = 1228,
    IDS_PASSED_MESSAGE = 1229,
    IDS_MODULE_NAME = 1242,
    IDS_HOST_TOO_OLD = 20000,
    IDS_CANNOT_OPEN_FILE = 20001,
    IDS_NO_MULTITRACK = 20002,
    IDS_SOUND_FORMAT = 20003,
    IDS_REPLACE_FILE = 20004,
    IDS_LICENCE = 20005,
    IDS_ZOOM_RATIO = 20006,
    IDS_MORPH_EFFECTS = 20007,
};

/// Every text that a person sees comes from here: for a command its status text, a newline and its tool tip, else
/// the entry of the string table, which may be a printf format. Empty for an unknown id. UTF-8.
std::string LoadString(uint32_t id);

} // namespace ek
