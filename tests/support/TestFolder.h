// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <array>
#include <cstddef>
#include <filesystem>
#include <optional>
#include <string>
#include <utility>

namespace ek {

/// An empty folder of its own for one test. While it lives, temporary files, settings and the log go to folders beside
/// it; at the end all of it is gone and the environment is as before.
class TestFolder {
public:
    TestFolder();
    ~TestFolder();
    TestFolder(const TestFolder&) = delete;
    TestFolder& operator=(const TestFolder&) = delete;

    std::filesystem::path Path() const { return m_root / "work"; }
    std::filesystem::path TempPath() const { return m_root / "tmp"; }
    size_t EntryCount() const;    ///< hidden ones too
    size_t TempFileCount() const; ///< files of the stores that live, and litter

private:
    void SetVariable(size_t index, const char* name, const std::filesystem::path& value);

    std::filesystem::path m_root;
    std::array<std::pair<const char*, std::optional<std::string>>, 4> m_before;
};

} // namespace ek
