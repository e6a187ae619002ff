// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <cstddef>
#include <sys/stat.h>
#include <sys/types.h>

namespace ek {

/// The system calls behind File, one virtual function each; results and errno are the system's. A test installs
/// a subclass that fails the n-th call of a kind.
class FileCalls {
public:
    virtual ~FileCalls() = default;
    virtual int Open(const char* path, int flags, mode_t mode);
    virtual int Close(int descriptor);
    virtual int FStat(int descriptor, struct stat* status);
    virtual ssize_t PRead(int descriptor, void* buffer, size_t length, off_t position);
    virtual ssize_t PWrite(int descriptor, const void* data, size_t length, off_t position);
    virtual int FTruncate(int descriptor, off_t size);
    virtual int FAllocate(int descriptor, off_t size); ///< 0 or an error number, as posix_fallocate
    virtual int FSync(int descriptor);
    virtual int FChMod(int descriptor, mode_t mode);
    virtual int Lock(int descriptor);                                         ///< as flock, exclusive; waits
    virtual int StartWriteback(int descriptor, off_t position, off_t length); ///< as sync_file_range
    virtual int Rename(const char* from, const char* to);
    virtual int Unlink(const char* path);
    virtual void* MMap(size_t length, int descriptor);
    virtual int MUnmap(void* address, size_t length);
    virtual ssize_t CopyRange(int from, int to, size_t length); ///< as copy_file_range at the current offsets
};

/// The calls in force; the system's own unless a test has installed others.
FileCalls& CurrentFileCalls();

/// Installs `calls` for its own lifetime. Not for concurrent use with running file calls.
class ScopedFileCalls {
public:
    explicit ScopedFileCalls(FileCalls& calls);
    ~ScopedFileCalls();
    ScopedFileCalls(const ScopedFileCalls&) = delete;
    ScopedFileCalls& operator=(const ScopedFileCalls&) = delete;

private:
    FileCalls* m_previous;
};

} // namespace ek
