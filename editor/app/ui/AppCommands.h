// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "framework/CmdTarget.h"

namespace ek {

class CMainFrame;

/// The commands of the application as a whole: what makes documents. Last in the order of routing.
class AppCommands final : public CCmdTarget {
public:
    explicit AppCommands(CMainFrame& frame) : m_frame(frame) {}

    std::span<const CommandEntry> CommandTable() const override;

private:
    void OnNew();
    void OnUpdateNew(CommandUi& ui);
    void OnNewMultitrack();
    void OnUpdateNewMultitrack(CommandUi& ui);
    void OnOpen();

    CMainFrame& m_frame;
};

} // namespace ek
