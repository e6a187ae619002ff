// SPDX-License-Identifier: GPL-3.0-or-later
#include "devices/WavWriter.h"

#include "platform/SaveTarget.h"
#include "platform/TempFile.h"

#include <cstring>
#include <limits>
#include <string>

namespace ek {

namespace {

constexpr uint32_t PlainFormatBytes = 16;
constexpr uint32_t Ds64Bytes = 28;

void Put(std::string& header, const char* fourCharacters)
{
    header.append(fourCharacters, 4);
}

template <typename Number>
void Put(std::string& header, Number number)
{
    char bytes[sizeof number];
    std::memcpy(bytes, &number, sizeof number);
    header.append(bytes, sizeof number);
}

/// Most readers know the short form better, where it says all.
bool IsPlain(const WAVEFORMATEXTENSIBLE& format)
{
    return format.nChannels <= 2 && format.wBitsPerSample <= 16;
}

void PutFormat(std::string& header, const WAVEFORMATEXTENSIBLE& format)
{
    const bool isShort = IsPlain(format) || format.wFormatTag != WAVE_FORMAT_EXTENSIBLE;
    WAVEFORMATEXTENSIBLE written = format;
    if (isShort && written.wFormatTag == WAVE_FORMAT_EXTENSIBLE)
        written.wFormatTag = WAVE_FORMAT_PCM;
    if (!isShort && written.wValidBitsPerSample == 0)
        written.wValidBitsPerSample = written.wBitsPerSample;
    const uint32_t bytes = isShort ? PlainFormatBytes : static_cast<uint32_t>(sizeof written);
    Put(header, "fmt ");
    Put(header, bytes);
    header.append(reinterpret_cast<const char*>(&written), bytes);
}

} // namespace

IoStatus WavWriter::Create(const std::filesystem::path& target, const WAVEFORMATEXTENSIBLE& format)
{
    Abandon();
    m_format = format;
    m_bytes = 0;
    m_target = FollowLinks(target);
    if (const IoStatus status = MayReplace(m_target); !status.Ok())
        return status;
    constexpr uint32_t SharedAsTheUserLikes = 0666;
    IoStatus status =
        CreateTempFile("ekplay", ".tmp", m_target.parent_path(), SharedAsTheUserLikes, m_file, m_temporary);
    if (status.Ok())
        status = WriteHeader();
    if (!status.Ok())
        Abandon();
    return status;
}

IoStatus WavWriter::WriteHeader()
{
    constexpr uint64_t Most32 = std::numeric_limits<uint32_t>::max();
    std::string format;
    PutFormat(format, m_format);
    // RIFF, the place for the long sizes, the format, the head of the sound.
    m_soundStart = 12 + 8 + Ds64Bytes + format.size() + 8;
    const uint64_t padded = m_bytes + m_bytes % 2;
    const uint64_t riffBytes = m_soundStart - 8 + padded;
    const bool isLong = riffBytes > Most32;

    std::string header;
    Put(header, isLong ? "RF64" : "RIFF");
    Put(header, static_cast<uint32_t>(isLong ? Most32 : riffBytes));
    Put(header, "WAVE");
    Put(header, isLong ? "ds64" : "JUNK");
    Put(header, Ds64Bytes);
    Put(header, isLong ? riffBytes : uint64_t{0});
    Put(header, isLong ? m_bytes : uint64_t{0});
    Put(header, isLong && m_format.nBlockAlign > 0 ? m_bytes / m_format.nBlockAlign : uint64_t{0});
    Put(header, uint32_t{0});
    header += format;
    Put(header, "data");
    Put(header, static_cast<uint32_t>(isLong ? Most32 : m_bytes));
    return m_file.WriteAt(header.data(), header.size(), 0);
}

IoStatus WavWriter::Append(const void* frames, uint64_t bytes)
{
    const IoStatus status = m_file.WriteAt(frames, bytes, m_soundStart + m_bytes);
    if (status.Ok())
        m_bytes += bytes;
    return status;
}

IoStatus WavWriter::Complete()
{
    IoStatus status;
    if (m_bytes % 2 != 0)
        status = m_file.WriteAt("", 1, m_soundStart + m_bytes);
    if (status.Ok())
        status = WriteHeader();
    if (status.Ok())
        status = m_file.Sync();
    const IoStatus closed = m_file.Close();
    if (status.Ok())
        status = closed;
    IoStatus synced;
    if (status.Ok())
        status = RenameOver(m_temporary, m_target, &synced);
    if (!status.Ok()) {
        Abandon();
        return status;
    }
    m_temporary.clear();
    return synced;
}

void WavWriter::Abandon()
{
    if (m_temporary.empty())
        return;
    // Whatever goes wrong now is about bytes that nobody wants any more.
    (void)m_file.Close();
    (void)RemoveFile(m_temporary);
    m_temporary.clear();
}

} // namespace ek
