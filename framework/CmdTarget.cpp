// SPDX-License-Identifier: GPL-3.0-or-later
#include "framework/CmdTarget.h"

namespace ek {

namespace {

bool IsEnabled(CCmdTarget& target, const CommandEntry& entry, uint32_t id)
{
    if (!entry.Update)
        return true;
    CommandUi ui{.Id = id};
    entry.Update(target, ui);
    return ui.Enabled;
}

} // namespace

bool CCmdTarget::OnCmdMsg(uint32_t id, CommandCode code, CommandUi* ui)
{
    for (const CommandEntry& entry : CommandTable()) {
        if (id < entry.FirstId || id > entry.LastId)
            continue;
        if (code == CN_COMMAND) {
            if (IsEnabled(*this, entry, id))
                entry.Run(*this, id);
        } else if (entry.Update && ui) {
            entry.Update(*this, *ui);
        }
        return true;
    }
    return false;
}

} // namespace ek
