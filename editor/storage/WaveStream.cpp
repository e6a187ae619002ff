// SPDX-License-Identifier: GPL-3.0-or-later
#include "debugmanager/DebugManager.h"
#include "storage/WaveData.h"

#include <algorithm>
#include <array>
#include <bit>
#include <cstring>
#include <vector>

namespace ek {

namespace {

static_assert(std::endian::native == std::endian::little, "the record is little-endian");

constexpr uint64_t FormatBytes = sizeof(WAVEFORMATEXTENSIBLE);
constexpr uint64_t PropertiesOffset = 2 * FormatBytes;
constexpr uint64_t CountOffset = PropertiesOffset + sizeof(StreamProperties);
constexpr uint64_t HeaderBytes = CountOffset + sizeof(uint64_t);

/// A multiple of every frame size, and a fraction of a page.
constexpr uint64_t PartBytes = 107520;

using Header = std::array<uint8_t, HeaderBytes>;

Header Pack(const SoundRecord& record)
{
    Header header;
    std::memcpy(header.data(), &record.SourceFormat, FormatBytes);
    std::memcpy(header.data() + FormatBytes, &record.WorkingFormat, FormatBytes);
    std::memcpy(header.data() + PropertiesOffset, record.StreamProps.Bytes.data(), record.StreamProps.Bytes.size());
    std::memcpy(header.data() + CountOffset, &record.FrameCount, sizeof record.FrameCount);
    return header;
}

SoundRecord Unpack(const Header& header)
{
    SoundRecord record;
    std::memcpy(&record.SourceFormat, header.data(), FormatBytes);
    std::memcpy(&record.WorkingFormat, header.data() + FormatBytes, FormatBytes);
    std::memcpy(record.StreamProps.Bytes.data(), header.data() + PropertiesOffset, record.StreamProps.Bytes.size());
    std::memcpy(&record.FrameCount, header.data() + CountOffset, sizeof record.FrameCount);
    return record;
}

/// Whether a store can hold the record's sound and `available` bytes can be all of it.
bool IsPlausible(const SoundRecord& record, uint64_t available)
{
    const WAVEFORMATEXTENSIBLE& format = record.WorkingFormat;
    return IsStorable(format) && format.wBitsPerSample == 16 && record.FrameCount != 0 &&
           record.FrameCount <= available / format.nBlockAlign;
}

} // namespace

bool CWaveData::WriteToStream(File& file, uint64_t& position)
{
    const Header header = Pack(m_record);
    bool ok = file.WriteAt(header.data(), header.size(), position).Ok();
    std::vector<uint8_t> part(PartBytes);
    for (uint64_t done = 0; ok && done < ByteLength(); done += part.size()) {
        part.resize(std::min(PartBytes, ByteLength() - done));
        ok = ReadData(part.data(), done, part.size()) &&
             file.WriteAt(part.data(), part.size(), position + HeaderBytes + done).Ok();
    }
    if (ok)
        position += HeaderBytes + ByteLength();
    else
        Log(LogError, "Error: Failed to store the sound of \"%s\".");
    return ok;
}

bool CWaveData::ReadRecord(File& file, uint64_t& position)
{
    Header header;
    uint64_t size = 0;
    if (!file.ReadAllAt(header.data(), header.size(), position).Ok() || !file.Size(size).Ok())
        return false;
    position += HeaderBytes;
    m_record = Unpack(header);
    if (!IsPlausible(m_record, size - position))
        return false;
    const uint64_t length = ByteLength();
    m_record.FrameCount = 0;
    return InsertSpace(0, 0, length);
}

bool CWaveData::ReadBytes(File& file, uint64_t& position)
{
    std::vector<uint8_t> part(PartBytes);
    for (uint64_t done = 0; done < ByteLength(); done += part.size()) {
        part.resize(std::min(PartBytes, ByteLength() - done));
        if (!file.ReadAllAt(part.data(), part.size(), position + done).Ok() ||
            !WriteData(part.data(), done, part.size()))
            return false;
    }
    position += ByteLength();
    return true;
}

bool CWaveData::ReadFromStream(File& file, uint64_t& position)
{
    if (ReadRecord(file, position) && ReadBytes(file, position) && BuildPeakCache())
        return true;
    Log(LogError, "Error: Failed to load the sound of \"%s\".");
    Close();
    return false;
}

} // namespace ek
