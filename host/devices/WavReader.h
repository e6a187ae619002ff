// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "ek/WaveFormat.h"
#include "platform/File.h"

#include <cstdint>
#include <filesystem>

namespace ek {

/// The frames of a plain WAV file.
class WavReader {
public:
    /// EINVAL for a file that is no WAV file or holds more than 8 channels.
    IoStatus Open(const std::filesystem::path& path);
    const WAVEFORMATEXTENSIBLE& Format() const { return m_format; }
    uint64_t FrameCount() const { return m_bytes / m_format.nBlockAlign; }
    IoStatus Read(void* frames, uint64_t start, uint64_t count) const; ///< inside [0, FrameCount())

private:
    IoStatus ReadFormat(uint64_t position, uint32_t bytes);

    File m_file;
    WAVEFORMATEXTENSIBLE m_format;
    uint64_t m_start = 0;
    uint64_t m_bytes = 0;
};

} // namespace ek
