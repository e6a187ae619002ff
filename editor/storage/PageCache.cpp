// SPDX-License-Identifier: GPL-3.0-or-later
#include "storage/PageCache.h"

#include <algorithm>
#include <cassert>

namespace ek {

void PageCache::Reset()
{
    m_resident.clear();
    m_length = m_files.Length();
}

bool PageCache::Flush()
{
    for (ResidentPage& page : m_resident)
        WriteBack(page);
    std::erase_if(m_resident, [](const ResidentPage& page) { return !page.Changed; });
    return m_resident.empty();
}

uint64_t PageCache::LengthOf(uint64_t index) const
{
    return std::min<uint64_t>(PageSize, m_length - index * PageSize);
}

bool PageCache::WriteBack(ResidentPage& page)
{
    if (page.Changed && !m_files.Write(page.Bytes.get(), page.Index * PageSize, LengthOf(page.Index)))
        return false;
    page.Changed = false;
    return true;
}

/// The page becomes the most recently used one; false when it is not resident.
bool PageCache::Touch(uint64_t index)
{
    const auto found = std::find_if(m_resident.begin(), m_resident.end(),
                                    [index](const ResidentPage& page) { return page.Index == index; });
    if (found == m_resident.end())
        return false;
    std::rotate(found, found + 1, m_resident.end());
    return true;
}

/// The page to make room: the oldest, or, when that cannot be written, the oldest that need not be.
std::vector<PageCache::ResidentPage>::iterator PageCache::FindVictim()
{
    if (WriteBack(m_resident.front()))
        return m_resident.begin();
    return std::find_if(m_resident.begin(), m_resident.end(), [](const ResidentPage& page) { return !page.Changed; });
}

bool PageCache::Load(uint64_t index)
{
    ResidentPage page;
    if (m_resident.size() < ResidentPageLimit) {
        page.Bytes = std::make_unique_for_overwrite<uint8_t[]>(PageSize);
    } else {
        const auto victim = FindVictim();
        if (victim == m_resident.end())
            return false;
        page = std::move(*victim);
        m_resident.erase(victim);
    }
    page.Index = index;
    if (!m_files.Read(page.Bytes.get(), index * PageSize, LengthOf(index)))
        return false;
    m_resident.push_back(std::move(page));
    return true;
}

uint8_t* PageCache::Page(uint64_t index, bool toChange)
{
    assert(index < PageCount());
    const bool newest = !m_resident.empty() && m_resident.back().Index == index;
    if (!newest && !Touch(index) && !Load(index))
        return nullptr;
    ResidentPage& page = m_resident.back();
    page.Changed = page.Changed || toChange;
    return page.Bytes.get();
}

} // namespace ek
