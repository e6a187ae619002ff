// SPDX-License-Identifier: GPL-3.0-or-later
#include "platform/FileView.h"
#include "platform/FileCalls.h"

#include <cerrno>
#include <sys/mman.h>
#include <unistd.h>

namespace ek {

FileView::~FileView()
{
    if (m_address)
        CurrentFileCalls().MUnmap(m_address, m_mapped);
}

IoStatus FileView::Map(const File& file, uint64_t position, uint64_t length)
{
    const uint64_t before = position % static_cast<uint64_t>(sysconf(_SC_PAGESIZE));
    const size_t mapped = before + length;
    void* const address =
        CurrentFileCalls().MMapForReading(mapped, file.Descriptor(), static_cast<off_t>(position - before));
    if (address == MAP_FAILED)
        return IoStatus(errno);
    m_address = address;
    m_mapped = mapped;
    m_data = static_cast<const uint8_t*>(address) + before;
    return {};
}

} // namespace ek
