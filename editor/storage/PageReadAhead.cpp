// SPDX-License-Identifier: GPL-3.0-or-later
#include "storage/PageReadAhead.h"

#include "storage/PageCache.h"

namespace ek {

PageReadAhead::PageReadAhead(Fill fill) : m_fill(std::move(fill))
{
    for (Page& page : m_ring)
        page.Bytes = std::make_unique_for_overwrite<uint8_t[]>(PageCache::PageSize);
    m_thread = std::thread([this] { Run(); });
}

PageReadAhead::~PageReadAhead()
{
    {
        const std::lock_guard lock(m_mutex);
        m_stop = true;
    }
    m_changed.notify_all();
    m_thread.join();
}

/// False when nobody wants another page.
bool PageReadAhead::WaitForBuffer()
{
    std::unique_lock lock(m_mutex);
    // The page handed out last is in use until the next one is asked for.
    m_changed.wait(lock, [this] { return m_stop || m_filled + 1 < m_taken + BufferCount; });
    return !m_stop;
}

void PageReadAhead::Publish(uint64_t length)
{
    const std::lock_guard lock(m_mutex);
    m_ring[m_filled % BufferCount].Length = length;
    ++m_filled;
    m_ended = length < PageCache::PageSize;
    m_changed.notify_all();
}

uint64_t PageReadAhead::FillGuarded(uint8_t* page)
{
    try {
        return m_fill(page);
    } catch (...) {
        const std::lock_guard lock(m_mutex);
        m_error = std::current_exception();
        return 0;
    }
}

void PageReadAhead::Run()
{
    uint64_t length = PageCache::PageSize;
    for (uint64_t page = 0; length == PageCache::PageSize && WaitForBuffer(); ++page) {
        length = FillGuarded(m_ring[page % BufferCount].Bytes.get());
        Publish(length);
    }
}

std::span<const uint8_t> PageReadAhead::Next()
{
    std::unique_lock lock(m_mutex);
    if (m_ended && m_taken == m_filled)
        return {};
    ++m_taken;
    m_changed.notify_all();
    m_changed.wait(lock, [this] { return m_filled >= m_taken; });
    if (m_error && m_taken == m_filled)
        std::rethrow_exception(m_error);
    const Page& page = m_ring[(m_taken - 1) % BufferCount];
    return {page.Bytes.get(), page.Length};
}

} // namespace ek
