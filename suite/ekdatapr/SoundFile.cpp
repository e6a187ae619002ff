// SPDX-License-Identifier: GPL-3.0-or-later
#include "ekdatapr/SoundFile.h"

#include <algorithm>
#include <cstdio>
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
    return bytes < 0 ? 0 : static_cast<sf_count_t>(static_cast<SoundFile*>(user)->Write(data, bytes));
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
    const bool opened = Attach(SFM_READ);
    const bool hasSound = opened && m_info.frames > 0;
    if (const auto patch = hasSound ? std::nullopt : PatchUnfinished(m_stream))
        return m_stream.Error().Ok() && Reopen(*patch);
    return opened && m_stream.Error().Ok();
}

bool SoundFile::Reopen(const HeaderPatch& patch)
{
    if (m_handle)
        sf_close(std::exchange(m_handle, nullptr));
    m_stream.Seek(0);
    m_info = {};
    m_patch = patch;
    return Attach(SFM_READ) && m_stream.Error().Ok();
}

uint64_t SoundFile::Read(void* buffer, uint64_t bytes)
{
    const uint64_t start = m_stream.Position();
    const uint64_t done = m_stream.Read(buffer, bytes);
    const uint64_t patchEnd = m_patch.Position + m_patch.Bytes.size();
    for (uint64_t at = std::max(start, m_patch.Position); at < std::min(start + done, patchEnd); ++at)
        static_cast<char*>(buffer)[at - start] = m_patch.Bytes[at - m_patch.Position];
    return done;
}

uint64_t SoundFile::Write(const void* data, uint64_t bytes)
{
    const bool isLastHeader = m_frames && m_stream.Position() == 0;
    if (!isLastHeader || (m_info.format & SF_FORMAT_SUBMASK) != SF_FORMAT_IMA_ADPCM)
        return m_stream.Write(data, bytes);
    const std::string header = WithFactFrames(std::string(static_cast<const char*>(data), bytes), *m_frames);
    return m_stream.Write(header.data(), header.size());
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

bool SoundFile::Finish(uint64_t frames)
{
    m_frames = frames;
    const bool completed = sf_close(std::exchange(m_handle, nullptr)) == 0;
    return m_stream.Finish().Ok() && completed;
}

} // namespace ek
