// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

// The thirteen functions that the module exports, and the records they exchange. A host loads the library at
// run time and looks the functions up by name. All of them are called on the user-interface thread.
//
// Order: EkGetModuleInfo at any time; EkInitialize once; EkGetMenu and EkGetAccelTable; EkLoadSkin; then
// EkChangeState as the module's page is shown and hidden. Meanwhile EkFilterDllMsg (or EkPreTranslateMessage)
// for each input event, EkProcessDllIdle when idle, EkOnCmdMsg for commands and EkPassMessage for requests.
// At the end EkTryClose, and unless it returns 0, EkFree.

#include <cstdint>

class QEvent;
class QMenu;
class QObject;
class QWidget;

namespace ek {

class CHostFrame;

/// Filled by EkGetModuleInfo. The strings are static and stay the module's.
struct ModuleInfo {
    uint32_t Size; ///< set to 20 by the caller: the contract's size, whatever the width of a pointer
    const char16_t* Name;
    const char16_t* Version;
    const char16_t* Company;
    uint32_t Kind;
};
inline constexpr uint32_t ModuleInfoSize = 20;

/// One input event of the host's loop, before it is delivered.
struct WindowMessage {
    QObject* Receiver;
    QEvent* Event;
};

/// Notification codes of EkOnCmdMsg.
enum CommandCode : int {
    CN_COMMAND = 0,            ///< run the command
    CN_UPDATE_COMMAND_UI = -1, ///< `extra` is a CommandUi to fill in
};

/// The answer to an update query. The asker sets Id and the defaults; a handler changes what differs.
/// A command that nobody handles is shown disabled.
struct CommandUi {
    uint32_t Id = 0;
    bool Enabled = true;
    bool Checked = false;
};

/// One entry of the accelerator table: a Qt::Key, the modifiers that must be held (all others must not), and
/// whether the key must come from the numeric keypad.
struct Accelerator {
    int Key;
    uint32_t Modifiers; ///< Qt::KeyboardModifiers without Qt::KeypadModifier
    bool Keypad;
    uint32_t Command;
};

/// Owned by the module, valid until it is unloaded.
struct AcceleratorTable {
    const Accelerator* Entries;
    uint32_t Count;
};

} // namespace ek

#if defined(EK_BUILDING_MODULE)
#define EK_EXPORT __attribute__((visibility("default")))
#else
#define EK_EXPORT
#endif

extern "C" {
/// The main frame as a visible child of `parent`, or null: the host is older than 1.0 (the user was told) or
/// the frame could not be made. The second and third argument are ignored.
EK_EXPORT QWidget* EkInitialize(QWidget* parent, void*, void*, ek::CHostFrame* host);
/// The menu whose entries are the top-level submenus; each QAction's data() is its command id. The first call
/// adds the recent files. Always the same menu, owned by the module.
EK_EXPORT QMenu* EkGetMenu(QWidget* frameWindow);
EK_EXPORT const ek::AcceleratorTable* EkGetAccelTable(QWidget* frameWindow);
EK_EXPORT void EkChangeState(QWidget* frameWindow, int active);
/// Does nothing while long work runs: EkTryClose has answered 0 then.
EK_EXPORT void EkFree(QWidget* frameWindow);
/// Reads every skin-dependent resource again; 1.
EK_EXPORT int EkLoadSkin(QWidget* frameWindow, const char16_t* skinName);
/// Nonzero when the event was a key of the module's and must not be delivered.
EK_EXPORT int EkFilterDllMsg(const ek::WindowMessage* message);
EK_EXPORT void EkProcessDllIdle();
/// A textual request: Open "path" "path" ...; 1.
EK_EXPORT int EkPassMessage(QWidget* frameWindow, void*, const char16_t* text);
/// 1 and the record filled when its Size is 20, else 0 and the record untouched.
EK_EXPORT int EkGetModuleInfo(void*, ek::ModuleInfo* info);
/// Offers a command, or an update query, to the module; nonzero when it was handled. For CN_COMMAND `extra` is the
/// command's parameter as a MessageEvent carries it in LParam. While long work runs commands are refused.
EK_EXPORT int EkOnCmdMsg(QWidget* frameWindow, uint32_t command, int code, void* extra, void* handlerInfo);
EK_EXPORT int EkPreTranslateMessage(void*, const ek::WindowMessage* message);
/// 1 when every document is closed, 0 when the user kept one open or long work is under way.
EK_EXPORT int EkTryClose();
}
