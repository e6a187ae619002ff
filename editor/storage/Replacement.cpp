// SPDX-License-Identifier: GPL-3.0-or-later
#include "storage/Replacement.h"

#include <algorithm>
#include <cstring>

namespace ek {

namespace {

constexpr uint64_t LargestFile = TempFileList::LargestFile;
constexpr uint64_t CopyBytes = 262144;
constexpr uint64_t BufferBytes = 262144;

/// The end of the file that the offset cuts; the offset itself on the border of two files.
uint64_t EndOfCutFile(const TempFileList& files, uint64_t offset)
{
    const TempFileEntry* const file = files.FileAt(offset);
    return file && file->Start < offset ? file->End() : offset;
}

} // namespace

Replacement::Replacement(TempFileList& files, uint64_t from, uint64_t to, uint64_t newLength)
    : m_files(files), m_from(from), m_to(to), m_begin(from), m_end(to), m_valid(files.IsRange(from, to))
{
    if (m_valid)
        PlanFront(newLength);
}

/// Which files before the range go into the new ones: those that fit into one file with what follows them, or, where
/// the range makes a file shorter, with the one before it.
void Replacement::PlanFront(uint64_t newLength)
{
    const uint64_t tailEnd = EndOfCutFile(m_files, m_to);
    uint64_t total = newLength + (tailEnd - m_to);
    const TempFileEntry* const next = m_files.FileAt(tailEnd);
    uint64_t follower = total == 0 && next ? next->Length : std::min(total, LargestFile);
    while (const TempFileEntry* const left = m_files.FileBefore(m_begin)) {
        const uint64_t kept = m_begin - left->Start;
        const TempFileEntry* const before = m_files.FileBefore(left->Start);
        if (follower != 0 && kept + follower <= LargestFile)
            m_begin = left->Start;
        else if (before && kept < left->Length && before->Length + kept <= LargestFile)
            m_begin = before->Start;
        else
            break;
        follower = std::min(total + (m_from - m_begin), LargestFile);
    }
    m_planned = total;
}

/// The newest file gets room for at least one byte; for all that is wanted and planned where it can be that long.
bool Replacement::MakeRoom(uint64_t wanted)
{
    if (m_pieces.empty() || m_pieces.back().Length == LargestFile) {
        TempFileEntry piece;
        if (!TempFileList::CreateFile("ekewdme", piece))
            return false;
        if (m_pieces.empty())
            piece.Length = m_from - m_begin; // filled at the end
        m_pieces.push_back(std::move(piece));
        m_allocated = 0;
    }
    TempFileEntry& piece = m_pieces.back();
    if (std::min(piece.Length + wanted, LargestFile) <= m_allocated)
        return true;
    m_allocated = std::min(piece.Length + std::max(wanted, m_planned), LargestFile);
    return piece.Allocate(m_allocated);
}

/// Calls put(file, bytes done before, bytes, place in the file) for every file that the new bytes go to.
template <class Put>
bool Replacement::Extend(uint64_t length, Put put)
{
    for (uint64_t done = 0; done < length;) {
        if (!MakeRoom(length - done))
            return false;
        TempFileEntry& piece = m_pieces.back();
        const uint64_t part = std::min(length - done, LargestFile - piece.Length);
        if (!put(piece, done, part, piece.Length))
            return false;
        piece.Length += part;
        done += part;
        m_planned -= std::min(part, m_planned);
    }
    return true;
}

bool Replacement::Flush()
{
    const uint64_t length = m_buffered;
    m_buffered = 0;
    return Extend(length, [this](TempFileEntry& file, uint64_t done, uint64_t part, uint64_t place) {
        return file.Write(m_buffer.get() + done, part, place);
    });
}

bool Replacement::Append(const void* bytes, uint64_t length)
{
    const auto* const from = static_cast<const uint8_t*>(bytes);
    if (!m_buffer)
        m_buffer = std::make_unique_for_overwrite<uint8_t[]>(BufferBytes);
    m_length += length;
    for (uint64_t done = 0; done < length;) {
        const uint64_t part = std::min(length - done, BufferBytes - m_buffered);
        std::memcpy(m_buffer.get() + m_buffered, from + done, part);
        m_buffered += part;
        done += part;
        if (m_buffered == BufferBytes && !Flush())
            return false;
    }
    return true;
}

bool Replacement::AppendZeros(uint64_t length)
{
    m_length += length;
    return Flush() && Extend(length, [](TempFileEntry&, uint64_t, uint64_t, uint64_t) { return true; });
}

bool Replacement::CopyToBack(uint64_t from, uint64_t to)
{
    const auto buffer = std::make_unique_for_overwrite<uint8_t[]>(std::min(CopyBytes, to - from));
    for (uint64_t position = from; position < to;) {
        const uint64_t part = std::min(CopyBytes, to - position);
        const auto write = [&buffer](TempFileEntry& file, uint64_t done, uint64_t bytes, uint64_t place) {
            return file.Write(buffer.get() + done, bytes, place);
        };
        if (!m_files.Read(buffer.get(), position, part) || !Extend(part, write))
            return false;
        position += part;
    }
    return true;
}

bool Replacement::CopyFront()
{
    const uint64_t length = m_from - m_begin;
    if (length == 0)
        return true;
    if (m_pieces.empty() && !MakeRoom(0))
        return false;
    const auto buffer = std::make_unique_for_overwrite<uint8_t[]>(length);
    return m_files.Read(buffer.get(), m_begin, length) && m_pieces.front().Write(buffer.get(), length, 0);
}

bool Replacement::JoinNextFiles()
{
    while (!m_pieces.empty()) {
        const TempFileEntry* const next = m_files.FileAt(m_end);
        if (!next || m_pieces.back().Length + next->Length > LargestFile)
            break;
        if (!CopyToBack(m_end, next->End()))
            return false;
        m_end = next->End();
    }
    return true;
}

bool Replacement::Complete()
{
    if (!m_valid)
        return false;
    m_end = EndOfCutFile(m_files, m_to);
    if (!Flush() || !CopyToBack(m_to, m_end) || !CopyFront() || !JoinNextFiles())
        return false;
    m_files.Reserve(m_pieces.size());
    return true;
}

void Replacement::Commit() noexcept
{
    m_files.Exchange(m_begin, m_end, m_pieces);
}

} // namespace ek
