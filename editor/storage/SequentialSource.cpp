// SPDX-License-Identifier: GPL-3.0-or-later
#include "storage/SequentialSource.h"

#include "storage/PageCache.h"

#include <algorithm>
#include <cstring>

namespace ek {

SequentialSource::SequentialSource(TempFileList& files, uint32_t blockAlign)
    : m_files(files), m_blockAlign(blockAlign), m_pages([this](uint8_t* page) { return FillPage(page); })
{
}

/// A page that cannot be read ends the row; the reader then misses its bytes.
uint64_t SequentialSource::FillPage(uint8_t* page)
{
    const uint64_t length = std::min<uint64_t>(PageCache::PageSize, m_files.Length() - m_readAhead);
    if (!m_files.Read(page, m_readAhead, length))
        return 0;
    m_readAhead += length;
    return length;
}

bool SequentialSource::ReadData(void* buffer, uint64_t, uint64_t length)
{
    auto* bytes = static_cast<uint8_t*>(buffer);
    while (length != 0) {
        if (m_rest.empty())
            m_rest = m_pages.Next();
        if (m_rest.empty())
            return false;
        const uint64_t part = std::min<uint64_t>(length, m_rest.size());
        std::memcpy(bytes, m_rest.data(), part);
        m_rest = m_rest.subspan(part);
        bytes += part;
        length -= part;
    }
    return true;
}

} // namespace ek
