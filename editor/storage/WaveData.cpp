// SPDX-License-Identifier: GPL-3.0-or-later
#include "storage/WaveData.h"

#include "debugmanager/DebugManager.h"
#include "platform/Text.h"
#include "servicefuncs/MessageBox.h"
#include "storage/Exporter.h"
#include "storage/Importer.h"
#include "storage/PeakBuilder.h"
#include "storage/Replacement.h"

#include <algorithm>
#include <cassert>
#include <cstring>
#include <exception>
#include <mutex>
#include <new>

namespace ek {

namespace {

/// One lock for the pages of all stores.
std::mutex& StoreLock()
{
    static std::mutex lock;
    return lock;
}

uint64_t RoundUp(uint64_t frames)
{
    return (frames + PeakCache::BlockFrames - 1) / PeakCache::BlockFrames * PeakCache::BlockFrames;
}

/// Set while it lives.
class FlagGuard {
public:
    explicit FlagGuard(std::atomic<bool>& flag) : m_flag(flag) { m_flag = true; }
    ~FlagGuard() { m_flag = false; }
    FlagGuard(const FlagGuard&) = delete;
    FlagGuard& operator=(const FlagGuard&) = delete;

private:
    std::atomic<bool>& m_flag;
};

} // namespace

CWaveData::CWaveData() = default;

CWaveData::~CWaveData()
{
    Close();
}

void CWaveData::Log(int level, const char* format) const
{
    enDebugManager().WriteLogMessage(ModuleName, level, format, m_path.c_str());
}

/// The outcome of a step of an edit, all of which leave the sound as it is until the last one, which cannot fail. So a
/// step that memory does not suffice for is one that failed.
template <class Step>
bool CWaveData::Attempt(Step step) const
{
    try {
        return step();
    } catch (const std::exception&) {
        Log(LogError, "Error: Memory does not suffice for an edit of \"%s\".");
        return false;
    }
}

/// Calls copy(place in the page, bytes done before, bytes) for every page of the range under the lock.
template <class Copy>
bool CWaveData::ForEachPage(uint64_t offset, uint64_t length, bool toChange, Copy copy)
{
    const std::lock_guard lock(StoreLock());
    const uint64_t available = offset < ByteLength() ? ByteLength() - offset : 0;
    const uint64_t end = offset + std::min(length, available);
    for (uint64_t position = offset; position < end;) {
        uint8_t* page = m_pages.Page(position / PageSize, toChange);
        if (!page)
            return false;
        const uint64_t inPage = position % PageSize;
        const uint64_t part = std::min(PageSize - inPage, end - position);
        copy(page + inPage, position - offset, part);
        position += part;
    }
    if (length > available)
        enDebugManager().WriteLogMessage(ModuleName, LogError,
                                         "Error! Trying to %s data beyond the limit of data pages!. Position: %I64x",
                                         toChange ? "write" : "read", offset);
    return length <= available;
}

bool CWaveData::ReadData(void* buffer, uint64_t offset, uint64_t length)
{
    auto* bytes = static_cast<uint8_t*>(buffer);
    return ForEachPage(offset, length, false, [bytes](const uint8_t* place, uint64_t done, uint64_t part) {
        std::memcpy(bytes + done, place, part);
    });
}

bool CWaveData::WriteData(const void* data, uint64_t offset, uint64_t length)
{
    const auto* bytes = static_cast<const uint8_t*>(data);
    return ForEachPage(offset, length, true, [=, this](uint8_t* place, uint64_t done, uint64_t part) {
        std::memcpy(place, bytes + done, part);
        m_tails.OnChange((ByteLength() - (offset + done + part)) / BlockAlign());
    });
}

int16_t CWaveData::SampleAt(uint64_t valueIndex)
{
    int16_t value = 0;
    if (valueIndex < ByteLength() / sizeof value)
        ReadData(&value, valueIndex * sizeof value, sizeof value);
    return value;
}

bool CWaveData::InsertSpace(uint64_t a, uint64_t b, uint64_t length)
{
    if (BlockAlign() == 0) {
        Log(LogError, "Error: The sound of \"%s\" has no format.");
        return false;
    }
    if (!m_files.IsRange(a, b) || !FlushPages())
        return false;
    Replacement room(m_files, b, b, length);
    return Attempt([&] { return room.AppendZeros(length); }) && Commit(room);
}

bool CWaveData::RemoveData(uint64_t from, uint64_t to)
{
    Replacement nothing(m_files, from, to, 0);
    return nothing.IsValid() && FlushPages() && Commit(nothing);
}

/// The pages hold no change that the files lack.
bool CWaveData::Commit(Replacement& replacement)
{
    if (replacement.IsEmpty())
        return true;
    if (!Attempt([&] { return replacement.Complete(); }))
        return false;
    const std::lock_guard lock(StoreLock());
    replacement.Commit();
    m_tails.OnChange((ByteLength() - replacement.RangeEnd()) / BlockAlign());
    m_record.FrameCount = m_files.Length() / BlockAlign();
    m_pages.Reset();
    return true;
}

bool CWaveData::CopyFrom(CWaveData& source)
{
    assert(&source != this);
    Close();
    if (Attempt([&] { return CopyAll(source); }))
        return true;
    Close();
    return false;
}

bool CWaveData::CopyAll(CWaveData& source)
{
    if (!source.FlushPages() || !m_files.CopyFrom(source.m_files))
        return false;
    m_record = source.m_record;
    ResetPages();
    if (source.m_peaks.IsEmpty())
        return BuildPeakCache();
    m_peaks = source.m_peaks;
    m_tails.OnRenewed(FrameCount());
    return true;
}

bool CWaveData::SetFormat(const WAVEFORMATEXTENSIBLE& format, const StreamProperties* properties)
{
    if (!IsStorable(format))
        return false;
    m_record.SourceFormat = format;
    m_record.WorkingFormat = WidenTo16Bits(format);
    m_record.StreamProps = properties ? *properties : StreamProperties();
    return true;
}

bool CWaveData::FlushPages()
{
    const std::lock_guard lock(StoreLock());
    return m_pages.Flush();
}

void CWaveData::ResetPages()
{
    const std::lock_guard lock(StoreLock());
    m_pages.Reset();
}

void CWaveData::Close()
{
    m_files.Clear();
    m_pages.Reset();
    m_peaks.Free();
    m_tails.Clear();
    m_record = {};
    m_path.clear();
}

/// `end` is a multiple of 256 or the end of the sound.
bool CWaveData::ComputePeaks(uint64_t start, uint64_t end, uint32_t onlyChannel)
{
    if (start >= end)
        return true;
    const FlagGuard computing(m_computingPeaks);
    if (FlushPages() && PeakBuilder(m_files, BlockAlign(), m_peaks, onlyChannel).Run(start, end))
        return true;
    DropPeaks();
    return false;
}

void CWaveData::DropPeaks()
{
    Log(LogError, "Error: Failed to create cache256 for file \"%s\".");
    m_peaks.Free();
    m_tails.Clear();
}

bool CWaveData::BuildPeakCache()
{
    Log(LogInformation, "Creating cache256 for file \"%s\".");
    return BuildAllPeaks();
}

bool CWaveData::BuildAllPeaks()
{
    m_peaks.Alloc(FrameCount(), WorkingFormat().nChannels);
    m_tails.OnRenewed(FrameCount());
    return ComputePeaks(0, FrameCount(), PeakCache::AllChannels);
}

/// The length changed: all entries from `start` on, a multiple of 256, are other ones.
bool CWaveData::RenewMovedPeaks(uint64_t start)
{
    m_peaks.Grow(FrameCount());
    const uint64_t known = m_tails.Restore(m_peaks, FrameCount());
    m_tails.OnRenewed(FrameCount());
    if (!ComputePeaks(start, known, PeakCache::AllChannels))
        return false;
    m_peaks.FinishCoarse(std::min(start, known), FrameCount());
    return true;
}

bool CWaveData::RebuildPeakCachePart(uint64_t startFrame, uint64_t oldLength, uint64_t newLength, ChannelCode code)
{
    Log(LogInformation, "Creating part of cache256 for file \"%s\".");
    try {
        return RenewPeaks(startFrame, oldLength, newLength, code);
    } catch (const std::bad_alloc&) {
        DropPeaks(); // the edit they are of is done
        return false;
    }
}

bool CWaveData::RenewPeaks(uint64_t startFrame, uint64_t oldLength, uint64_t newLength, ChannelCode code)
{
    if (m_peaks.IsEmpty())
        return BuildAllPeaks();
    const uint64_t start = startFrame / PeakCache::BlockFrames * PeakCache::BlockFrames;
    if (oldLength != newLength)
        return RenewMovedPeaks(start);
    const bool oneChannel = code != ChannelAll;
    const uint32_t position = oneChannel ? GetIndexByChannel(WorkingFormat(), code) : PeakCache::AllChannels;
    if (oneChannel && position >= WorkingFormat().nChannels)
        return true;
    m_tails.OnRenewed(FrameCount());
    return ComputePeaks(start, std::min(RoundUp(startFrame + newLength), FrameCount()), position);
}

WorkResult CWaveData::RunImport(const std::filesystem::path& path, const WAVEFORMATEXTENSIBLE& wanted,
                                const std::string& caption)
{
    const FlagGuard computing(m_computingPeaks);
    try {
        Importer importer(path, wanted, m_record, m_files, m_peaks);
        const WorkResult result =
            RunInBackground(caption, true, [&](CProgressDlg& progress) { return importer.Run(progress); });
        if (result == WorkResult::Failed)
            return result;
        ResetPages();
        Log(LogInformation, "Creating cache256 for file \"%s\".");
        m_peaks.FinishCoarse(0, FrameCount());
        m_tails.OnRenewed(FrameCount());
        return result;
    } catch (const std::exception&) {
        return WorkResult::Failed;
    }
}

bool CWaveData::Import(const std::filesystem::path& path, const WAVEFORMATEXTENSIBLE& wanted, const char* captionFormat)
{
    if (!IsFile(path)) {
        enDebugManager().WriteLogMessage(ModuleName, LogError, "Error: File \"%s\" does not exist!",
                                         path.string().c_str());
        return false;
    }
    Close();
    m_path = path;
    const std::string fileName = path.filename().string();
    const WorkResult result = RunImport(path, wanted, Format(captionFormat, fileName.c_str()));
    if (result != WorkResult::Failed)
        return result == WorkResult::Finished;
    AfxSCMessageBox(Format("Can't open file %s", fileName.c_str()), MessageButtons::Ok, MessageIcon::Error);
    Close();
    return false;
}

bool CWaveData::OpenFile(const std::filesystem::path& path)
{
    return Import(path, {}, "Opening: %s");
}

bool CWaveData::OpenFileAs(const std::filesystem::path& path, const WAVEFORMATEXTENSIBLE& wanted)
{
    return Import(path, wanted, "Opening/Resampling %s");
}

bool CWaveData::Export(const std::filesystem::path& target, bool useStoredSettings, bool* openAfter)
{
    Exporter exporter(m_record, m_files, target);
    if (!FlushPages()) {
        exporter.ReportFailure();
        return false;
    }
    if (!exporter.Save(useStoredSettings, openAfter))
        return false;
    m_record.StreamProps = exporter.SavedProperties();
    return true;
}

bool CWaveData::SaveFile(const std::filesystem::path& target, bool useStoredSettings, bool* openAfter)
{
    try {
        return Export(target, useStoredSettings, openAfter);
    } catch (const std::exception&) {
        Exporter::ReportFailure(target.filename().string());
        return false;
    }
}

} // namespace ek
