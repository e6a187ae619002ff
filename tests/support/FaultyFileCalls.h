// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "platform/FileCalls.h"

#include <cstddef>
#include <cstdint>
#include <mutex>
#include <set>
#include <string>

namespace ek {

/// The system's calls, one of which fails on order, or all from one on. Any thread. Only calls on files whose path
/// contains a fragment are counted and can fail. In force while it lives.
class FaultyFileCalls final : public FileCalls {
public:
    /// Bits of the kinds of calls that are counted.
    enum Kind : uint32_t {
        Opens = 1,
        Closes = 2,
        Reads = 4,
        Writes = 8,
        Allocations = 16,
        Syncs = 32,
        Renames = 64,
        Removals = 128,
        Copies = 256,
        Truncations = 512,
        Queries = 1024, ///< of size and mode
        ModeChanges = 2048,
        Mappings = 4096,
        AllKinds = 8191
    };
    explicit FaultyFileCalls(std::string pathFragment = {}, uint32_t kinds = AllKinds);

    void FailCall(uint64_t nth, int error); ///< counted from now on, from 1; the calls after it work again
    void FailFrom(uint64_t nth, int error); ///< all of them from that one on
    void StopFailing();
    void InterruptEveryOther();        ///< from now on every other call that a signal can interrupt is, uncounted
    void LimitTransfers(size_t bytes); ///< from now on no call moves more

    uint64_t CallCount() const; ///< since the last order
    bool HasFailed() const;     ///< since the last order
    int OpenDescriptors() const;

    int Open(const char* path, int flags, mode_t mode) override;
    int Close(int descriptor) override;
    ssize_t PRead(int descriptor, void* buffer, size_t length, off_t position) override;
    ssize_t PWrite(int descriptor, const void* data, size_t length, off_t position) override;
    int FAllocate(int descriptor, off_t size) override;
    int FSync(int descriptor) override;
    int FStat(int descriptor, struct stat* status) override;
    int FTruncate(int descriptor, off_t size) override;
    int FChMod(int descriptor, mode_t mode) override;
    void* MMap(size_t length, int descriptor) override;
    int Rename(const char* from, const char* to) override;
    int Unlink(const char* path) override;
    ssize_t CopyRange(int from, int to, size_t length) override;

private:
    void Order(uint64_t first, uint64_t last, int error);
    bool Fails(Kind kind, bool watched);
    bool Interrupts(Kind kind);
    size_t Limited(size_t length) const;
    bool FailsFor(Kind kind, int descriptor);
    bool IsWatched(const char* path) const;

    const std::string m_pathFragment;
    const uint32_t m_kinds;
    mutable std::mutex m_mutex;
    std::set<int> m_watched; ///< descriptors
    uint64_t m_count = 0;
    uint64_t m_first = 0; ///< the calls that fail; none while 0
    uint64_t m_last = 0;
    int m_error = 0;
    bool m_failed = false;
    bool m_interrupts = false;
    bool m_interruptsNext = false;
    size_t m_transferLimit = SIZE_MAX;
    ScopedFileCalls m_installed;
};

} // namespace ek
