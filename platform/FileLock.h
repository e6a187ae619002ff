// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <filesystem>

namespace ek {

/// Keeps everyone else who locks the same file waiting, other processes too, for as long as it lives. The file is made
/// when it is missing, is empty and stays: were it removed, two could hold locks on two files of that name.
class FileLock {
public:
    /// Waits. Locks nothing where the file cannot be made or the file system knows no locks.
    explicit FileLock(const std::filesystem::path& path);
    ~FileLock();
    FileLock(const FileLock&) = delete;
    FileLock& operator=(const FileLock&) = delete;

private:
    int m_descriptor;
};

} // namespace ek
