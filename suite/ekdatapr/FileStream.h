// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "platform/File.h"

#include <cstdint>
#include <filesystem>
#include <string_view>
#include <vector>

namespace ek {

/// A file with one position, as the sound library wants it, either read or written. Small transfers go through a
/// buffer. A call that fails is remembered for good: everything written after it is refused.
class FileStream {
public:
    IoStatus OpenForReading(const std::filesystem::path& path);
    /// A new file; a write that would make it longer than `maxBytes` fails with EFBIG.
    IoStatus Create(const std::filesystem::path& path, uint64_t maxBytes);

    /// Writes `bytes` in front of all others: position 0 is behind them from then on. Only before the first write.
    void WritePrefix(std::string_view bytes);

    uint64_t Length() const { return m_length - m_origin; }
    uint64_t Position() const { return m_position - m_origin; }
    void Seek(uint64_t position) { m_position = m_origin + position; }
    /// The bytes transferred; fewer than asked at the end of the file and on failure.
    uint64_t Read(void* buffer, uint64_t bytes);
    uint64_t Write(const void* data, uint64_t bytes);
    /// Reads a range without moving the position. False when it is not all there.
    bool Peek(void* buffer, uint64_t bytes, uint64_t position) const;

    /// Writes what is still buffered, syncs and closes. The first failure in the life of the stream, if there is one.
    IoStatus Finish();
    const IoStatus& Error() const { return m_error; }

private:
    void Keep(IoStatus status);
    uint64_t BufferEnd() const { return m_bufferStart + m_bufferUsed; }
    uint64_t ReadBuffered(uint8_t* place, uint64_t bytes);
    bool FillBuffer();
    uint64_t Append(const uint8_t* data, uint64_t bytes);
    void Flush();
    void StartWriteback();

    // Positions are those of the file, the prefix included.
    File m_file;
    uint64_t m_origin = 0;
    uint64_t m_position = 0;
    uint64_t m_length = 0;
    uint64_t m_maxBytes = 0;
    std::vector<uint8_t> m_buffer;
    uint64_t m_bufferStart = 0;
    uint64_t m_bufferUsed = 0;
    uint64_t m_writebackStart = 0;
    IoStatus m_error;
};

} // namespace ek
