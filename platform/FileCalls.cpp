// SPDX-License-Identifier: GPL-3.0-or-later
#include "platform/FileCalls.h"

#include <cstdio>
#include <fcntl.h>
#include <sys/file.h>
#include <sys/mman.h>
#include <unistd.h>

namespace ek {

namespace {

FileCalls g_systemCalls;
FileCalls* g_calls = &g_systemCalls;

} // namespace

int FileCalls::Open(const char* path, int flags, mode_t mode)
{
    return ::open(path, flags, mode);
}

int FileCalls::Close(int descriptor)
{
    return ::close(descriptor);
}

int FileCalls::FStat(int descriptor, struct stat* status)
{
    return ::fstat(descriptor, status);
}

ssize_t FileCalls::PRead(int descriptor, void* buffer, size_t length, off_t position)
{
    return ::pread(descriptor, buffer, length, position);
}

ssize_t FileCalls::PWrite(int descriptor, const void* data, size_t length, off_t position)
{
    return ::pwrite(descriptor, data, length, position);
}

int FileCalls::FTruncate(int descriptor, off_t size)
{
    return ::ftruncate(descriptor, size);
}

int FileCalls::FAllocate(int descriptor, off_t size)
{
    return ::posix_fallocate(descriptor, 0, size);
}

int FileCalls::FSync(int descriptor)
{
    return ::fsync(descriptor);
}

int FileCalls::FChMod(int descriptor, mode_t mode)
{
    return ::fchmod(descriptor, mode);
}

int FileCalls::Lock(int descriptor)
{
    return ::flock(descriptor, LOCK_EX);
}

int FileCalls::StartWriteback(int descriptor, off_t position, off_t length)
{
    return ::sync_file_range(descriptor, position, length, SYNC_FILE_RANGE_WRITE);
}

int FileCalls::Rename(const char* from, const char* to)
{
    return ::rename(from, to);
}

int FileCalls::Unlink(const char* path)
{
    return ::unlink(path);
}

void* FileCalls::MMap(size_t length, int descriptor)
{
    return ::mmap(nullptr, length, PROT_READ | PROT_WRITE, MAP_SHARED, descriptor, 0);
}

int FileCalls::MUnmap(void* address, size_t length)
{
    return ::munmap(address, length);
}

ssize_t FileCalls::CopyRange(int from, int to, size_t length)
{
    return ::copy_file_range(from, nullptr, to, nullptr, length, 0);
}

FileCalls& CurrentFileCalls()
{
    return *g_calls;
}

ScopedFileCalls::ScopedFileCalls(FileCalls& calls) : m_previous(g_calls)
{
    g_calls = &calls;
}

ScopedFileCalls::~ScopedFileCalls()
{
    g_calls = m_previous;
}

} // namespace ek
