// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "background/ProgressDlg.h"
#include "storage/PeakCache.h"
#include "storage/SoundRecord.h"
#include "storage/TempFileList.h"

#include <cstdint>
#include <filesystem>
#include <span>

namespace ek {

/// Reads an audio file into temporary files of one page each. Decoding and peaks run on one thread, writing on
/// another, so that a file is read in the time that its copy takes.
class Importer {
public:
    /// `wanted` is the format to convert to; a format tag of 0 keeps the file's own (as 16-bit). The record, the
    /// files and the peaks are those of an empty store.
    Importer(const std::filesystem::path& path, const WAVEFORMATEXTENSIBLE& wanted, SoundRecord& record,
             TempFileList& files, PeakCache& peaks);
    ~Importer();
    Importer(const Importer&) = delete;
    Importer& operator=(const Importer&) = delete;

    /// Worker thread. After Finished and Cancelled the record says what was read, and the entries of the peaks are
    /// those of its frames; their coarse level is left to the caller.
    WorkResult Run(CProgressDlg& progress);

private:
    bool OpenSource();
    bool OpenDecoder(WAVEFORMATEXTENSIBLE& format, bool native);
    void CloseDecoder();
    WAVEFORMATEXTENSIBLE ChooseFormat() const;
    WorkResult CopyFrames(CProgressDlg& progress);
    uint64_t DecodePage(uint8_t* page);
    bool StorePage(std::span<const uint8_t> page);
    void Log(int level, const char* format) const;

    const std::filesystem::path m_path;
    const WAVEFORMATEXTENSIBLE m_wanted;
    SoundRecord& m_record;
    TempFileList& m_files;
    PeakCache& m_peaks;
    DecoderHandle m_decoder = 0;
    uint64_t m_promisedFrames = 0;
    uint64_t m_decodedFrames = 0; ///< by the decoding thread
};

} // namespace ek
