// SPDX-License-Identifier: GPL-3.0-or-later
#include "host/ScratchHome.h"

#include "platform/TempFile.h"

#include <cstdlib>
#include <string>
#include <system_error>

namespace ek {

ScratchHome::ScratchHome()
{
    std::string name = TempFolder() / "ek-wave-editor-XXXXXX";
    if (!::mkdtemp(name.data()))
        return;
    m_folder = name;
    for (const char* variable : {"XDG_CONFIG_HOME", "XDG_DATA_HOME", "XDG_STATE_HOME"})
        ::setenv(variable, name.c_str(), 1);
}

ScratchHome::~ScratchHome()
{
    std::error_code ignored; // what stays is in a folder for temporary files
    if (IsMade())
        std::filesystem::remove_all(m_folder, ignored);
}

} // namespace ek
