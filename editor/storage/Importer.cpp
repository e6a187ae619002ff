// SPDX-License-Identifier: GPL-3.0-or-later
#include "storage/Importer.h"

#include "debugmanager/DebugManager.h"
#include "storage/PageCache.h"
#include "storage/PageReadAhead.h"

#include <algorithm>

namespace ek {

namespace {

bool IsUsable(const WAVEFORMATEXTENSIBLE& format)
{
    return IsStorable(format) && format.wBitsPerSample == 16;
}

} // namespace

Importer::Importer(const std::filesystem::path& path, const WAVEFORMATEXTENSIBLE& wanted, SoundRecord& record,
                   TempFileList& files, PeakCache& peaks)
    : m_path(path), m_wanted(wanted), m_record(record), m_files(files), m_peaks(peaks)
{
}

Importer::~Importer()
{
    CloseDecoder();
}

void Importer::Log(int level, const char* format) const
{
    enDebugManager().WriteLogMessage(ModuleName, level, format, m_path.string().c_str());
}

void Importer::CloseDecoder()
{
    if (m_decoder != 0)
        EkCloseFile(m_decoder);
    m_decoder = 0;
}

bool Importer::OpenDecoder(WAVEFORMATEXTENSIBLE& format, bool native)
{
    CloseDecoder();
    m_decoder = EkOpenFile(m_path, format, m_promisedFrames, native);
    if (m_decoder == 0)
        Log(LogError, "Error: Failed to open file \"%s\".");
    return m_decoder != 0;
}

WAVEFORMATEXTENSIBLE Importer::ChooseFormat() const
{
    const WAVEFORMATEXTENSIBLE& format = m_wanted.wFormatTag != 0 ? m_wanted : m_record.SourceFormat;
    if (format.wBitsPerSample == 16)
        return format;
    if (format.wBitsPerSample == 8) {
        WAVEFORMATEXTENSIBLE wide = WidenTo16Bits(format);
        wide.cbSize = 0;
        return wide;
    }
    return MakePcm16Format(format.nSamplesPerSec, format.nChannels, format.dwChannelMask);
}

bool Importer::OpenSource()
{
    StreamInfo info;
    if (!EkGetStreamInfo(m_path, info, m_record.StreamProps)) {
        Log(LogError, "Error: Failed to get track information of \"%s\".");
        return false;
    }
    if (!OpenDecoder(m_record.SourceFormat, true))
        return false;
    m_record.WorkingFormat = ChooseFormat();
    if (m_record.WorkingFormat != m_record.SourceFormat && !OpenDecoder(m_record.WorkingFormat, false))
        return false;
    if (!IsUsable(m_record.WorkingFormat))
        Log(LogError, "Error: Failed to open file \"%s\".");
    return IsUsable(m_record.WorkingFormat);
}

/// On the decoding thread. Its peaks are entered while the samples are still in the processor's cache.
uint64_t Importer::DecodePage(uint8_t* page)
{
    const uint32_t blockAlign = m_record.WorkingFormat.nBlockAlign;
    const uint64_t wanted = PageCache::PageSize / blockAlign;
    const uint64_t frames =
        std::min(wanted, EkGetFileData(m_decoder, m_decodedFrames, wanted, page, PageCache::PageSize));
    m_peaks.Grow(m_decodedFrames + frames);
    m_peaks.Enter(reinterpret_cast<const int16_t*>(page), m_decodedFrames, frames);
    m_decodedFrames += frames;
    return frames * blockAlign;
}

bool Importer::StorePage(std::span<const uint8_t> page)
{
    TempFileEntry entry;
    entry.Length = page.size();
    if (!TempFileList::CreateFile("ekesb", entry))
        return false;
    if (!entry.Handle.WriteAt(page.data(), page.size(), 0).Ok()) {
        enDebugManager().WriteLogMessage(ModuleName, LogError, "Error: Failed to write to the temporary file \"%s\".",
                                         entry.Name.string().c_str());
        return false;
    }
    m_files.Append(std::move(entry));
    return true;
}

WorkResult Importer::CopyFrames(CProgressDlg& progress)
{
    PageReadAhead pages([this](uint8_t* page) { return DecodePage(page); });
    for (bool more = true; more;) {
        const std::span<const uint8_t> page = pages.Next();
        if (!StorePage(page))
            return WorkResult::Failed;
        m_record.FrameCount += page.size() / m_record.WorkingFormat.nBlockAlign;
        if (progress.IsCancelled()) {
            Log(LogInformation, "Canceled open file \"%s\".");
            return WorkResult::Cancelled;
        }
        if (m_promisedFrames != 0)
            progress.SetPos(
                static_cast<uint32_t>(std::min<uint64_t>(m_record.FrameCount * 100 / m_promisedFrames, 100)));
        more = page.size() == PageCache::PageSize;
    }
    // A read that failed looks like the end of the sound; what is missing must not go unnoticed.
    if (!EkDecoderFailed(m_decoder))
        return WorkResult::Finished;
    Log(LogError, "Error: Failed to read file \"%s\".");
    return WorkResult::Failed;
}

WorkResult Importer::Run(CProgressDlg& progress)
{
    Log(LogInformation, "Starting open file \"%s\".");
    if (!OpenSource())
        return WorkResult::Failed;
    m_peaks.Alloc(1, m_record.WorkingFormat.nChannels);
    const WorkResult result = CopyFrames(progress);
    CloseDecoder();
    // The decoding thread may have been ahead of a cancel.
    m_peaks.Trim(m_record.FrameCount);
    if (result == WorkResult::Finished)
        Log(LogInformation, "Finished open file \"%s\".");
    return result;
}

} // namespace ek
