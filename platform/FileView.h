// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "platform/File.h"

#include <cstddef>
#include <cstdint>

namespace ek {

/// A part of a file mapped for reading: what is read once goes without the copy that File::ReadAt makes. All of it has
/// been read when Map returns, so that a disk that fails is an error there and not a signal on access.
class FileView {
public:
    FileView() = default;
    ~FileView(); ///< unmaps
    FileView(const FileView&) = delete;
    FileView& operator=(const FileView&) = delete;

    /// Once. The file has the part. Also fails where a file cannot be mapped at all; reading may succeed then.
    IoStatus Map(const File& file, uint64_t position, uint64_t length);
    const uint8_t* Data() const { return m_data; } ///< of the position

private:
    void* m_address = nullptr;
    size_t m_mapped = 0;
    const uint8_t* m_data = nullptr;
};

} // namespace ek
