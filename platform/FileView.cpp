// SPDX-License-Identifier: GPL-3.0-or-later
#include "platform/FileView.h"
#include "platform/FileCalls.h"

#include <sys/mman.h>
#include <unistd.h>

namespace ek {

namespace {

size_t RoundUpToPage(size_t bytes)
{
    static const auto page = static_cast<size_t>(sysconf(_SC_PAGESIZE));
    return (bytes + page - 1) / page * page;
}

} // namespace

FileView::FileView(uint64_t capacity) : m_capacity(RoundUpToPage(capacity))
{
    void* const room = ::mmap(nullptr, m_capacity, PROT_NONE, MAP_PRIVATE | MAP_ANONYMOUS | MAP_NORESERVE, -1, 0);
    if (room != MAP_FAILED)
        m_room = static_cast<uint8_t*>(room);
}

FileView::~FileView()
{
    if (m_room)
        ::munmap(m_room, m_capacity);
}

const uint8_t* FileView::Map(const File& file, uint64_t position, uint64_t length)
{
    const uint64_t before = position - RoundUpToPage(position + 1) + RoundUpToPage(1);
    const size_t mapped = RoundUpToPage(before + length);
    if (!m_room || mapped > m_capacity - m_used)
        return nullptr;
    uint8_t* const place = m_room + m_used;
    m_used += mapped; // also on failure, after which nobody knows what is there
    if (CurrentFileCalls().MMapForReading(place, before + length, file.Descriptor(),
                                          static_cast<off_t>(position - before)) == MAP_FAILED)
        return nullptr;
    return place + before;
}

} // namespace ek
