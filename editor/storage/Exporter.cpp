// SPDX-License-Identifier: GPL-3.0-or-later
#include "storage/Exporter.h"

#include "debugmanager/DebugManager.h"
#include "framework/Prompts.h"
#include "platform/SaveTarget.h"
#include "platform/TempFile.h"
#include "platform/Text.h"
#include "servicefuncs/Channels.h"
#include "storage/PageCache.h"
#include "storage/PageReadAhead.h"

#include <algorithm>
#include <system_error>

namespace ek {

namespace {

namespace fs = std::filesystem;

constexpr int NameAttempts = 100;

void ShowError(const std::string& text)
{
    AfxSCMessageBox(text, MessageButtons::Ok, MessageIcon::Error);
}

} // namespace

Exporter::Exporter(const SoundRecord& record, TempFileList& files, const fs::path& target)
    : m_record(record), m_files(files), m_target(FollowLinks(target)), m_fileName(target.filename().string()),
      m_suffix(target.extension().string()), m_extension(m_suffix.empty() ? m_suffix : m_suffix.substr(1))
{
}

Exporter::~Exporter()
{
    CloseCoder();
    Discard();
}

void Exporter::ReportFailure(const std::string& fileName)
{
    ShowError(Format("Can't save file %s", fileName.c_str()));
}

bool Exporter::LayoutFits() const
{
    const uint32_t channels = m_record.SourceFormat.nChannels;
    const uint32_t layout = ChannelLayoutCount(EkCoderChannelLayout(m_extension));
    const bool bothSmall = (channels == 1 || channels == 2) && (layout == 1 || layout == 2);
    return layout != 0 && (layout == channels || bothSmall);
}

/// So that the choice the user finds fits the sound. A coder without that layout keeps its own.
void Exporter::SuggestLayout() const
{
    const uint32_t channels = m_record.SourceFormat.nChannels;
    std::string error;
    if (channels >= 1 && channels <= MaxChannels)
        EkSetCoderOptions(m_extension, {{"channels", ChannelLayoutName(channels)}}, error);
}

bool Exporter::ChooseSettings() const
{
    SuggestLayout();
    while (CurrentPrompts().ChooseSoundFormat(m_extension)) {
        if (LayoutFits())
            return true;
        ShowError(Format("You can not save file %s,\nbecause it is not possible to convert mono/stereo files to "
                         "multichannel and vice versa",
                         m_fileName.c_str()));
    }
    return false;
}

bool Exporter::CreateCoder(bool useStoredSettings)
{
    for (int attempt = 0; m_coder == 0 && attempt < NameAttempts; ++attempt) {
        fs::path path = MakeTempFileName("ekewdm", m_suffix, m_target.parent_path());
        m_coder = EkCoderCreateFile(path, m_record.WorkingFormat, useStoredSettings ? &m_record.StreamProps : nullptr,
                                    useStoredSettings ? nullptr : &m_openAfter, m_record.FrameCount);
        // A failed coder leaves no file, so one that is there is somebody else's, who was faster with the name.
        std::error_code error;
        if (m_coder == 0 && !fs::exists(fs::symlink_status(path, error)))
            return false;
        if (m_coder != 0)
            m_written = std::move(path);
    }
    if (m_coder == 0)
        return false;
    KeepPermissions();
    if (!useStoredSettings)
        EkCoderSetTags(m_coder, m_record.StreamProps);
    return true;
}

/// Before any sound is in the new file, so that it is never readable for more people than the old one was.
void Exporter::KeepPermissions() const
{
    std::error_code error;
    const fs::file_status old = fs::status(m_target, error);
    if (!fs::exists(old))
        return;
    fs::permissions(m_written, old.permissions(), error);
    if (error)
        enDebugManager().WriteLogMessage(ModuleName, LogError, "Error: Failed to keep the permissions of \"%s\".",
                                         m_target.string().c_str());
}

bool Exporter::CloseCoder()
{
    const CoderHandle coder = m_coder;
    m_coder = 0;
    return coder == 0 || EkCoderCloseFile(coder);
}

/// Whole pages go to the coder as they were read: a copy into smaller chunks would cost a fifth of the time.
WorkResult Exporter::WritePages(CProgressDlg& progress)
{
    const uint64_t length = m_record.ByteLength();
    PageReadAhead pages([this, length, position = uint64_t{0}](uint8_t* page) mutable {
        const uint64_t part = std::min<uint64_t>(PageCache::PageSize, length - position);
        const bool read = m_files.Read(page, position, part);
        position += part;
        return read ? part : 0;
    });
    for (uint64_t done = 0; done < length;) {
        const std::span<const uint8_t> page = pages.Next();
        if (page.empty() ||
            !EkCoderAddFileData(m_coder, page.size() / m_record.WorkingFormat.nBlockAlign, page.data(), page.size()))
            return WorkResult::Failed;
        done += page.size();
        // Completing the file waits for the disk; that belongs to the work that the progress shows.
        if (done == length && !CloseCoder())
            return WorkResult::Failed;
        progress.SetPos(static_cast<uint32_t>(done * 100 / length));
        if (progress.IsCancelled())
            return WorkResult::Cancelled;
    }
    return WorkResult::Finished;
}

WorkResult Exporter::WriteSound()
{
    WorkResult result = WorkResult::Finished;
    if (m_record.FrameCount != 0)
        result = RunInBackground(Format("Saving: %s", m_fileName.c_str()), true,
                                 [this](CProgressDlg& progress) { return WritePages(progress); });
    // Still open after a run that stopped early, and when there was nothing to write.
    const bool closed = CloseCoder();
    return result == WorkResult::Finished && !closed ? WorkResult::Failed : result;
}

void Exporter::Discard()
{
    if (!m_written.empty() && !RemoveFile(m_written).Ok())
        enDebugManager().WriteLogMessage(ModuleName, LogError, "Error: Failed to delete temporary file \"%s\".",
                                         m_written.string().c_str());
    m_written.clear();
}

/// The new file is read before the old one is given up: what cannot be opened again is not saved.
bool Exporter::TakeTarget()
{
    StreamInfo info;
    IoStatus synced;
    if (!EkGetStreamInfo(m_written, info, m_savedProperties) || !RenameOver(m_written, m_target, &synced).Ok())
        return false;
    m_written.clear();
    if (!synced.Ok())
        enDebugManager().WriteLogMessage(ModuleName, LogError, "Error: Failed to sync the folder of \"%s\".",
                                         m_target.string().c_str());
    return true;
}

bool Exporter::Save(bool useStoredSettings, bool* openAfter)
{
    if (!useStoredSettings && !ChooseSettings())
        return false;
    if (!MayReplace(m_target).Ok() || !CreateCoder(useStoredSettings)) {
        ShowError("Can't create file");
        return false;
    }
    WorkResult result = WriteSound();
    if (result == WorkResult::Finished && !TakeTarget())
        result = WorkResult::Failed;
    if (result != WorkResult::Finished)
        Discard();
    if (result == WorkResult::Failed)
        ReportFailure();
    if (openAfter)
        *openAfter = m_openAfter != 0;
    return result == WorkResult::Finished;
}

} // namespace ek
