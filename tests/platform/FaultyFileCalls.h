// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "platform/FileCalls.h"

#include <algorithm>
#include <cerrno>
#include <cstdint>
#include <map>
#include <string>
#include <sys/mman.h>

namespace ek::test {

/// The system's calls, with faults on order: the n-th call of a kind fails, every other transfer is interrupted, and
/// transfers move a few bytes at a time.
class FaultyFileCalls : public FileCalls {
public:
    /// Only that one call fails; the ones before and after it work.
    void FailCall(const std::string& kind, int error, int nth = 1) { m_faults[kind] = {.Error = error, .Nth = nth}; }
    void InterruptEveryOther(bool interrupt) { m_interrupt = interrupt; }
    void LimitTransfers(size_t bytes) { m_transferLimit = bytes; }
    int CallCount(const std::string& kind) const { return m_counts.contains(kind) ? m_counts.at(kind) : 0; }
    int OpenDescriptors() const { return m_openDescriptors; }

    int Open(const char* path, int flags, mode_t mode) override
    {
        const int descriptor = IsDue("Open") ? -1 : FileCalls::Open(path, flags, mode);
        m_openDescriptors += descriptor >= 0;
        return descriptor;
    }
    int Close(int descriptor) override
    {
        --m_openDescriptors;
        const int result = FileCalls::Close(descriptor); // an error of close still frees the descriptor
        return IsDue("Close") ? -1 : result;
    }
    int FStat(int descriptor, struct stat* status) override
    {
        return IsDue("FStat") ? -1 : FileCalls::FStat(descriptor, status);
    }
    ssize_t PRead(int descriptor, void* buffer, size_t length, off_t position) override
    {
        return IsDue("PRead") ? -1 : FileCalls::PRead(descriptor, buffer, Limited(length), position);
    }
    ssize_t PWrite(int descriptor, const void* data, size_t length, off_t position) override
    {
        return IsDue("PWrite") ? -1 : FileCalls::PWrite(descriptor, data, Limited(length), position);
    }
    int FTruncate(int descriptor, off_t size) override
    {
        return IsDue("FTruncate") ? -1 : FileCalls::FTruncate(descriptor, size);
    }
    int FAllocate(int descriptor, off_t size) override
    {
        return IsDue("FAllocate") ? errno : FileCalls::FAllocate(descriptor, size);
    }
    int FSync(int descriptor) override { return IsDue("FSync") ? -1 : FileCalls::FSync(descriptor); }
    int Rename(const char* from, const char* to) override { return IsDue("Rename") ? -1 : FileCalls::Rename(from, to); }
    int Unlink(const char* path) override { return IsDue("Unlink") ? -1 : FileCalls::Unlink(path); }
    void* MMap(size_t length, int descriptor) override
    {
        return IsDue("MMap") ? MAP_FAILED : FileCalls::MMap(length, descriptor);
    }
    ssize_t CopyRange(int from, int to, size_t length) override
    {
        return IsDue("CopyRange") ? -1 : FileCalls::CopyRange(from, to, Limited(length));
    }

private:
    struct Fault {
        int Error = 0;
        int Nth = 0;
    };

    bool IsDue(const std::string& kind)
    {
        const int count = ++m_counts[kind];
        const auto fault = m_faults.find(kind);
        const bool fails = fault != m_faults.end() && fault->second.Nth == count;
        const bool interrupted = !fails && m_interrupt && kind != "MMap" && kind != "Close" && count % 2 == 1;
        if (fails || interrupted)
            errno = fails ? fault->second.Error : EINTR;
        return fails || interrupted;
    }
    size_t Limited(size_t length) const { return std::min(length, m_transferLimit); }

    std::map<std::string, Fault> m_faults;
    std::map<std::string, int> m_counts;
    bool m_interrupt = false;
    size_t m_transferLimit = SIZE_MAX;
    int m_openDescriptors = 0;
};

} // namespace ek::test
