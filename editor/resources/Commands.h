// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "resources/CommandIds.h"

#include <cstdint>
#include <span>
#include <string>

namespace ek {

/// What menus, tool bars and key tables show of one command. Empty strings: the command has no such thing.
struct CommandInfo {
    uint32_t Id;
    const char* Symbol;     ///< the name of the id
    const char* Icon;       ///< of the image, without folder and extension
    const char* StatusText; ///< a line for the status bar
    const char* ToolTip;
    const char* Keys; ///< for a person: "Ctrl+O"
};

/// Every command with a fixed id, in the order of the ids.
std::span<const CommandInfo> CommandInfos();
const CommandInfo* FindCommand(uint32_t id); ///< null: not in the table

/// The two halves of the command's entry in the string table; empty when it has none.
std::string CommandStatusText(uint32_t id);
std::string CommandToolTip(uint32_t id);

} // namespace ek
