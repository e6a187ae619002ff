// SPDX-License-Identifier: GPL-3.0-or-later
#include "devices/WavReader.h"

#include <algorithm>
#include <array>
#include <cerrno>
#include <cstring>

namespace ek {

namespace {

constexpr uint64_t ChunkHeadBytes = 8;

uint32_t NumberAt(const char* bytes)
{
    uint32_t number = 0;
    std::memcpy(&number, bytes, sizeof number);
    return number;
}

} // namespace

IoStatus WavReader::Open(const std::filesystem::path& path)
{
    IoStatus status = m_file.Open(path, File::Access::Read);
    uint64_t size = 0;
    if (status.Ok())
        status = m_file.Size(size);
    std::array<char, 12> head{};
    if (status.Ok())
        status = m_file.ReadAllAt(head.data(), head.size(), 0);
    if (status.Ok() && (std::memcmp(head.data(), "RIFF", 4) != 0 || std::memcmp(head.data() + 8, "WAVE", 4) != 0))
        status = IoStatus(EINVAL);
    for (uint64_t position = head.size(); status.Ok() && m_start == 0;) {
        status = m_file.ReadAllAt(head.data(), ChunkHeadBytes, position);
        const uint32_t bytes = NumberAt(head.data() + 4);
        position += ChunkHeadBytes;
        if (status.Ok() && std::memcmp(head.data(), "fmt ", 4) == 0)
            status = ReadFormat(position, bytes);
        if (status.Ok() && std::memcmp(head.data(), "data", 4) == 0) {
            m_start = position;
            m_bytes = std::min<uint64_t>(bytes, size - position);
        }
        position += uint64_t{bytes} + bytes % 2;
    }
    return status.Ok() && m_format.nBlockAlign == 0 ? IoStatus(EINVAL) : status;
}

IoStatus WavReader::ReadFormat(uint64_t position, uint32_t bytes)
{
    const IoStatus status = m_file.ReadAllAt(&m_format, std::min<uint64_t>(bytes, sizeof m_format), position);
    if (!status.Ok())
        return status;
    const bool isWhole = m_format.nChannels >= 1 && m_format.nChannels <= 8 && m_format.nSamplesPerSec > 0 &&
                         m_format.nBlockAlign == m_format.nChannels * (m_format.wBitsPerSample / 8);
    return isWhole ? status : IoStatus(EINVAL);
}

IoStatus WavReader::Read(void* frames, uint64_t start, uint64_t count) const
{
    return m_file.ReadAllAt(frames, count * m_format.nBlockAlign, m_start + start * m_format.nBlockAlign);
}

} // namespace ek
