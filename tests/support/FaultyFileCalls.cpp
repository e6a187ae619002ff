// SPDX-License-Identifier: GPL-3.0-or-later
#include "support/FaultyFileCalls.h"

#include <algorithm>
#include <cerrno>
#include <cstring>
#include <limits>
#include <sys/mman.h>

namespace ek {

FaultyFileCalls::FaultyFileCalls(std::string pathFragment, uint32_t kinds)
    : m_pathFragment(std::move(pathFragment)), m_kinds(kinds), m_installed(*this)
{
}

void FaultyFileCalls::Order(uint64_t first, uint64_t last, int error)
{
    const std::lock_guard lock(m_mutex);
    m_count = 0;
    m_first = first;
    m_last = last;
    m_error = error;
    m_failed = false;
}

void FaultyFileCalls::FailCall(uint64_t nth, int error)
{
    Order(nth, nth, error);
}

void FaultyFileCalls::FailFrom(uint64_t nth, int error)
{
    Order(nth, std::numeric_limits<uint64_t>::max(), error);
}

void FaultyFileCalls::StopFailing()
{
    const std::lock_guard lock(m_mutex);
    m_first = 0;
}

void FaultyFileCalls::InterruptEveryOther()
{
    const std::lock_guard lock(m_mutex);
    m_interrupts = true;
}

void FaultyFileCalls::LimitTransfers(size_t bytes)
{
    const std::lock_guard lock(m_mutex);
    m_transferLimit = bytes;
}

uint64_t FaultyFileCalls::CallCount() const
{
    const std::lock_guard lock(m_mutex);
    return m_count;
}

bool FaultyFileCalls::HasFailed() const
{
    const std::lock_guard lock(m_mutex);
    return m_failed;
}

int FaultyFileCalls::OpenDescriptors() const
{
    const std::lock_guard lock(m_mutex);
    return static_cast<int>(m_watched.size());
}

bool FaultyFileCalls::IsWatched(const char* path) const
{
    return std::strstr(path, m_pathFragment.c_str()) != nullptr;
}

/// Call with the mutex held.
bool FaultyFileCalls::Interrupts(Kind kind)
{
    constexpr uint32_t Never = Closes | Queries | Renames | Removals | Mappings;
    if (!m_interrupts || (kind & Never) != 0)
        return false;
    m_interruptsNext = !m_interruptsNext;
    if (m_interruptsNext)
        errno = EINTR;
    return m_interruptsNext;
}

/// Call with the mutex held.
bool FaultyFileCalls::Fails(Kind kind, bool watched)
{
    if (!watched || (m_kinds & kind) == 0)
        return false;
    if (Interrupts(kind))
        return true;
    ++m_count;
    const bool fails = m_first != 0 && m_count >= m_first && m_count <= m_last;
    m_failed = m_failed || fails;
    if (fails)
        errno = m_error;
    return fails;
}

bool FaultyFileCalls::FailsFor(Kind kind, int descriptor)
{
    const std::lock_guard lock(m_mutex);
    return Fails(kind, m_watched.contains(descriptor));
}

size_t FaultyFileCalls::Limited(size_t length) const
{
    const std::lock_guard lock(m_mutex);
    return std::min(length, m_transferLimit);
}

int FaultyFileCalls::Open(const char* path, int flags, mode_t mode)
{
    const std::lock_guard lock(m_mutex);
    if (Fails(Opens, IsWatched(path)))
        return -1;
    const int descriptor = FileCalls::Open(path, flags, mode);
    if (descriptor >= 0 && IsWatched(path))
        m_watched.insert(descriptor);
    return descriptor;
}

int FaultyFileCalls::Close(int descriptor)
{
    const std::lock_guard lock(m_mutex);
    const int result = FileCalls::Close(descriptor); // an error of close still frees the descriptor
    const bool watched = m_watched.erase(descriptor) != 0;
    return Fails(Closes, watched) ? -1 : result;
}

ssize_t FaultyFileCalls::PRead(int descriptor, void* buffer, size_t length, off_t position)
{
    return FailsFor(Reads, descriptor) ? -1 : FileCalls::PRead(descriptor, buffer, Limited(length), position);
}

/// A disk that fills up takes the first half.
ssize_t FaultyFileCalls::PWrite(int descriptor, const void* data, size_t length, off_t position)
{
    if (!FailsFor(Writes, descriptor))
        return FileCalls::PWrite(descriptor, data, Limited(length), position);
    const int error = errno;
    (void)FileCalls::PWrite(descriptor, data, length / 2, position);
    errno = error;
    return -1;
}

int FaultyFileCalls::FAllocate(int descriptor, off_t size)
{
    return FailsFor(Allocations, descriptor) ? errno : FileCalls::FAllocate(descriptor, size);
}

int FaultyFileCalls::FSync(int descriptor)
{
    return FailsFor(Syncs, descriptor) ? -1 : FileCalls::FSync(descriptor);
}

int FaultyFileCalls::FStat(int descriptor, struct stat* status)
{
    return FailsFor(Queries, descriptor) ? -1 : FileCalls::FStat(descriptor, status);
}

int FaultyFileCalls::FTruncate(int descriptor, off_t size)
{
    return FailsFor(Truncations, descriptor) ? -1 : FileCalls::FTruncate(descriptor, size);
}

int FaultyFileCalls::FChMod(int descriptor, mode_t mode)
{
    return FailsFor(ModeChanges, descriptor) ? -1 : FileCalls::FChMod(descriptor, mode);
}

void* FaultyFileCalls::MMap(size_t length, int descriptor)
{
    return FailsFor(Mappings, descriptor) ? MAP_FAILED : FileCalls::MMap(length, descriptor);
}

int FaultyFileCalls::Rename(const char* from, const char* to)
{
    const std::lock_guard lock(m_mutex);
    return Fails(Renames, IsWatched(from)) ? -1 : FileCalls::Rename(from, to);
}

int FaultyFileCalls::Unlink(const char* path)
{
    const std::lock_guard lock(m_mutex);
    return Fails(Removals, IsWatched(path)) ? -1 : FileCalls::Unlink(path);
}

ssize_t FaultyFileCalls::CopyRange(int from, int to, size_t length)
{
    return FailsFor(Copies, to) ? -1 : FileCalls::CopyRange(from, to, Limited(length));
}

} // namespace ek
