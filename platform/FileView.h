// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "platform/File.h"

#include <cstddef>
#include <cstdint>

namespace ek {

/// Parts of files mapped for reading: what is read once goes without the copy that File::ReadAt makes. A part has been
/// read when Map returns, so that a disk that fails is an error there and not a signal on access. All parts are
/// unmapped at once at the end: unmapping interrupts every thread of the program, however much it is.
class FileView {
public:
    /// Room for so many bytes, with what rounding each part to whole pages takes. Nothing is in memory yet.
    explicit FileView(uint64_t capacity);
    ~FileView();
    FileView(const FileView&) = delete;
    FileView& operator=(const FileView&) = delete;

    /// The bytes of a part that the file has; null when it cannot be mapped, the room is used up, or the disk fails:
    /// reading it will do, or say why not.
    const uint8_t* Map(const File& file, uint64_t position, uint64_t length);

private:
    uint8_t* m_room = nullptr;
    size_t m_capacity;
    size_t m_used = 0; ///< whole pages
};

} // namespace ek
