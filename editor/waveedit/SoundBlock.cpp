// SPDX-License-Identifier: GPL-3.0-or-later
#include "waveedit/SoundBlock.h"

#include "background/ProgressDlg.h"
#include "debugmanager/DebugManager.h"
#include "dsp/Resampler.h"
#include "platform/TempFile.h"
#include "servicefuncs/MessageBox.h"

#include <algorithm>
#include <cerrno>
#include <cstring>
#include <memory>
#include <utility>
#include <vector>

namespace ek {

namespace {

struct Releaser {
    void operator()(IResampler* resampler) const { resampler->Release(); }
};
using ResamplerPtr = std::unique_ptr<IResampler, Releaser>;

ResamplerPtr MakeResampler()
{
    IResampler* resampler = nullptr;
    CreateResampler(&resampler);
    return ResamplerPtr(resampler);
}

/// Writes the source in another format to a file.
WorkResult Resample(const CSoundBlock& source, const WAVEFORMATEXTENSIBLE& format, File& file, CProgressDlg& progress)
{
    constexpr uint32_t LargestPiece = 4096;
    const uint32_t pieceBytes = LargestPiece - LargestPiece % source.Format.nBlockAlign;
    uint32_t capacity = 0;
    const ResamplerPtr resampler = MakeResampler();
    if (!resampler || resampler->Init(&source.Format, pieceBytes, &format, &capacity) != StatusOk)
        return WorkResult::Failed;
    std::vector<uint8_t> output(capacity);
    uint64_t position = 0;
    const uint64_t total = source.ByteSize();
    for (uint64_t done = 0; done < total; done += pieceBytes) {
        const auto bytes = static_cast<uint32_t>(std::min<uint64_t>(pieceBytes, total - done));
        uint32_t written = 0;
        if (resampler->Process(source.FrameAt(done / source.Format.nBlockAlign), bytes, output.data(), capacity,
                               &written) != StatusOk ||
            !file.WriteAt(output.data(), written, position).Ok())
            return WorkResult::Failed;
        position += written;
        progress.SetPos(static_cast<uint32_t>(done * 100 / total));
        if (progress.IsCancelled())
            return WorkResult::Cancelled;
    }
    return WorkResult::Finished;
}

bool MeansNoRoom(const IoStatus& status)
{
    return status.Errno() == ENOSPC || status.Errno() == EDQUOT || status.Errno() == ENOMEM;
}

void LogUncreated(const IoStatus& created, const std::filesystem::path& path, uint64_t bytes)
{
    enDebugManager().WriteLogMessage(ModuleName, LogError, "Error: Failed to create temporary file \"%s\".",
                                     path.c_str());
    enDebugManager().WriteLogMessage(ModuleName, LogError, "Error: %I64u bytes in folder \"%s\": %s.", bytes,
                                     path.parent_path().c_str(), created.Text().c_str());
}

void LogUndeleted(const IoStatus& removed, const std::filesystem::path& path)
{
    if (!removed.Ok())
        enDebugManager().WriteLogMessage(ModuleName, LogError, "Error: Failed to delete temporary file \"%s\".",
                                         path.c_str());
}

/// A temporary file that goes unless somebody takes it over, and the path with it.
struct UnclaimedFile {
    UnclaimedFile() = default;
    ~UnclaimedFile()
    {
        if (!Path.empty())
            LogUndeleted(RemoveFile(Path), Path);
    }
    UnclaimedFile(const UnclaimedFile&) = delete;
    UnclaimedFile& operator=(const UnclaimedFile&) = delete;

    std::filesystem::path Path;
};

/// Makes the file one of the source in another format.
WorkResult ResampleToFile(const CSoundBlock& source, const WAVEFORMATEXTENSIBLE& format, UnclaimedFile& made)
{
    File file;
    if (!CreateTempFile("ekesb", ".tmp", file, made.Path).Ok()) {
        made.Path.clear();
        return WorkResult::Failed;
    }
    const WorkResult result = RunInBackground(
        "Resampling", true, [&](CProgressDlg& progress) { return Resample(source, format, file, progress); });
    const bool closed = file.Close().Ok();
    return result == WorkResult::Finished && !closed ? WorkResult::Failed : result;
}

std::unique_ptr<CSoundBlock>& Clipboard()
{
    static auto clipboard = std::make_unique<CSoundBlock>();
    return clipboard;
}

} // namespace

CSoundBlock::CSoundBlock()
{
    OnUse = [this](uint64_t index) { OnUsedAt(index); };
}

CSoundBlock::~CSoundBlock()
{
    Free();
}

bool CSoundBlock::Create(uint64_t frames, const WAVEFORMATEXTENSIBLE& format, const void* initial, ChannelCode code)
{
    Free();
    m_lacksRoom = false;
    Code = code;
    Format = format;
    const uint64_t bytes = frames * format.nBlockAlign;
    const IoStatus created = m_file.CreateTemporary(bytes);
    if (!created.Ok()) {
        m_lacksRoom = MeansNoRoom(created);
        LogUncreated(created, m_file.Path(), bytes);
        return false;
    }
    Data = m_file.Data();
    FrameCount = frames;
    if (initial) {
        std::memcpy(Data, initial, bytes);
        FillPosition = frames;
    }
    return true;
}

bool CSoundBlock::OpenFile(const std::filesystem::path& path, const WAVEFORMATEXTENSIBLE& format)
{
    if (format.nBlockAlign == 0 || !IsFile(path))
        return false;
    Free();
    if (!m_file.Open(path).Ok())
        return false;
    Code = ChannelAll;
    Format = format;
    Data = m_file.Data();
    FrameCount = m_file.Size() / format.nBlockAlign;
    return true;
}

void CSoundBlock::Free()
{
    if (Data)
        LogUndeleted(m_file.CloseAndRemove(), m_file.Path());
    Data = nullptr;
    FrameCount = 0;
    FillPosition = 0;
}

bool CSoundBlock::ConvertFrom(const CSoundBlock& source, const WAVEFORMATEXTENSIBLE& format)
{
    Free();
    UnclaimedFile made;
    WorkResult result = ResampleToFile(source, format, made);
    source.ReleaseMemory();
    if (result == WorkResult::Finished && !OpenFile(made.Path, format))
        result = WorkResult::Failed;
    if (result == WorkResult::Finished)
        made.Path.clear(); // it is the block's now
    Code = source.Code;
    if (result == WorkResult::Failed)
        AfxSCMessageBox("Can't resample data", MessageButtons::Ok, MessageIcon::Error);
    return result == WorkResult::Finished;
}

void CSoundBlock::OnUsedAt(uint64_t index)
{
    constexpr uint64_t LargestMemory = 4 << 20;
    if (index >= m_keptFrom && (index - m_keptFrom) * Format.nBlockAlign < LargestMemory)
        return;
    ReleaseMemory();
    m_keptFrom = index;
}

void CSoundBlock::SetRange(uint64_t start, uint64_t end)
{
    m_rangeStart = start;
    m_rangeEnd = end;
}

CSoundBlock& SoundClipboard()
{
    return *Clipboard();
}

void SetSoundClipboard(std::unique_ptr<CSoundBlock> block)
{
    Clipboard() = std::move(block);
}

} // namespace ek
