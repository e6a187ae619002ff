// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <filesystem>

namespace ek {

/// Folders for settings, data and logs that are this run's alone, in place of the person's; they go with this object.
/// To be made before anything asks for those folders, while there is one thread.
class ScratchHome {
public:
    ScratchHome();
    ~ScratchHome();
    ScratchHome(const ScratchHome&) = delete;
    ScratchHome& operator=(const ScratchHome&) = delete;

    bool IsMade() const { return !m_folder.empty(); }

private:
    std::filesystem::path m_folder;
};

} // namespace ek
