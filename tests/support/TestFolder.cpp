// SPDX-License-Identifier: GPL-3.0-or-later
#include "support/TestFolder.h"

#include <cstdlib>
#include <iterator>

namespace ek {

namespace fs = std::filesystem;

namespace {

size_t CountEntries(const fs::path& folder)
{
    return static_cast<size_t>(std::distance(fs::directory_iterator(folder), fs::directory_iterator()));
}

} // namespace

TestFolder::TestFolder()
{
    std::string pattern = fs::temp_directory_path() / "ek-test-XXXXXX";
    m_root = mkdtemp(pattern.data());
    fs::create_directory(Path());
    fs::create_directory(TempPath());
    SetVariable(0, "TMPDIR", TempPath());
    SetVariable(1, "XDG_CONFIG_HOME", m_root / "config");
    SetVariable(2, "XDG_DATA_HOME", m_root / "data");
    SetVariable(3, "XDG_STATE_HOME", m_root / "state");
}

TestFolder::~TestFolder()
{
    for (const auto& [name, value] : m_before) {
        if (value)
            setenv(name, value->c_str(), 1);
        else
            unsetenv(name);
    }
    std::error_code ignored;
    fs::remove_all(m_root, ignored);
}

void TestFolder::SetVariable(size_t index, const char* name, const fs::path& value)
{
    const char* before = std::getenv(name);
    m_before[index] = {name, before ? std::optional<std::string>(before) : std::nullopt};
    setenv(name, value.c_str(), 1);
}

size_t TestFolder::EntryCount() const
{
    return CountEntries(Path());
}

size_t TestFolder::TempFileCount() const
{
    return CountEntries(TempPath());
}

} // namespace ek
