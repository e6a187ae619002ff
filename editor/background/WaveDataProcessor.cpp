// SPDX-License-Identifier: GPL-3.0-or-later
#include "background/WaveDataProcessor.h"

#include <algorithm>
#include <vector>

namespace ek {

CWaveDataProcessor::CWaveDataProcessor(FrameSource& source, uint64_t start, uint64_t count, std::string caption,
                                       bool cancellable, Callback callback)
    : m_source(source), m_start(start), m_count(count), m_caption(std::move(caption)), m_cancellable(cancellable),
      m_callback(std::move(callback))
{
}

WorkResult CWaveDataProcessor::Run()
{
    if (m_count == 0)
        return WorkResult::Finished;
    return RunInBackground(m_caption, m_cancellable, [this](CProgressDlg& progress) { return Work(progress); });
}

WorkResult CWaveDataProcessor::Work(CProgressDlg& progress)
{
    const uint64_t frameBytes = m_source.BlockAlign();
    if (frameBytes == 0)
        return WorkResult::Failed;
    const uint64_t chunkFrames = std::max<uint64_t>(ChunkBytes / frameBytes, 1);
    std::vector<uint8_t> buffer(chunkFrames * frameBytes);
    for (uint64_t done = 0; done < m_count; done += chunkFrames) {
        const uint64_t firstFrame = m_start + done;
        const uint64_t frames = std::min(m_count - done, chunkFrames);
        if (!m_source.ReadData(buffer.data(), firstFrame * frameBytes, frames * frameBytes))
            return WorkResult::Failed;
        if (!m_callback(buffer.data(), firstFrame, frames))
            return WorkResult::Failed;
        progress.SetPos(static_cast<uint32_t>(done * 100 / m_count));
        if (progress.IsCancelled())
            return WorkResult::Cancelled;
    }
    return WorkResult::Finished;
}

} // namespace ek
