// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "Desktop.h"

#include <gtest/gtest.h>

#include <filesystem>
#include <memory>
#include <string>
#include <sys/types.h>
#include <vector>

namespace ek {

/// An editor on a screen of its own, with a folder "music" for its files.
class EditorFixture : public testing::Test {
protected:
    void SetUp() override; ///< skips the test where there is no screen server or no mouse
    void TearDown() override;

    /// Skips the test where the program is not installed; on a server, where all of them have to be, fails it.
    static void Need(const char* program);
    std::filesystem::path Music(const std::string& name) const { return m_folder / "music" / name; }

    std::unique_ptr<Process> StartEditor(const std::vector<std::string>& arguments, const std::string& name) const;
    /// The editor of this test, in front and with the keyboard.
    bool BringUpEditor(const std::vector<std::string>& arguments = {});
    bool ShowsFile(const std::string& name) const;
    void QuitEditor();

    std::filesystem::path m_folder;
    std::unique_ptr<Desktop> m_desktop;
    std::unique_ptr<Process> m_editor;
};

/// Changes when a file is put in the place of another; 0: there is none.
ino_t FileNumber(const std::filesystem::path& path);

std::vector<std::string> FilesBelow(const std::filesystem::path& folder);

} // namespace ek
