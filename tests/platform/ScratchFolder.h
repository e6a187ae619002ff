// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <cstdlib>
#include <filesystem>
#include <fstream>
#include <iterator>
#include <string>

namespace ek::test {

/// An empty folder of its own for one test, gone with all its content at the end.
class ScratchFolder {
public:
    ScratchFolder()
    {
        std::string name = std::filesystem::temp_directory_path() / "ektestXXXXXX";
        m_path = mkdtemp(name.data());
    }
    ~ScratchFolder()
    {
        std::error_code ignored;
        std::filesystem::remove_all(m_path, ignored);
    }
    ScratchFolder(const ScratchFolder&) = delete;
    ScratchFolder& operator=(const ScratchFolder&) = delete;

    const std::filesystem::path& Path() const { return m_path; }
    std::filesystem::path operator/(const std::filesystem::path& name) const { return m_path / name; }
    size_t EntryCount() const
    {
        const std::filesystem::directory_iterator entries(m_path);
        return static_cast<size_t>(std::distance(begin(entries), end(entries)));
    }

private:
    std::filesystem::path m_path;
};

inline std::string ReadText(const std::filesystem::path& path)
{
    std::ifstream stream(path, std::ios::binary);
    return {std::istreambuf_iterator<char>(stream), {}};
}

inline void WriteText(const std::filesystem::path& path, std::string_view text)
{
    std::ofstream(path, std::ios::binary).write(text.data(), static_cast<std::streamsize>(text.size()));
}

/// An environment variable set (or, with null, removed) for the length of a test.
class ScopedVariable {
public:
    ScopedVariable(const char* name, const char* value) : m_name(name)
    {
        const char* const old = std::getenv(name);
        m_wasSet = old != nullptr;
        m_old = old ? old : "";
        Put(value);
    }
    ~ScopedVariable() { Put(m_wasSet ? m_old.c_str() : nullptr); }
    ScopedVariable(const ScopedVariable&) = delete;
    ScopedVariable& operator=(const ScopedVariable&) = delete;

private:
    void Put(const char* value) { value ? setenv(m_name, value, 1) : unsetenv(m_name); }

    const char* m_name;
    bool m_wasSet = false;
    std::string m_old;
};

} // namespace ek::test
