// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "framework/ui/CommandActions.h"

#include <filesystem>
#include <memory>
#include <vector>

namespace ek {

class CEffectTree;

/// The menu that the host shows in its menu bar: one submenu a top-level entry.
class MainMenu {
public:
    explicit MainMenu(CommandRouter& router);

    QMenu* Menu() const { return m_menu.get(); }
    /// Puts the effects that a sound can be played through in the place of the placeholder.
    void SetMorphEffects(const CEffectTree& effects);
    void SetRecentFiles(const std::vector<std::filesystem::path>& paths); ///< at the end of the first submenu

private:
    std::unique_ptr<QMenu> m_menu;
    CommandRouter& m_router;
    CommandMenu* m_fileMenu = nullptr;
    CommandMenu* m_morphMenu = nullptr;
};

} // namespace ek
