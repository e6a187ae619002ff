// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "platform/File.h"

#include <cstdint>

namespace ek {

/// Keeps the space of a file that is about to be closed and deleted, until it goes; then the system frees the space on
/// a thread of its own. For a file system that takes longer than all the rest of an edit. The file's name and handle go
/// at once as ever. No outcome: nobody can see the space any more, and a File that finds the disk full waits for it.
/// Any thread, also at the end of the program; the space is free at the latest then.
class DeferredSpaceRelease {
public:
    explicit DeferredSpaceRelease(const File& file);
    ~DeferredSpaceRelease();
    DeferredSpaceRelease(const DeferredSpaceRelease&) = delete;
    DeferredSpaceRelease& operator=(const DeferredSpaceRelease&) = delete;

private:
    int m_descriptor;
};

uint64_t ReleasedSpaces();      ///< how many files that thread has freed so far
uint64_t AwaitReleasedSpaces(); ///< the same, once it has none left to free

} // namespace ek
