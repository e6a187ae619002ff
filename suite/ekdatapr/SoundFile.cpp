// SPDX-License-Identifier: GPL-3.0-or-later
#include "ekdatapr/SoundFile.h"

#include <cstdio>
#include <system_error>
#include <utility>

namespace ek {

namespace {

FileStream& Stream(void* user)
{
    return *static_cast<FileStream*>(user);
}

sf_count_t StreamLength(void* user)
{
    return static_cast<sf_count_t>(Stream(user).Length());
}

sf_count_t StreamTell(void* user)
{
    return static_cast<sf_count_t>(Stream(user).Position());
}

sf_count_t StreamSeek(sf_count_t offset, int whence, void* user)
{
    sf_count_t start = 0;
    if (whence != SEEK_SET)
        start = whence == SEEK_CUR ? StreamTell(user) : StreamLength(user);
    sf_count_t position = 0;
    if (__builtin_add_overflow(start, offset, &position) || position < 0)
        return -1;
    Stream(user).Seek(static_cast<uint64_t>(position));
    return position;
}

sf_count_t StreamRead(void* buffer, sf_count_t bytes, void* user)
{
    return bytes < 0 ? 0 : static_cast<sf_count_t>(Stream(user).Read(buffer, static_cast<uint64_t>(bytes)));
}

sf_count_t StreamWrite(const void* data, sf_count_t bytes, void* user)
{
    return bytes < 0 ? 0 : static_cast<sf_count_t>(Stream(user).Write(data, static_cast<uint64_t>(bytes)));
}

} // namespace

SoundFile::~SoundFile()
{
    if (m_handle)
        sf_close(m_handle);
}

bool SoundFile::OpenForReading(const std::filesystem::path& path)
{
    // Opening a pipe would wait for its other end, and a device may never end.
    std::error_code error;
    if (!std::filesystem::is_regular_file(path, error) || !m_stream.OpenForReading(path).Ok())
        return false;
    return Attach(SFM_READ) && m_stream.Error().Ok();
}

bool SoundFile::Create(const std::filesystem::path& path, const SF_INFO& info, uint64_t maxBytes)
{
    m_info = info;
    if (!sf_format_check(&info) || !m_stream.Create(path, maxBytes).Ok())
        return false;
    if (Attach(SFM_WRITE) && m_stream.Error().Ok())
        return true;
    (void)m_stream.Finish();
    (void)RemoveFile(path);
    return false;
}

bool SoundFile::Attach(int mode)
{
    SF_VIRTUAL_IO calls{StreamLength, StreamSeek, StreamRead, StreamWrite, StreamTell};
    m_handle = sf_open_virtual(&calls, mode, &m_info, &m_stream);
    return m_handle != nullptr;
}

bool SoundFile::Finish()
{
    const bool completed = sf_close(std::exchange(m_handle, nullptr)) == 0;
    return m_stream.Finish().Ok() && completed;
}

} // namespace ek
