// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <filesystem>
#include <fstream>
#include <iterator>
#include <stdexcept>
#include <string>
#include <string_view>

#include <stdlib.h>

namespace ek {

/// A new folder under the system's temporary one, removed with all it holds.
class Scratch {
public:
    Scratch()
    {
        std::string name = (std::filesystem::temp_directory_path() / "ekhostXXXXXX").native();
        if (!mkdtemp(name.data()))
            throw std::runtime_error("no scratch folder");
        m_path = name;
    }
    ~Scratch()
    {
        std::error_code ignored;
        std::filesystem::remove_all(m_path, ignored);
    }
    Scratch(const Scratch&) = delete;
    Scratch& operator=(const Scratch&) = delete;

    const std::filesystem::path& Path() const { return m_path; }
    std::filesystem::path operator/(const std::filesystem::path& name) const { return m_path / name; }

    std::filesystem::path Write(const std::filesystem::path& name, std::string_view text) const
    {
        const std::filesystem::path file = m_path / name;
        std::filesystem::create_directories(file.parent_path());
        std::ofstream(file, std::ios::binary) << text;
        return file;
    }

private:
    std::filesystem::path m_path;
};

} // namespace ek
