// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "platform/File.h"

#include <filesystem>

namespace ek {

/// Keeps everyone else who locks the same file waiting, other processes too, for as long as it lives. The file is made
/// when it is missing, is empty and stays: were it removed, two could hold locks on two files of that name.
class FileLock {
public:
    explicit FileLock(const std::filesystem::path& path); ///< waits
    ~FileLock();
    FileLock(const FileLock&) = delete;
    FileLock& operator=(const FileLock&) = delete;

    IoStatus Status() const { return m_status; } ///< on failure nothing is locked

private:
    int m_descriptor = -1;
    IoStatus m_status;
};

} // namespace ek
