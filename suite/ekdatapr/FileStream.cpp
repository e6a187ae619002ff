// SPDX-License-Identifier: GPL-3.0-or-later
#include "ekdatapr/FileStream.h"

#include <algorithm>
#include <cerrno>
#include <cstring>

namespace ek {

namespace {

constexpr uint64_t ReadAheadBytes = uint64_t{64} << 10;
// Small enough to stay in the processor's cache between the two copies, large enough to make calls rare.
constexpr uint64_t WriteBufferBytes = uint64_t{256} << 10;
constexpr uint64_t WritebackBytes = uint64_t{8} << 20;
constexpr uint32_t NewFileMode = 0666; // less the user's mask: the file is the user's own, not a temporary one

} // namespace

IoStatus FileStream::OpenForReading(const std::filesystem::path& path)
{
    Keep(m_file.Open(path, File::Access::Read));
    if (m_error.Ok())
        Keep(m_file.Size(m_length));
    m_buffer.resize(ReadAheadBytes);
    return m_error;
}

IoStatus FileStream::Create(const std::filesystem::path& path, uint64_t maxBytes)
{
    m_maxBytes = maxBytes;
    m_buffer.resize(WriteBufferBytes);
    Keep(m_file.CreateNew(path, NewFileMode));
    return m_error;
}

void FileStream::WritePrefix(std::string_view bytes)
{
    Write(bytes.data(), bytes.size());
    m_origin = m_position;
}

bool FileStream::Peek(void* buffer, uint64_t bytes, uint64_t position) const
{
    return m_file.ReadAllAt(buffer, bytes, m_origin + position).Ok();
}

uint64_t FileStream::Read(void* buffer, uint64_t bytes)
{
    if (m_maxBytes > 0)
        return 0; // a stream that is being written
    uint64_t done = ReadBuffered(static_cast<uint8_t*>(buffer), bytes);
    while (done < bytes) {
        uint8_t* const place = static_cast<uint8_t*>(buffer) + done;
        if (bytes - done >= m_buffer.size()) {
            uint64_t got = 0;
            Keep(m_file.ReadAt(place, bytes - done, m_position, got));
            m_position += got;
            return done + got;
        }
        if (!FillBuffer())
            break;
        done += ReadBuffered(place, bytes - done);
    }
    return done;
}

uint64_t FileStream::ReadBuffered(uint8_t* place, uint64_t bytes)
{
    if (m_position < m_bufferStart || m_position >= BufferEnd())
        return 0;
    const uint64_t count = std::min(bytes, BufferEnd() - m_position);
    std::memcpy(place, m_buffer.data() + (m_position - m_bufferStart), count);
    m_position += count;
    return count;
}

bool FileStream::FillBuffer()
{
    m_bufferStart = m_position;
    Keep(m_file.ReadAt(m_buffer.data(), m_buffer.size(), m_position, m_bufferUsed));
    return m_bufferUsed > 0;
}

uint64_t FileStream::Write(const void* data, uint64_t bytes)
{
    if (m_position + bytes > m_maxBytes)
        Keep(IoStatus(EFBIG));
    if (m_position != BufferEnd())
        Flush();
    uint64_t done = 0;
    while (done < bytes && m_error.Ok())
        done += Append(static_cast<const uint8_t*>(data) + done, bytes - done);
    return m_error.Ok() ? done : 0;
}

uint64_t FileStream::Append(const uint8_t* data, uint64_t bytes)
{
    if (m_bufferUsed == 0)
        m_bufferStart = m_position;
    // The buffer is full at multiples of its size, so that whole pages go to the file.
    const uint64_t room = m_buffer.size() - m_position % m_buffer.size();
    const uint64_t count = std::min(bytes, room);
    std::memcpy(m_buffer.data() + m_bufferUsed, data, count);
    m_bufferUsed += count;
    m_position += count;
    m_length = std::max(m_length, m_position);
    if (count == room)
        Flush();
    return count;
}

void FileStream::Flush()
{
    if (m_bufferUsed > 0 && m_error.Ok())
        Keep(m_file.WriteAt(m_buffer.data(), m_bufferUsed, m_bufferStart));
    m_bufferStart = BufferEnd();
    m_bufferUsed = 0;
    StartWriteback();
}

// Keeps the disk busy while the sound is still being made, so that the sync at the end is short.
void FileStream::StartWriteback()
{
    if (m_bufferStart < m_writebackStart + WritebackBytes)
        return;
    m_file.StartWriteback(m_writebackStart, m_bufferStart - m_writebackStart);
    m_writebackStart = m_bufferStart;
}

IoStatus FileStream::Finish()
{
    if (!m_file.IsOpen())
        return m_error;
    Flush();
    if (m_error.Ok())
        Keep(m_file.Sync());
    Keep(m_file.Close());
    return m_error;
}

void FileStream::Keep(IoStatus status)
{
    if (m_error.Ok())
        m_error = status;
}

} // namespace ek
