// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "background/WaveDataProcessor.h"
#include "storage/PageReadAhead.h"
#include "storage/TempFileList.h"

#include <cstdint>
#include <span>

namespace ek {

/// The sound of a store's files for one reading from the beginning to the end, with the next pages read ahead on
/// another thread. The pages of the store and their lock are not touched.
class SequentialSource final : public FrameSource {
public:
    SequentialSource(TempFileList& files, uint32_t blockAlign);

    uint32_t BlockAlign() const override { return m_blockAlign; }
    /// Ranges follow each other without gaps, from offset 0 on.
    bool ReadData(void* buffer, uint64_t offset, uint64_t length) override;

private:
    uint64_t FillPage(uint8_t* page);

    TempFileList& m_files;
    const uint32_t m_blockAlign;
    uint64_t m_readAhead = 0; ///< by the reading thread
    std::span<const uint8_t> m_rest;
    PageReadAhead m_pages; ///< last: its thread uses the others
};

} // namespace ek
