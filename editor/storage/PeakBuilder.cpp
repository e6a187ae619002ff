// SPDX-License-Identifier: GPL-3.0-or-later
#include "storage/PeakBuilder.h"

#include <algorithm>
#include <memory>
#include <system_error>

namespace ek {

namespace {

/// Small enough to stay in a core's second-level cache between reading and entering.
constexpr uint64_t BufferBytes = 245760;

/// A shorter range is not worth a second thread.
constexpr uint64_t ParallelBytes = 4 * BufferBytes;

uint64_t RoundDownToBlock(uint64_t frames)
{
    return frames / PeakCache::BlockFrames * PeakCache::BlockFrames;
}

} // namespace

PeakBuilder::PeakBuilder(TempFileList& files, uint32_t blockAlign, PeakCache& peaks, uint32_t onlyChannel)
    : m_files(files), m_blockAlign(blockAlign), m_peaks(peaks), m_onlyChannel(onlyChannel)
{
}

bool PeakBuilder::EnterRange(CProgressDlg& progress, uint64_t start, uint64_t end)
{
    const uint64_t bufferFrames = RoundDownToBlock(BufferBytes / m_blockAlign);
    const auto buffer = std::make_unique_for_overwrite<int16_t[]>(BufferBytes / sizeof(int16_t));
    for (uint64_t frame = start; frame < end; frame += bufferFrames) {
        const uint64_t frames = std::min(bufferFrames, end - frame);
        if (!m_files.Read(buffer.get(), frame * m_blockAlign, frames * m_blockAlign))
            return false;
        m_peaks.Enter(buffer.get(), frame, frames, m_onlyChannel);
        const uint64_t done = m_done.fetch_add(frames) + frames;
        progress.SetPos(static_cast<uint32_t>(done * 100 / m_total));
    }
    return true;
}

/// On a thread of its own, or, when the system has none left, on the one that asks for the outcome.
std::future<bool> PeakBuilder::StartRange(CProgressDlg& progress, uint64_t start, uint64_t end)
{
    const auto enter = [=, this, &progress] { return EnterRange(progress, start, end); };
    try {
        return std::async(std::launch::async, enter);
    } catch (const std::system_error&) {
        return std::async(std::launch::deferred, enter);
    }
}

WorkResult PeakBuilder::Work(CProgressDlg& progress, uint64_t start, uint64_t end)
{
    m_total = end - start;
    const bool parallel = m_total * m_blockAlign >= ParallelBytes;
    const uint64_t middle = parallel ? start + RoundDownToBlock(m_total / 2) : end;
    std::future<bool> second;
    if (parallel)
        second = StartRange(progress, middle, end);
    const bool firstOk = EnterRange(progress, start, middle);
    const bool secondOk = !parallel || second.get();
    m_peaks.FinishCoarse(start, end);
    return firstOk && secondOk ? WorkResult::Finished : WorkResult::Failed;
}

bool PeakBuilder::Run(uint64_t start, uint64_t end)
{
    const WorkResult result = RunInBackground("Creating Draw Cache...", false,
                                              [=, this](CProgressDlg& progress) { return Work(progress, start, end); });
    return result == WorkResult::Finished;
}

} // namespace ek
