// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "background/ProgressDlg.h"
#include "storage/PeakCache.h"
#include "storage/TempFileList.h"

#include <atomic>
#include <cstdint>
#include <future>

namespace ek {

/// Computes entries of a peak cache from the temporary files of a store, on as many threads as help, behind a
/// progress that cannot be cancelled.
class PeakBuilder {
public:
    /// The files must hold everything that the store's pages do. The cache has entries for all frames.
    PeakBuilder(TempFileList& files, uint32_t blockAlign, PeakCache& peaks, uint32_t onlyChannel);

    /// Recomputes the blocks of [start, end); `start` is a multiple of 256, and `end` is one or the sound's end.
    /// False when samples could not be read.
    bool Run(uint64_t start, uint64_t end);

private:
    WorkResult Work(CProgressDlg& progress, uint64_t start, uint64_t end);
    std::future<bool> StartHelper(CProgressDlg& progress);
    bool EnterSpans(CProgressDlg& progress);
    bool EnterSpan(int16_t* buffer, uint64_t start, uint64_t end);

    TempFileList& m_files;
    const uint32_t m_blockAlign;
    PeakCache& m_peaks;
    const uint32_t m_onlyChannel;
    uint64_t m_start = 0;
    uint64_t m_end = 0;
    std::atomic<uint64_t> m_next = 0; ///< the first frame that no thread has taken yet
};

} // namespace ek
