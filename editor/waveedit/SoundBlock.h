// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "platform/MappedFile.h"
#include "storage/SoundBuffer.h"

#include <cstdint>
#include <filesystem>
#include <memory>

namespace ek {

/// A sound buffer in a memory-mapped temporary file of its own, which is deleted with it. However long it is, what is
/// used frame after frame through FrameAt takes up memory for a few seconds of it at a time.
class CSoundBlock : public SoundBuffer {
public:
    CSoundBlock();
    virtual ~CSoundBlock();
    CSoundBlock(const CSoundBlock&) = delete;
    CSoundBlock& operator=(const CSoundBlock&) = delete;

    /// `frames` frames, copied from `initial` (the block is full then) or zeros when it is null. The disk space is
    /// allocated at once. False: the block is empty, and the log says why.
    bool Create(uint64_t frames, const WAVEFORMATEXTENSIBLE& format, const void* initial, ChannelCode code);
    /// Create failed for want of room on the disk or in the address space.
    bool LacksRoom() const { return m_lacksRoom; }
    /// Takes over an existing file of raw frames, and with it the duty to delete it.
    bool OpenFile(const std::filesystem::path& path, const WAVEFORMATEXTENSIBLE& format);
    void Free();
    /// Becomes `source`, another block, in another format, behind a progress that can be cancelled. False: it is empty,
    /// and the user was told unless it was he who cancelled.
    bool ConvertFrom(const CSoundBlock& source, const WAVEFORMATEXTENSIBLE& format);

    /// Gives back the memory that the sound takes up by having been read or written; the file keeps it.
    void ReleaseMemory() const { m_file.ReleaseMemory(); }

    /// Empty while the block has no file.
    std::filesystem::path FileName() const { return Data ? m_file.Path() : std::filesystem::path(); }

    /// The range of the document that the block belongs to: [start, end) frames.
    void SetRange(uint64_t start, uint64_t end);
    uint64_t RangeStart() const { return m_rangeStart; }
    uint64_t RangeEnd() const { return m_rangeEnd; }

private:
    void OnUsedAt(uint64_t index);

    MappedFile m_file;
    bool m_lacksRoom = false;
    uint64_t m_keptFrom = 0; ///< where the frames begin that may take up memory
    uint64_t m_rangeStart = 0;
    uint64_t m_rangeEnd = 0;
};

/// The last copied sound, shared by all documents; empty while its FrameCount is 0. The application frees it before it
/// goes.
CSoundBlock& SoundClipboard();
/// Puts a sound in the place of the last one, which is freed. Not null.
void SetSoundClipboard(std::unique_ptr<CSoundBlock> block);

} // namespace ek
