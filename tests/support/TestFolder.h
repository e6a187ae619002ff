// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <cstddef>
#include <filesystem>
#include <optional>
#include <string>
#include <string_view>

namespace ek {

/// An environment variable set (or, with null, removed) while it lives.
class ScopedVariable {
public:
    ScopedVariable(const char* name, const char* value);
    ~ScopedVariable();
    ScopedVariable(const ScopedVariable&) = delete;
    ScopedVariable& operator=(const ScopedVariable&) = delete;

private:
    const char* m_name;
    std::optional<std::string> m_before;
};

/// An empty folder of its own for one test. While it lives, temporary files, settings and the log go to folders beside
/// it; at the end all of it is gone and the environment is as before.
class TestFolder {
public:
    explicit TestFolder(const std::filesystem::path& parent = std::filesystem::temp_directory_path());
    ~TestFolder();
    TestFolder(const TestFolder&) = delete;
    TestFolder& operator=(const TestFolder&) = delete;

    std::filesystem::path Path() const { return m_root / "work"; }
    std::filesystem::path operator/(const std::filesystem::path& name) const { return Path() / name; }
    std::filesystem::path TempPath() const { return m_root / "tmp"; }
    size_t EntryCount() const;    ///< hidden ones too
    size_t TempFileCount() const; ///< files of the stores that live, and litter

private:
    std::filesystem::path m_root;
    ScopedVariable m_temp;
    ScopedVariable m_config;
    ScopedVariable m_data;
    ScopedVariable m_state;
};

std::string ReadTextFile(const std::filesystem::path& path); ///< empty when there is none
void WriteTextFile(const std::filesystem::path& path, std::string_view text);

} // namespace ek
