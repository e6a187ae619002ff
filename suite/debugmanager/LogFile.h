// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <cstddef>
#include <filesystem>
#include <string_view>

namespace ek {

/// A file of lines that several writers, of this process and of others, append to at the same time. When it is full
/// its name goes to a new one, and the two before it are kept: "editor.log", "editor.1.log", "editor.2.log". Calls the
/// system itself, because the log must not fail along with the files it tells about. One thread at a time.
class LogFile {
public:
    static constexpr size_t MaxBytes = size_t{2} << 20;

    explicit LogFile(std::filesystem::path path); ///< makes the folder; the file is made by the first line
    ~LogFile();
    LogFile(const LogFile&) = delete;
    LogFile& operator=(const LogFile&) = delete;

    /// The line comes with its end. It is lost when the file cannot be opened; the next one is tried again.
    void Append(std::string_view line);

private:
    void Open();
    void Close();
    bool IsCurrent() const; ///< open, and no other writer has renamed it
    bool HasRoomFor(size_t bytes) const;
    void Rotate();
    std::filesystem::path OldPath(int age) const;

    std::filesystem::path m_path;
    int m_descriptor = -1;
};

} // namespace ek
