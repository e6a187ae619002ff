// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "platform/File.h"

#include <cstdint>
#include <filesystem>

namespace ek {

/// A file mapped for reading and writing. Its disk space is allocated before it is mapped, so a full disk is an
/// error of Create and never a signal on access.
class MappedFile {
public:
    MappedFile() = default;
    ~MappedFile(); ///< unmaps and closes; the file stays
    MappedFile(const MappedFile&) = delete;
    MappedFile& operator=(const MappedFile&) = delete;

    /// A new temporary file of `size` zero bytes. A size of 0 maps one byte.
    IoStatus CreateTemporary(uint64_t size);
    IoStatus Open(const std::filesystem::path& path); ///< an existing file, all of it
    IoStatus Close();
    IoStatus CloseAndRemove();
    /// The bytes no longer count as memory of the process until they are used again; what was written stays.
    void ReleaseMemory() const;

    uint8_t* Data() const { return m_data; } ///< null while nothing is mapped
    uint64_t Size() const { return m_size; } ///< the bytes asked for, or the file's size
    /// Of the file that is or was the last one; after a failed creation the name that was tried.
    const std::filesystem::path& Path() const { return m_path; }

private:
    IoStatus Map(uint64_t size);

    File m_file;
    std::filesystem::path m_path;
    uint8_t* m_data = nullptr;
    uint64_t m_size = 0;
};

} // namespace ek
