// SPDX-License-Identifier: GPL-3.0-or-later
#include "support/TestFolder.h"

#include <cstdlib>
#include <fstream>
#include <iterator>

namespace ek {

namespace fs = std::filesystem;

namespace {

size_t CountEntries(const fs::path& folder)
{
    return static_cast<size_t>(std::distance(fs::directory_iterator(folder), fs::directory_iterator()));
}

fs::path MakeFolder(const fs::path& parent)
{
    std::string pattern = parent / "ek-test-XXXXXX";
    return mkdtemp(pattern.data());
}

} // namespace

ScopedVariable::ScopedVariable(const char* name, const char* value) : m_name(name)
{
    if (const char* const before = std::getenv(name))
        m_before = before;
    value ? setenv(name, value, 1) : unsetenv(name);
}

ScopedVariable::~ScopedVariable()
{
    m_before ? setenv(m_name, m_before->c_str(), 1) : unsetenv(m_name);
}

TestFolder::TestFolder(const fs::path& parent)
    : m_root(MakeFolder(parent)), m_temp("TMPDIR", (m_root / "tmp").c_str()),
      m_config("XDG_CONFIG_HOME", (m_root / "config").c_str()), m_data("XDG_DATA_HOME", (m_root / "data").c_str()),
      m_state("XDG_STATE_HOME", (m_root / "state").c_str())
{
    fs::create_directory(Path());
    fs::create_directory(TempPath());
}

TestFolder::~TestFolder()
{
    std::error_code ignored;
    fs::remove_all(m_root, ignored);
}

size_t TestFolder::EntryCount() const
{
    return CountEntries(Path());
}

size_t TestFolder::TempFileCount() const
{
    return CountEntries(TempPath());
}

std::string ReadTextFile(const fs::path& path)
{
    std::ifstream stream(path, std::ios::binary);
    return {std::istreambuf_iterator<char>(stream), {}};
}

void WriteTextFile(const fs::path& path, std::string_view text)
{
    std::ofstream(path, std::ios::binary).write(text.data(), static_cast<std::streamsize>(text.size()));
}

} // namespace ek
