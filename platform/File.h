// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <cstdint>
#include <filesystem>
#include <string>

namespace ek {

/// The outcome of a call on a file: success, or the system's error number.
class [[nodiscard]] IoStatus {
public:
    IoStatus() = default;
    explicit IoStatus(int errorNumber) : m_errno(errorNumber) {}

    bool Ok() const { return m_errno == 0; }
    int Errno() const { return m_errno; }
    std::string Text() const; ///< for a person: "No space left on device"

private:
    int m_errno = 0;
};

/// An open file, closed by its destructor. All transfers name their position, so two threads may read one file.
/// Every system call goes through FileCalls, where a test can make it fail. A call that finds the disk full waits for
/// space that is being freed (SpaceRelease.h) and is made once more.
class File {
public:
    enum class Access { Read, ReadWrite };

    File() = default;
    ~File(); ///< closes; callers that care about the outcome call Close
    File(File&& other) noexcept;
    File& operator=(File&& other) noexcept;
    File(const File&) = delete;
    File& operator=(const File&) = delete;

    /// Never waits for another program at the far end: what is no regular file is refused, a folder with EISDIR, a
    /// device or pipe with EINVAL.
    IoStatus Open(const std::filesystem::path& path, Access access);
    /// Fails with EEXIST when anything of that name is there. The process's mask takes bits off the mode.
    IoStatus CreateNew(const std::filesystem::path& path, uint32_t mode = 0600);
    IoStatus Close();
    bool IsOpen() const { return m_descriptor >= 0; }
    int Descriptor() const { return m_descriptor; }

    /// `done` is less than `length` only at the end of the file or on failure.
    IoStatus ReadAt(void* buffer, uint64_t length, uint64_t position, uint64_t& done) const;
    /// Reads the whole range; an end of file inside it is EIO.
    IoStatus ReadAllAt(void* buffer, uint64_t length, uint64_t position) const;
    IoStatus WriteAt(const void* data, uint64_t length, uint64_t position);
    IoStatus Resize(uint64_t size); ///< new bytes read as zeros; they may be a hole
    /// Reserves disk space for [0, size) and makes the file at least that long; the new bytes read as zeros.
    IoStatus Allocate(uint64_t size);
    IoStatus Size(uint64_t& size) const;
    IoStatus Mode(uint32_t& mode) const; ///< the permissions: read, write and execute
    IoStatus SetMode(uint32_t mode);     ///< exactly these
    IoStatus Sync();
    /// Starts writing the range to disk without waiting; a hint, with no outcome.
    void StartWriteback(uint64_t position, uint64_t length);

private:
    int m_descriptor = -1;
};

IoStatus RemoveFile(const std::filesystem::path& path);
/// Puts `from` in the place of `to` in one step. On failure both are as before. Then the folder is synced, which makes
/// the step lasting; `synced` (may be null) receives the outcome of that, which changes nothing about the new file.
IoStatus RenameOver(const std::filesystem::path& from, const std::filesystem::path& to, IoStatus* synced = nullptr);
/// Takes the place of `to`, with the mode of `from`. After a failure there is nothing at `to`.
IoStatus CopyFileTo(const std::filesystem::path& from, const std::filesystem::path& to);
bool IsFile(const std::filesystem::path& path);   ///< exists and is not a folder
bool IsFolder(const std::filesystem::path& path); ///< one trailing separator is ignored

/// Raises the soft limit of open files to the hard one. Call once at start-up.
void RaiseOpenFileLimit();

} // namespace ek
