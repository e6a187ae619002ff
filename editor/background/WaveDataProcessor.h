// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "background/ProgressDlg.h"

#include <cstdint>
#include <functional>
#include <string>

namespace ek {

/// The sound that a processor reads: a byte stream of frames.
class FrameSource {
public:
    virtual uint32_t BlockAlign() const = 0; ///< bytes of one frame
    virtual bool ReadData(void* buffer, uint64_t offsetBytes, uint64_t lengthBytes) = 0;

protected:
    ~FrameSource() = default;
};

/// Runs a callback over [Start, Start + Count) frames in chunks of 13,440 bytes, on a worker thread behind a
/// progress. A new long operation is written as one more callback.
class CWaveDataProcessor {
public:
    static constexpr uint64_t ChunkBytes = 13440;

    /// May change the buffer and write it back itself. False ends the run with Failed.
    using Callback = std::function<bool(uint8_t* buffer, uint64_t firstFrame, uint64_t frames)>;

    CWaveDataProcessor(FrameSource& source, uint64_t start, uint64_t count, std::string caption, bool cancellable,
                       Callback callback);
    virtual ~CWaveDataProcessor() = default;

    /// A cancelled run ends after the chunk in hand. A count of 0 finishes at once without a call.
    WorkResult Run();

private:
    WorkResult Work(CProgressDlg& progress);

    FrameSource& m_source;
    uint64_t m_start;
    uint64_t m_count;
    std::string m_caption;
    bool m_cancellable;
    Callback m_callback;
};

} // namespace ek
