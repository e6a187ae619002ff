// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "ek/Module.h"

#include <filesystem>
#include <string>
#include <vector>

namespace ek {

/// The thirteen functions of a module. A test fills it with its own.
struct ModuleExports {
    decltype(&EkInitialize) Initialize = nullptr;
    decltype(&EkGetMenu) GetMenu = nullptr;
    decltype(&EkGetAccelTable) GetAccelTable = nullptr;
    decltype(&EkChangeState) ChangeState = nullptr;
    decltype(&EkFree) Free = nullptr;
    decltype(&EkLoadSkin) LoadSkin = nullptr;
    decltype(&EkFilterDllMsg) FilterDllMsg = nullptr;
    decltype(&EkProcessDllIdle) ProcessDllIdle = nullptr;
    decltype(&EkPassMessage) PassMessage = nullptr;
    decltype(&EkGetModuleInfo) GetModuleInfo = nullptr;
    decltype(&EkOnCmdMsg) OnCmdMsg = nullptr;
    decltype(&EkPreTranslateMessage) PreTranslateMessage = nullptr;
    decltype(&EkTryClose) TryClose = nullptr;
};

/// Where the module is looked for: beside the program, then in the installation's library folder.
std::vector<std::filesystem::path> ModulePlaces();

/// Loads the first of the files that exists and looks its functions up. False, with the reason for a person, when
/// there is none, it cannot be loaded or lacks a function. The library stays loaded until the process ends: Qt keeps
/// references into it.
bool LoadModule(const std::vector<std::filesystem::path>& places, ModuleExports& exports, std::string& reason);

} // namespace ek
