// SPDX-License-Identifier: GPL-3.0-or-later
#include "platform/MappedFile.h"
#include "platform/FileCalls.h"
#include "platform/SpaceRelease.h"
#include "platform/TempFile.h"

#include <algorithm>
#include <cerrno>
#include <sys/mman.h>
#include <utility>

namespace ek {

namespace {

// The system maps no empty range.
uint64_t MappedBytes(uint64_t size)
{
    return std::max<uint64_t>(size, 1);
}

} // namespace

MappedFile::~MappedFile()
{
    (void)Close();
}

IoStatus MappedFile::CreateTemporary(uint64_t size)
{
    (void)Close();
    IoStatus status = CreateTempFile("ekesb", ".tmp", m_file, m_path);
    if (!status.Ok())
        return status;
    status = Map(size);
    if (!status.Ok())
        (void)CloseAndRemove();
    return status;
}

IoStatus MappedFile::Open(const std::filesystem::path& path)
{
    (void)Close();
    m_path = path;
    uint64_t size = 0;
    IoStatus status = m_file.Open(path, File::Access::ReadWrite);
    if (status.Ok())
        status = m_file.Size(size);
    if (status.Ok())
        status = Map(size);
    if (!status.Ok())
        (void)Close();
    return status;
}

IoStatus MappedFile::Map(uint64_t size)
{
    if (const IoStatus status = m_file.Allocate(MappedBytes(size)); !status.Ok())
        return status;
    void* const address = CurrentFileCalls().MMap(static_cast<size_t>(MappedBytes(size)), m_file.Descriptor());
    if (address == MAP_FAILED)
        return IoStatus(errno);
    m_data = static_cast<uint8_t*>(address);
    m_size = size;
    return {};
}

IoStatus MappedFile::Close()
{
    IoStatus status;
    uint8_t* const data = std::exchange(m_data, nullptr);
    const uint64_t size = std::exchange(m_size, 0);
    if (data && CurrentFileCalls().MUnmap(data, static_cast<size_t>(MappedBytes(size))) == -1)
        status = IoStatus(errno);
    const IoStatus closed = m_file.Close();
    return status.Ok() ? closed : status;
}

IoStatus MappedFile::CloseAndRemove()
{
    const bool wasOpen = m_file.IsOpen();
    const DeferredSpaceRelease space(m_file);
    const IoStatus closed = Close();
    const IoStatus removed = wasOpen ? RemoveFile(m_path) : IoStatus();
    return closed.Ok() ? removed : closed;
}

void MappedFile::ReleaseMemory() const
{
    if (m_data)
        (void)::madvise(m_data, static_cast<size_t>(MappedBytes(m_size)), MADV_DONTNEED); // shared: nothing is lost
}

} // namespace ek
