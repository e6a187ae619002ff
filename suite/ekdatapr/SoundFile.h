// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "ekdatapr/Container.h"
#include "ekdatapr/FileStream.h"

#include <filesystem>
#include <optional>
#include <sndfile.h>

namespace ek {

/// A sound file of the sound library on a FileStream. Stays where it is made: the library keeps its address.
class SoundFile {
public:
    SoundFile() = default;
    ~SoundFile(); ///< closes; writers that care about the outcome call Finish
    SoundFile(const SoundFile&) = delete;
    SoundFile& operator=(const SoundFile&) = delete;

    /// The type is told by the content alone. False for anything but a regular file.
    bool OpenForReading(const std::filesystem::path& path);
    /// A new file of info's format, rate and channels. On failure nothing is left at `path`; what was there before
    /// the call stays.
    bool Create(const std::filesystem::path& path, const SF_INFO& info, uint64_t maxBytes);

    SNDFILE* Handle() const { return m_handle; }
    const SF_INFO& Info() const { return m_info; }
    FileStream& Stream() { return m_stream; }
    const FileStream& Stream() const { return m_stream; }

    /// For the library: the bytes at the stream's position, as far as they can be trusted.
    uint64_t Read(void* buffer, uint64_t bytes);

    /// For the library: the bytes written.
    uint64_t Write(const void* data, uint64_t bytes);

    /// Completes, syncs and closes a new file of so many frames: false when any of its bytes may be missing.
    bool Finish(uint64_t frames);

private:
    bool Attach(int mode);
    bool Reopen(const HeaderPatch& patch);

    FileStream m_stream;
    SNDFILE* m_handle = nullptr;
    SF_INFO m_info{};
    std::optional<uint64_t> m_frames; ///< known once the file is being finished; the library counts whole blocks
    HeaderPatch m_patch;              ///< empty unless the file's header was written before its sound
};

} // namespace ek
