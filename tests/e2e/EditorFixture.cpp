// SPDX-License-Identifier: GPL-3.0-or-later
#include "EditorFixture.h"

#include <algorithm>
#include <cstdio>
#include <cstdlib>
#include <stdlib.h>
#include <sys/stat.h>

namespace ek {

void EditorFixture::Need(const char* program)
{
    if (IsInstalled(program))
        return;
    const char* isServer = std::getenv("CI");
    ASSERT_STRNE(isServer ? isServer : "", "true") << program << " is not installed";
    GTEST_SKIP() << program << " is not installed";
}

void EditorFixture::SetUp()
{
    for (const char* program : {"Xvfb", "xdotool"}) {
        Need(program);
        if (HasFatalFailure() || IsSkipped())
            return;
    }
    std::string folder = (std::filesystem::temp_directory_path() / "eke2eXXXXXX").native();
    ASSERT_NE(mkdtemp(folder.data()), nullptr);
    m_folder = folder;
    std::filesystem::create_directory(m_folder / "music");
    m_desktop = std::make_unique<Desktop>(m_folder);
    ASSERT_TRUE(m_desktop->Start());
}

void EditorFixture::TearDown()
{
    if (HasFailure() && m_editor)
        std::fprintf(stderr, "The editor said:\n%s\n", m_editor->Output().c_str());
    m_editor.reset();
    m_desktop.reset();
    std::error_code ignored;
    std::filesystem::remove_all(m_folder, ignored);
}

std::unique_ptr<Process> EditorFixture::StartEditor(const std::vector<std::string>& arguments,
                                                    const std::string& name) const
{
    std::vector<std::string> all{EK_BIN_DIR "/ek-wave-editor", "--skin", "Light"};
    all.insert(all.end(), arguments.begin(), arguments.end());
    return m_desktop->Run(all, name);
}

bool EditorFixture::BringUpEditor(const std::vector<std::string>& arguments)
{
    m_editor = StartEditor(arguments, "editor");
    return m_desktop->Focus("Ek Wave Editor") && m_desktop->MoveWindow("Ek Wave Editor", 0, 100, 1280, 800);
}

bool EditorFixture::ShowsFile(const std::string& name) const
{
    return Eventually([&] { return m_desktop->HasWindow(name + " - Ek Wave Editor"); });
}

void EditorFixture::QuitEditor()
{
    ASSERT_TRUE(m_desktop->Focus("Ek Wave Editor"));
    m_desktop->Key("ctrl+q");
    ASSERT_TRUE(Eventually([&] { return m_editor->HasEnded(); }));
    EXPECT_EQ(m_editor->ExitStatus(), 0);
}

ino_t FileNumber(const std::filesystem::path& path)
{
    struct stat status {};
    return stat(path.c_str(), &status) == 0 ? status.st_ino : 0;
}

std::vector<std::string> FilesBelow(const std::filesystem::path& folder)
{
    std::vector<std::string> names;
    for (const auto& entry : std::filesystem::recursive_directory_iterator(folder)) {
        if (!entry.is_directory())
            names.push_back(entry.path().filename());
    }
    std::sort(names.begin(), names.end());
    return names;
}

} // namespace ek
