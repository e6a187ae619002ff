// SPDX-License-Identifier: GPL-3.0-or-later
#include "storage/TempFileList.h"

#include "debugmanager/DebugManager.h"
#include "platform/TempFile.h"

#include <algorithm>
#include <cassert>
#include <memory>

namespace ek {

namespace {

constexpr char Extension[] = ".tmp";

void LogFile(int level, const char* format, const std::filesystem::path& name)
{
    enDebugManager().WriteLogMessage(ModuleName, level, format, name.string().c_str());
}

void LogOffset(uint64_t offset)
{
    enDebugManager().WriteLogMessage(ModuleName, LogError, "Error! Failed to find temporary file by offset %I64x.",
                                     offset);
}

bool LogUnlessOk(const IoStatus& status, const char* format, const std::filesystem::path& name)
{
    if (!status.Ok())
        LogFile(LogError, format, name);
    return status.Ok();
}

bool ReadFrom(const TempFileEntry& entry, void* buffer, uint64_t length, uint64_t position)
{
    return LogUnlessOk(entry.Handle.ReadAllAt(buffer, length, position),
                       "Error! Failed to read data from temporary file \"%s\".", entry.Name);
}

bool WriteTo(TempFileEntry& entry, const void* data, uint64_t length, uint64_t position)
{
    return LogUnlessOk(entry.Handle.WriteAt(data, length, position),
                       "Error! Failed to write data to temporary file \"%s\".", entry.Name);
}

bool DiscardAll(TempFileList::List& entries)
{
    bool ok = true;
    for (TempFileEntry& entry : entries)
        ok = TempFileList::Discard(entry) && ok;
    entries.clear();
    return ok;
}

/// Moves the last bytes of a file, from `source` on, down to `target`. When that fails half-way the old bytes are
/// put back, so that the file still says what its entry says.
bool MoveTailDown(TempFileEntry& entry, uint64_t source, uint64_t target)
{
    const uint64_t length = entry.Length - target;
    const auto bytes = std::make_unique_for_overwrite<uint8_t[]>(length);
    if (!ReadFrom(entry, bytes.get(), length, target))
        return false;
    if (WriteTo(entry, bytes.get() + (source - target), entry.Length - source, target))
        return true;
    (void)WriteTo(entry, bytes.get(), length, target);
    return false;
}

} // namespace

TempFileList::~TempFileList()
{
    Clear();
}

bool TempFileList::CreateFile(std::string_view prefix, TempFileEntry& entry)
{
    const IoStatus status = CreateTempFile(prefix, Extension, entry.Handle, entry.Name);
    if (!LogUnlessOk(status, "Error: Failed to create temporary file \"%s\".", entry.Name))
        return false;
    LogFile(LogInformation, "Created temporary file \"%s\".", entry.Name);
    return true;
}

bool TempFileList::Discard(TempFileEntry& entry)
{
    const bool closed = LogUnlessOk(entry.Handle.Close(), "Error: Failed to close temporary file \"%s\".", entry.Name);
    return LogUnlessOk(RemoveFile(entry.Name), "Error: Failed to delete temporary file \"%s\".", entry.Name) && closed;
}

void TempFileList::Append(TempFileEntry entry)
{
    entry.Start = Length();
    m_entries.push_back(std::move(entry));
    m_index.push_back(std::prev(m_entries.end()));
}

void TempFileList::Reindex()
{
    m_index.clear();
    for (auto entry = m_entries.begin(); entry != m_entries.end(); ++entry)
        m_index.push_back(entry);
}

bool TempFileList::IsRange(uint64_t from, uint64_t to) const
{
    const bool inside = from <= to && to <= Length();
    if (!inside)
        LogOffset(to);
    return inside;
}

/// The first entry that ends behind the offset; the end of the list for the end of the stream.
TempFileList::Iterator TempFileList::Find(uint64_t offset)
{
    const auto found = std::partition_point(m_index.begin(), m_index.end(),
                                            [offset](Iterator entry) { return EndOf(*entry) <= offset; });
    if (found != m_index.end())
        return *found;
    if (offset != Length())
        enDebugManager().WriteLogMessage(ModuleName, LogError, "Error! Failed to find temporary file by offset %I64x.",
                                         offset);
    return m_entries.end();
}

template <class Move>
bool TempFileList::Transfer(uint64_t position, uint64_t length, const char* verb, Move move)
{
    Iterator entry = Find(position);
    for (uint64_t done = 0; done < length; ++entry) {
        if (entry == m_entries.end()) {
            enDebugManager().WriteLogMessage(
                ModuleName, LogError,
                "Error! Trying to %s data beyond the limit of temporary file pages!. Position: %I64x", verb,
                position + done);
            return false;
        }
        const uint64_t inFile = position + done - entry->Start;
        const uint64_t part = std::min(entry->Length - inFile, length - done);
        if (part != 0 && !move(*entry, done, part, inFile))
            return false;
        done += part;
    }
    return true;
}

bool TempFileList::Read(void* buffer, uint64_t position, uint64_t length)
{
    auto* bytes = static_cast<uint8_t*>(buffer);
    return Transfer(position, length, "read",
                    [bytes](TempFileEntry& entry, uint64_t done, uint64_t part, uint64_t inFile) {
                        return ReadFrom(entry, bytes + done, part, inFile);
                    });
}

bool TempFileList::Write(const void* data, uint64_t position, uint64_t length)
{
    const auto* bytes = static_cast<const uint8_t*>(data);
    return Transfer(position, length, "write",
                    [bytes](TempFileEntry& entry, uint64_t done, uint64_t part, uint64_t inFile) {
                        return WriteTo(entry, bytes + done, part, inFile);
                    });
}

/// Gives the bytes of the entry from the stream offset on a file of their own and returns its entry. The stream
/// stays what it was. The end of the list on failure.
TempFileList::Iterator TempFileList::Split(Iterator entry, uint64_t offset)
{
    const uint64_t inFile = offset - entry->Start;
    TempFileEntry tail;
    tail.Start = offset;
    tail.Length = entry->Length - inFile;
    const auto bytes = std::make_unique_for_overwrite<uint8_t[]>(tail.Length);
    if (!ReadFrom(*entry, bytes.get(), tail.Length, inFile) || !CreateFile("ekewdme", tail))
        return m_entries.end();
    if (!WriteTo(tail, bytes.get(), tail.Length, 0)) {
        Discard(tail);
        return m_entries.end();
    }
    entry->Length = inFile;
    const Iterator added = m_entries.insert(std::next(entry), std::move(tail));
    Reindex();
    return added;
}

/// The disk space is allocated, so that a full disk shows here and not when the room is written.
bool TempFileList::MakeRoom(List& pieces, uint64_t start, uint64_t length)
{
    for (uint64_t done = 0; done < length; done += pieces.back().Length) {
        TempFileEntry piece;
        piece.Start = start + done;
        piece.Length = std::min(length - done, LargestFile);
        if (!CreateFile("ekewdme", piece))
            return false;
        pieces.push_back(std::move(piece));
        TempFileEntry& made = pieces.back();
        if (!LogUnlessOk(made.Handle.Allocate(made.Length), "Error: Failed to create temporary file \"%s\".",
                         made.Name))
            return false;
    }
    return true;
}

bool TempFileList::InsertSpace(uint64_t a, uint64_t b, uint64_t length)
{
    if (!IsRange(a, b))
        return false;
    const Iterator first = Find(a);
    Iterator next = Find(b);
    if (first == next && next != m_entries.end() && next->Start != a) {
        next = Split(next, b);
        if (next == m_entries.end())
            return false;
    }
    List pieces;
    if (!MakeRoom(pieces, next != m_entries.end() ? next->Start : Length(), length)) {
        DiscardAll(pieces);
        return false;
    }
    for (Iterator entry = next; entry != m_entries.end(); ++entry)
        entry->Start += length;
    m_entries.splice(next, pieces);
    Reindex();
    return true;
}

bool TempFileList::Remove(uint64_t from, uint64_t to)
{
    if (from == to || !IsRange(from, to))
        return from == to;
    // Only the file that goes on behind the range has to move bytes; all the rest is bookkeeping and cannot fail.
    const Iterator last = Find(to);
    if (last != m_entries.end() && last->Start < to) {
        const uint64_t target = std::max(from, last->Start);
        if (!MoveTailDown(*last, to - last->Start, target - last->Start))
            return false;
    }
    const auto moved = [from, to](uint64_t offset) {
        return offset <= from ? offset : std::max(offset, to) - (to - from);
    };
    for (Iterator entry = m_entries.begin(); entry != m_entries.end();) {
        const uint64_t end = EndOf(*entry);
        if (entry->Start >= from && end <= to) {
            Discard(*entry);
            entry = m_entries.erase(entry);
            continue;
        }
        entry->Start = moved(entry->Start);
        entry->Length = moved(end) - entry->Start;
        ++entry;
    }
    Reindex();
    return true;
}

bool TempFileList::CopyFile(const TempFileEntry& original, TempFileEntry& copy)
{
    copy.Length = original.Length;
    copy.Name = MakeTempFileName("ekecdf", Extension);
    if (!CopyFileTo(original.Name, copy.Name).Ok()) {
        enDebugManager().WriteLogMessage(ModuleName, LogError, "Error: Failed to copy file %s to %s !",
                                         original.Name.string().c_str(), copy.Name.string().c_str());
        return false;
    }
    if (!LogUnlessOk(copy.Handle.Open(copy.Name, File::Access::ReadWrite),
                     "Error: Failed to open temporary file \"%s\".", copy.Name)) {
        Discard(copy);
        return false;
    }
    LogFile(LogInformation, "Created temporary file \"%s\".", copy.Name);
    return true;
}

bool TempFileList::CopyFrom(const TempFileList& source)
{
    assert(m_entries.empty());
    for (const TempFileEntry& original : source.m_entries) {
        TempFileEntry copy;
        if (!CopyFile(original, copy))
            return false;
        Append(std::move(copy));
    }
    return true;
}

bool TempFileList::Clear()
{
    m_index.clear();
    return DiscardAll(m_entries);
}

} // namespace ek
