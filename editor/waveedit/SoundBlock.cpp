// SPDX-License-Identifier: GPL-3.0-or-later
#include "waveedit/SoundBlock.h"

#include "debugmanager/DebugManager.h"

#include <cstring>

namespace ek {

CSoundBlock::~CSoundBlock()
{
    Free();
}

bool CSoundBlock::Create(uint64_t frames, const WAVEFORMATEXTENSIBLE& format, const void* initial, ChannelCode code)
{
    Free();
    Code = code;
    Format = format;
    const uint64_t bytes = frames * format.nBlockAlign;
    const IoStatus created = m_file.CreateTemporary(bytes);
    if (!created.Ok()) {
        enDebugManager().WriteLogMessage(ModuleName, LogError, "Error: Failed to create temporary file \"%s\".",
                                         m_file.Path().c_str());
        Free();
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
    if (Data) {
        const std::filesystem::path path = m_file.Path();
        if (!m_file.CloseAndRemove().Ok())
            enDebugManager().WriteLogMessage(ModuleName, LogError, "Error: Failed to delete temporary file \"%s\".",
                                             path.c_str());
    }
    Data = nullptr;
    FrameCount = 0;
    FillPosition = 0;
}

void CSoundBlock::SetRange(uint64_t start, uint64_t end)
{
    m_rangeStart = start;
    m_rangeEnd = end;
}

} // namespace ek
