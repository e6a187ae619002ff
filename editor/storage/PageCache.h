// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "storage/TempFileList.h"

#include <cstdint>
#include <memory>
#include <vector>

namespace ek {

/// The few pages of a stream that are in memory, least recently used first. Only pages that were changed are
/// written back; one that cannot be written stays in memory. Not locked: the owner serialises.
class PageCache {
public:
    static constexpr uint32_t PageSize = 1720320;
    static constexpr uint32_t ResidentPageLimit = 10;

    explicit PageCache(TempFileList& files) : m_files(files) {}

    void Reset(); ///< empties without writing and takes the stream's length anew
    bool Flush(); ///< writes changed pages back and empties
    uint64_t PageCount() const { return (m_length + PageSize - 1) / PageSize; }

    /// The bytes of page `index` (below PageCount), loaded when they are not here; valid until the next call. They
    /// may be changed when `toChange`. Null when it cannot be read, or no page can make room because none is unchanged
    /// and the oldest cannot be written.
    uint8_t* Page(uint64_t index, bool toChange);

    struct ResidentPage {
        uint64_t Index = 0;
        bool Changed = false;
        std::unique_ptr<uint8_t[]> Bytes;
    };
    const std::vector<ResidentPage>& Resident() const { return m_resident; }

private:
    uint64_t LengthOf(uint64_t index) const;
    bool WriteBack(ResidentPage& page);
    bool Touch(uint64_t index);
    std::vector<ResidentPage>::iterator FindVictim();
    bool Load(uint64_t index);

    TempFileList& m_files;
    uint64_t m_length = 0;
    std::vector<ResidentPage> m_resident;
};

} // namespace ek
