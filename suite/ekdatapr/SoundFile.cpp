// SPDX-License-Identifier: GPL-3.0-or-later
#include "ekdatapr/SoundFile.h"

#include <algorithm>
#include <array>
#include <cstdio>
#include <cstring>
#include <string_view>
#include <system_error>
#include <utility>

namespace ek {

namespace {

FileStream& Stream(void* user)
{
    return static_cast<SoundFile*>(user)->Stream();
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
    return bytes < 0 ? 0 : static_cast<sf_count_t>(static_cast<SoundFile*>(user)->Read(buffer, bytes));
}

sf_count_t StreamWrite(const void* data, sf_count_t bytes, void* user)
{
    return bytes < 0 ? 0 : static_cast<sf_count_t>(Stream(user).Write(data, static_cast<uint64_t>(bytes)));
}

// The size of a RIFF file that was never closed, as the library knows it, and its place in the file.
constexpr uint32_t UnfinishedRiffSize = 8;
constexpr uint64_t RiffSizePosition = 4;

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
    if (!Attach(SFM_READ))
        return false;
    if (m_info.frames == 0 && IsUnfinishedRiff()) {
        sf_close(std::exchange(m_handle, nullptr));
        m_stream.Seek(0);
        m_info = {};
        m_unfinished = true;
        if (!Attach(SFM_READ))
            return false;
    }
    return m_stream.Error().Ok();
}

// The sizes in the header of a recording that was interrupted say nothing, but the sound is there.
bool SoundFile::IsUnfinishedRiff() const
{
    std::array<char, 12> header{};
    if (!m_stream.Peek(header.data(), header.size(), 0))
        return false;
    const std::string_view marks(header.data(), header.size());
    uint32_t size = 0;
    std::memcpy(&size, header.data() + RiffSizePosition, sizeof size);
    const uint64_t told = uint64_t{size} + RiffSizePosition + sizeof size;
    const bool isTrue = told == m_stream.Length() || told == m_stream.Length() + 1; // the last byte is padding
    return marks.starts_with("RIFF") && marks.ends_with("WAVE") && !isTrue;
}

uint64_t SoundFile::Read(void* buffer, uint64_t bytes)
{
    const uint64_t start = m_stream.Position();
    const uint64_t done = m_stream.Read(buffer, bytes);
    constexpr uint64_t end = RiffSizePosition + sizeof UnfinishedRiffSize;
    for (uint64_t at = std::max(start, RiffSizePosition); m_unfinished && at < std::min(start + done, end); ++at)
        static_cast<uint8_t*>(buffer)[at - start] =
            static_cast<uint8_t>(UnfinishedRiffSize >> (8 * (at - RiffSizePosition)));
    return done;
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
    m_handle = sf_open_virtual(&calls, mode, &m_info, this);
    return m_handle != nullptr;
}

bool SoundFile::Finish()
{
    const bool completed = sf_close(std::exchange(m_handle, nullptr)) == 0;
    return m_stream.Finish().Ok() && completed;
}

} // namespace ek
