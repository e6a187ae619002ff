// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "ek/Module.h"

#include <cstdint>
#include <span>

namespace ek {

class CCmdTarget;

/// One line of a target's command table. A null Update leaves the command enabled.
struct CommandEntry {
    uint32_t FirstId;
    uint32_t LastId; ///< inclusive; equal to FirstId for a single command
    void (*Run)(CCmdTarget& target, uint32_t id);
    void (*Update)(CCmdTarget& target, CommandUi& ui);
};

/// Anything that handles commands: a view, a document, a frame, the application.
class CCmdTarget {
public:
    virtual ~CCmdTarget() = default;

    /// Runs the command (CN_COMMAND) or fills in `ui` (CN_UPDATE_COMMAND_UI) when this target's table has it.
    /// A command whose update answers "disabled" is not run, but counts as handled.
    virtual bool OnCmdMsg(uint32_t id, CommandCode code, CommandUi* ui);

    /// The target's own table; static.
    virtual std::span<const CommandEntry> CommandTable() const { return {}; }
};

/// Table entries from member functions: Command<CWEDoc, &CWEDoc::OnSave, &CWEDoc::OnUpdateSave>(57603). Without an
/// update function the command is always enabled.
template <class T, void (T::*Run)()>
constexpr CommandEntry Command(uint32_t id)
{
    return {id, id, [](CCmdTarget& target, uint32_t) { (static_cast<T&>(target).*Run)(); }, nullptr};
}

template <class T, void (T::*Run)(), void (T::*Update)(CommandUi&)>
constexpr CommandEntry Command(uint32_t id)
{
    CommandEntry entry = Command<T, Run>(id);
    entry.Update = [](CCmdTarget& target, CommandUi& ui) { (static_cast<T&>(target).*Update)(ui); };
    return entry;
}

template <class T, void (T::*Run)(uint32_t)>
constexpr CommandEntry CommandRange(uint32_t first, uint32_t last)
{
    return {first, last, [](CCmdTarget& target, uint32_t id) { (static_cast<T&>(target).*Run)(id); }, nullptr};
}

template <class T, void (T::*Run)(uint32_t), void (T::*Update)(CommandUi&)>
constexpr CommandEntry CommandRange(uint32_t first, uint32_t last)
{
    CommandEntry entry = CommandRange<T, Run>(first, last);
    entry.Update = [](CCmdTarget& target, CommandUi& ui) { (static_cast<T&>(target).*Update)(ui); };
    return entry;
}

} // namespace ek
