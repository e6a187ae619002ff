// SPDX-License-Identifier: GPL-3.0-or-later
#include "storage/Exporter.h"

#include "background/WaveDataProcessor.h"
#include "debugmanager/DebugManager.h"
#include "framework/Prompts.h"
#include "platform/ProductSettings.h"
#include "platform/TempFile.h"
#include "platform/Text.h"
#include "servicefuncs/Channels.h"
#include "storage/SequentialSource.h"

#include <system_error>

namespace ek {

namespace {

namespace fs = std::filesystem;

/// Where a write to the path would land: links are followed, also one that leads to a file yet to be made.
fs::path FollowLinks(fs::path path)
{
    constexpr int LinkLimit = 40;
    std::error_code error;
    path = fs::absolute(path, error);
    for (int links = 0; links < LinkLimit && fs::is_symlink(fs::symlink_status(path, error)); ++links)
        path = path.parent_path() / fs::read_symlink(path, error);
    return path;
}

/// The layout that the coder takes while none is stored; empty when it has no choice of layouts.
std::string LayoutInForce(const std::string& extension)
{
    for (const CoderOption& option : EkGetCoderOptions(extension)) {
        if (option.Key == "channels")
            return option.Value;
    }
    return {};
}

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
}

void Exporter::ReportFailure() const
{
    ShowError(Format("Can't save file %s", m_fileName.c_str()));
}

bool Exporter::LayoutFits() const
{
    const uint32_t channels = m_record.SourceFormat.nChannels;
    const std::string name = GetProductSetting("Providers\\" + m_extension, "Channels", LayoutInForce(m_extension));
    const uint32_t layout = ChannelLayoutCount(name);
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

/// The folder's permission would be enough to put another file in the target's place, but a file that its owner has
/// made read-only is meant to stay.
bool Exporter::MayReplaceTarget() const
{
    std::error_code error;
    const fs::file_status status = fs::status(m_target, error);
    if (!fs::exists(status))
        return true;
    File file;
    return fs::is_regular_file(status) && file.Open(m_target, File::Access::ReadWrite).Ok() && file.Close().Ok();
}

bool Exporter::CreateCoder(bool useStoredSettings)
{
    m_written = MakeTempFileName("ekewdm", m_suffix, m_target.parent_path());
    m_coder = EkCoderCreateFile(m_written, m_record.WorkingFormat, useStoredSettings ? &m_record.StreamProps : nullptr,
                                useStoredSettings ? nullptr : &m_openAfter, m_record.FrameCount);
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

WorkResult Exporter::WriteFrames()
{
    SequentialSource source(m_files, m_record.WorkingFormat.nBlockAlign);
    // The last chunk also completes the file: the wait for the disk belongs to the work that the progress shows.
    const auto addFrames = [&](uint8_t* frames, uint64_t first, uint64_t count) {
        const uint64_t bytes = count * m_record.WorkingFormat.nBlockAlign;
        return EkCoderAddFileData(m_coder, count, frames, bytes) &&
               (first + count < m_record.FrameCount || CloseCoder());
    };
    CWaveDataProcessor processor(source, 0, m_record.FrameCount, Format("Saving: %s", m_fileName.c_str()), true,
                                 addFrames);
    const WorkResult result = processor.Run();
    // A sound without frames has no last chunk, and a run that stopped early leaves the coder open.
    const bool closed = CloseCoder();
    return result == WorkResult::Finished && !closed ? WorkResult::Failed : result;
}

void Exporter::Discard() const
{
    if (IsFile(m_written) && !RemoveFile(m_written).Ok())
        enDebugManager().WriteLogMessage(ModuleName, LogError, "Error: Failed to delete temporary file \"%s\".",
                                         m_written.string().c_str());
}

bool Exporter::Save(bool useStoredSettings, bool* openAfter)
{
    if (!useStoredSettings && !ChooseSettings())
        return false;
    if (!MayReplaceTarget() || !CreateCoder(useStoredSettings)) {
        Discard();
        ShowError("Can't create file");
        return false;
    }
    WorkResult result = WriteFrames();
    if (result == WorkResult::Finished && !RenameOver(m_written, m_target).Ok())
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
