// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "background/WaveDataProcessor.h"
#include "platform/File.h"
#include "storage/PageCache.h"
#include "storage/PeakCache.h"
#include "storage/PeakTails.h"
#include "storage/SoundBuffer.h"
#include "storage/SoundRecord.h"
#include "storage/TempFileList.h"

#include <atomic>
#include <cstdint>
#include <filesystem>
#include <list>
#include <string>

namespace ek {

class Replacement;
struct EditRange;

/// The paged sample store of one sound: interleaved 16-bit frames in a list of hidden temporary files behind a
/// cache of ten pages. Offsets and lengths are bytes of the stream unless a name says frames; ranges are
/// half-open. Every operation that can fail returns false and has written a line to the log.
///
/// ReadData, WriteData and SampleAt may be called from any thread: one lock for all stores serialises them, and with
/// them the moment in which an edit takes effect. All other operations run only while no other thread uses the store.
class CWaveData {
public:
    static constexpr uint32_t PageSize = PageCache::PageSize; ///< a multiple of 256 frames of 1 to 8 channels
    static constexpr uint32_t ResidentPageLimit = PageCache::ResidentPageLimit;

    CWaveData();
    ~CWaveData(); ///< deletes the temporary files
    CWaveData(const CWaveData&) = delete;
    CWaveData& operator=(const CWaveData&) = delete;

    // What it holds.
    const WAVEFORMATEXTENSIBLE& SourceFormat() const { return m_record.SourceFormat; }
    const WAVEFORMATEXTENSIBLE& WorkingFormat() const { return m_record.WorkingFormat; }
    const StreamProperties& StreamProps() const { return m_record.StreamProps; }
    uint64_t FrameCount() const { return m_record.FrameCount; }
    uint64_t ByteLength() const { return m_record.ByteLength(); }
    uint32_t BlockAlign() const { return m_record.WorkingFormat.nBlockAlign; }
    const std::filesystem::path& Path() const { return m_path; }
    const std::list<TempFileEntry>& TempFiles() const { return m_files.Entries(); }
    const PeakCache& Peaks() const { return m_peaks; }
    bool IsComputingPeaks() const { return m_computingPeaks; } ///< on another thread: Peaks() is not to be touched
    FrameSource& Frames() { return m_frames; }                 ///< the store as processors read it

    // Bytes. A range beyond the stream is an error; the part before it is done.
    bool ReadData(void* buffer, uint64_t offset, uint64_t length);
    bool WriteData(const void* data, uint64_t offset, uint64_t length);
    int16_t SampleAt(uint64_t valueIndex); ///< 0 beyond the end

    // Structure.
    /// Makes room of `length` bytes: what lies at and after `b` moves up, what lies before `a` stays (a <= b). The
    /// bytes of [a, b + length) are the caller's to overwrite; for a == b the room lies exactly there and reads
    /// as zeros. On failure the content and the length are as before.
    bool InsertSpace(uint64_t a, uint64_t b, uint64_t length);
    bool RemoveData(uint64_t from, uint64_t to); ///< on failure everything is as before
    /// A deep copy, peak cache included; the store is empty when it fails.
    bool CopyFrom(CWaveData& source);
    /// Formats of an empty store; 8-bit becomes 16-bit in the working format. A format that is not IsStorable is
    /// refused and changes nothing.
    bool SetFormat(const WAVEFORMATEXTENSIBLE& format, const StreamProperties* properties);
    bool FlushPages(); ///< writes changed pages back and empties the page cache
    void ResetPages(); ///< empties the page cache without writing and counts the pages again
    void Close();      ///< back to an empty store

    /// Source format, working format, properties, frame count (8 bytes, little-endian), then the bytes. The file
    /// position is `position`, moved behind the record.
    bool WriteToStream(File& file, uint64_t& position);
    /// Fills an empty store and builds its peaks; false also for a record of no frames. The store is empty then.
    bool ReadFromStream(File& file, uint64_t& position);

    // Peaks. When they cannot be computed there are none, and the next rebuild is one of all.
    bool BuildPeakCache();
    /// After an edit that turned `oldLength` frames from `startFrame` on into `newLength` frames. Entries of frames
    /// that the store knows not to have changed since entries of the same blocks were there last are put back, not
    /// computed.
    bool RebuildPeakCachePart(uint64_t startFrame, uint64_t oldLength, uint64_t newLength, ChannelCode code);

    // Files.
    /// False: no such file, the import failed (the user was told and the store is empty), or the user cancelled
    /// (what was read so far is kept).
    bool OpenFile(const std::filesystem::path& path);
    bool OpenFileAs(const std::filesystem::path& path, const WAVEFORMATEXTENSIBLE& wanted);
    /// Writes the sound beside `target`, syncs and renames it over. With `useStoredSettings` the source's own coder
    /// settings are used, else the user is asked. `openAfter` (may be null) receives the coder's wish to open the
    /// new file. False: failed (the user was told) or cancelled; an old file at the target is untouched.
    bool SaveFile(const std::filesystem::path& target, bool useStoredSettings, bool* openAfter);

    // Edits of frames, each behind a progress, all or nothing: after false, Failed or Cancelled the sound is what it
    // was. One channel is edited when the code is not ChannelAll. Deleting, replacing and mixing renew the peaks when
    // they finish; where that fails there are none, and the edit is done all the same.
    enum class Direction { StoreToBlock, BlockToStore };
    WorkResult ExchangeFrames(SoundBuffer& block, uint64_t start, uint64_t count, ChannelCode code, Direction direction,
                              const std::string& caption, bool cancellable);
    /// Silence; the old frames go into `undo` (may be null) from its fill position on. Cancelled it is done, as far as
    /// it got, which the fill position says, and returns true. On false the fill position is as before.
    bool ClearFrames(uint64_t start, uint64_t count, ChannelCode code, const std::string& caption, bool cancellable,
                     SoundBuffer* undo);
    /// All channels: removed. One channel of several: silenced as by ClearFrames, cancellable.
    bool DeleteFrames(uint64_t start, uint64_t end, ChannelCode code, const std::string& caption, SoundBuffer* undo);
    /// Replaces [start, end) by the block; `end` becomes the end of what was written, and stays when nothing was.
    WorkResult ReplaceFrames(uint64_t start, uint64_t& end, const SoundBuffer& block, ChannelCode code,
                             bool cancellable, const std::string& caption);
    /// Mixes the block in from `start` (not beyond the end) on; the sound grows when the block is longer than what
    /// follows. `undo` (may be null) takes the old frames as far as it has room.
    WorkResult MixFrames(SoundBuffer* undo, uint64_t start, const SoundBuffer& block, ChannelCode code,
                         bool cancellable, const std::string& caption);

private:
    class Source final : public FrameSource {
    public:
        explicit Source(CWaveData& store) : m_store(store) {}
        uint32_t BlockAlign() const override { return m_store.BlockAlign(); }
        bool ReadData(void* buffer, uint64_t offsetBytes, uint64_t lengthBytes) override
        {
            return m_store.ReadData(buffer, offsetBytes, lengthBytes);
        }

    private:
        CWaveData& m_store;
    };

    template <class Copy>
    bool ForEachPage(uint64_t offset, uint64_t length, bool toChange, Copy copy);
    WorkResult RunImport(const std::filesystem::path& path, const WAVEFORMATEXTENSIBLE& wanted,
                         const std::string& caption);
    bool Import(const std::filesystem::path& path, const WAVEFORMATEXTENSIBLE& wanted, const char* captionFormat);
    bool Export(const std::filesystem::path& target, bool useStoredSettings, bool* openAfter);
    bool ReadRecord(File& file, uint64_t& position);
    bool ReadBytes(File& file, uint64_t& position);
    bool ComputePeaks(uint64_t start, uint64_t end, uint32_t onlyChannel);
    void DropPeaks();
    bool BuildAllPeaks();
    bool RenewPeaks(uint64_t startFrame, uint64_t oldLength, uint64_t newLength, ChannelCode code);
    bool RenewMovedPeaks(uint64_t start);
    bool EditsOneChannel(ChannelCode code) const;
    template <class Step>
    bool Attempt(Step step) const;
    bool CopyAll(CWaveData& source);
    WorkResult TakeFromBlock(const EditRange& range, SoundBuffer& block);
    /// Runs the processor that fills the replacement, then puts it in its place.
    WorkResult Apply(Replacement& replacement, CWaveDataProcessor& processor);
    bool Commit(Replacement& replacement);
    void Log(int level, const char* format) const;

    SoundRecord m_record;
    TempFileList m_files;
    PageCache m_pages{m_files};
    PeakCache m_peaks;
    PeakTails m_tails;
    std::atomic<bool> m_computingPeaks = false;
    Source m_frames{*this};
    std::filesystem::path m_path;
};

} // namespace ek
