// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "ek/WaveFormat.h"
#include "platform/File.h"

#include <cstdint>
#include <filesystem>

namespace ek {

/// A WAV file that grows as it is played; beyond 4 GB it becomes RF64. It is written beside its target and takes the
/// target's place when it is complete: until then, and after a failure, what stood there stands.
class WavWriter {
public:
    WavWriter() = default;
    ~WavWriter() { Abandon(); }
    WavWriter(const WavWriter&) = delete;
    WavWriter& operator=(const WavWriter&) = delete;

    IoStatus Create(const std::filesystem::path& target, const WAVEFORMATEXTENSIBLE& format);
    IoStatus Append(const void* frames, uint64_t bytes); ///< interleaved frames of the format
    IoStatus Complete();                                 ///< a failure is the end of the file
    void Abandon();                                      ///< removes what was written, unless it is complete

private:
    IoStatus WriteHeader();

    WAVEFORMATEXTENSIBLE m_format;
    std::filesystem::path m_target;
    std::filesystem::path m_temporary;
    File m_file;
    uint64_t m_soundStart = 0; ///< of the sound in the file
    uint64_t m_bytes = 0;      ///< of sound
};

} // namespace ek
