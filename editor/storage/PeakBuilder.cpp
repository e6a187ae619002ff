// SPDX-License-Identifier: GPL-3.0-or-later
#include "storage/PeakBuilder.h"

#include <algorithm>
#include <memory>
#include <system_error>
#include <thread>
#include <vector>

namespace ek {

namespace {

/// Small enough to stay in a core's second-level cache between reading and entering.
constexpr uint64_t BufferBytes = 245760;

/// What a thread takes at once: a small part of a long sound.
constexpr uint64_t SpanBytes = 4 * TempFileList::LargestFile;

/// A shorter range is not worth a second thread.
constexpr uint64_t ParallelBytes = 4 * BufferBytes;

/// More would wait for the memory only.
constexpr uint32_t MostThreads = 4;

uint64_t RoundDownToBlock(uint64_t frames)
{
    return frames / PeakCache::BlockFrames * PeakCache::BlockFrames;
}

} // namespace

PeakBuilder::PeakBuilder(TempFileList& files, uint32_t blockAlign, PeakCache& peaks, uint32_t onlyChannel)
    : m_files(files), m_blockAlign(blockAlign), m_peaks(peaks), m_onlyChannel(onlyChannel)
{
}

bool PeakBuilder::EnterSpan(int16_t* buffer, uint64_t start, uint64_t end)
{
    const uint64_t bufferFrames = RoundDownToBlock(BufferBytes / m_blockAlign);
    for (uint64_t frame = start; frame < end; frame += bufferFrames) {
        const uint64_t frames = std::min(bufferFrames, end - frame);
        if (!m_files.Read(buffer, frame * m_blockAlign, frames * m_blockAlign))
            return false;
        m_peaks.Enter(buffer, frame, frames, m_onlyChannel);
    }
    return true;
}

bool PeakBuilder::EnterSpans(CProgressDlg& progress)
{
    const uint64_t spanFrames = RoundDownToBlock(SpanBytes / m_blockAlign);
    const auto buffer = std::make_unique_for_overwrite<int16_t[]>(BufferBytes / sizeof(int16_t));
    for (;;) {
        const uint64_t start = m_next.fetch_add(spanFrames);
        if (start >= m_end)
            return true;
        progress.SetPos(static_cast<uint32_t>((start - m_start) * 100 / (m_end - m_start)));
        if (!EnterSpan(buffer.get(), start, std::min(start + spanFrames, m_end)))
            return false;
    }
}

/// On a thread of its own, or, when the system has none left, on the one that asks for the outcome.
std::future<bool> PeakBuilder::StartHelper(CProgressDlg& progress)
{
    const auto enter = [this, &progress] { return EnterSpans(progress); };
    try {
        return std::async(std::launch::async, enter);
    } catch (const std::system_error&) {
        return std::async(std::launch::deferred, enter);
    }
}

WorkResult PeakBuilder::Work(CProgressDlg& progress, uint64_t start, uint64_t end)
{
    m_start = m_next = start;
    m_end = end;
    std::vector<std::future<bool>> helpers;
    if ((end - start) * m_blockAlign >= ParallelBytes)
        helpers.resize(std::clamp(std::thread::hardware_concurrency(), 1U, MostThreads) - 1);
    for (std::future<bool>& helper : helpers)
        helper = StartHelper(progress);
    bool ok = EnterSpans(progress);
    for (std::future<bool>& helper : helpers)
        ok = helper.get() && ok;
    m_peaks.FinishCoarse(start, end);
    return ok ? WorkResult::Finished : WorkResult::Failed;
}

bool PeakBuilder::Run(uint64_t start, uint64_t end)
{
    const WorkResult result = RunInBackground("Creating Draw Cache...", false,
                                              [=, this](CProgressDlg& progress) { return Work(progress, start, end); });
    return result == WorkResult::Finished;
}

} // namespace ek
