// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "background/ProgressDlg.h"
#include "storage/SoundRecord.h"
#include "storage/TempFileList.h"

#include <filesystem>
#include <string>

namespace ek {

/// Writes the sound of a store to an audio file: into a new file beside the target, which then takes its place.
/// User-interface thread.
class Exporter {
public:
    /// The files hold the whole sound; they do not change meanwhile.
    Exporter(const SoundRecord& record, TempFileList& files, const std::filesystem::path& target);
    ~Exporter();
    Exporter(const Exporter&) = delete;
    Exporter& operator=(const Exporter&) = delete;

    /// False: failed (the user was told) or cancelled; nothing has changed on the disk then.
    bool Save(bool useStoredSettings, bool* openAfter);
    void ReportFailure() const { ReportFailure(m_fileName); }
    static void ReportFailure(const std::string& fileName);

    /// After a save: what the codec library remembers of the new file.
    const StreamProperties& SavedProperties() const { return m_savedProperties; }

private:
    bool ChooseSettings() const;
    bool LayoutFits() const;
    void SuggestLayout() const;
    bool CreateCoder(bool useStoredSettings);
    bool CloseCoder();
    WorkResult WriteSound();
    WorkResult WritePages(CProgressDlg& progress);
    void KeepPermissions() const;
    bool TakeTarget();
    void Discard();

    const SoundRecord& m_record;
    TempFileList& m_files;
    const std::filesystem::path m_target;
    const std::string m_fileName;
    const std::string m_suffix;      ///< of the name that the user gave: the extension with its dot
    const std::string m_extension;   ///< the same without it
    std::filesystem::path m_written; ///< the new file while it is this exporter's to delete
    StreamProperties m_savedProperties;
    CoderHandle m_coder = 0;
    uint8_t m_openAfter = 0;
};

} // namespace ek
