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

/// Puts a new file in the place of the entry's, which can no longer be written: the old one's bytes up to `target`,
/// then the given ones.
bool MoveToNewFile(TempFileEntry& entry, const uint8_t* bytes, uint64_t target)
{
    TempFileEntry other;
    const auto front = std::make_unique_for_overwrite<uint8_t[]>(target);
    if (!ReadFrom(entry, front.get(), target, 0) || !TempFileList::CreateFile("ekewdme", other) ||
        !WriteTo(other, front.get(), target, 0) || !WriteTo(other, bytes, entry.Length - target, target))
        return false;
    std::swap(entry.Handle, other.Handle);
    entry.Name.swap(other.Name);
    return true;
}

/// Moves the last bytes of a file, from `source` on, down to `target`. When that fails half-way the old bytes are
/// put back, or into a new file, so that the entry's file still says what the entry says.
bool MoveTailDown(TempFileEntry& entry, uint64_t source, uint64_t target)
{
    const uint64_t length = entry.Length - target;
    const auto bytes = std::make_unique_for_overwrite<uint8_t[]>(length);
    if (!ReadFrom(entry, bytes.get(), length, target))
        return false;
    if (WriteTo(entry, bytes.get() + (source - target), entry.Length - source, target))
        return true;
    if (!WriteTo(entry, bytes.get(), length, target) && !MoveToNewFile(entry, bytes.get(), target))
        LogFile(LogError, "Error! Lost a part of the sound in temporary file \"%s\".", entry.Name);
    return false;
}

} // namespace

TempFileEntry::~TempFileEntry()
{
    if (Handle.IsOpen())
        Delete();
}

bool TempFileEntry::Delete()
{
    const bool closed = LogUnlessOk(Handle.Close(), "Error: Failed to close temporary file \"%s\".", Name);
    return LogUnlessOk(RemoveFile(Name), "Error: Failed to delete temporary file \"%s\".", Name) && closed;
}

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

/// All that needs memory comes before the list changes, here and where entries are spliced in, so that list and index
/// agree whatever happens.
void TempFileList::Append(TempFileEntry entry)
{
    entry.Start = Length();
    List added;
    added.push_back(std::move(entry));
    m_index.push_back(added.begin());
    m_entries.splice(m_entries.end(), added);
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
    if (!WriteTo(tail, bytes.get(), tail.Length, 0))
        return m_entries.end();
    List tails;
    tails.push_back(std::move(tail));
    m_index.reserve(m_entries.size() + 1);
    entry->Length = inFile;
    m_entries.splice(std::next(entry), tails);
    Reindex();
    return std::next(entry);
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
    if (!MakeRoom(pieces, next != m_entries.end() ? next->Start : Length(), length))
        return false;
    m_index.reserve(m_entries.size() + pieces.size());
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
            entry->Delete();
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

bool TempFileList::CopyFile(const TempFileEntry& original, TempFileEntry& copy, uint8_t* buffer)
{
    assert(original.Length <= LargestFile);
    copy.Length = original.Length;
    if (!LogUnlessOk(CreateTempFile("ekecdf", Extension, copy.Handle, copy.Name),
                     "Error: Failed to open temporary file \"%s\".", copy.Name))
        return false;
    LogFile(LogInformation, "Created temporary file \"%s\".", copy.Name);
    if (original.Handle.ReadAllAt(buffer, original.Length, 0).Ok() &&
        copy.Handle.WriteAt(buffer, original.Length, 0).Ok())
        return true;
    enDebugManager().WriteLogMessage(ModuleName, LogError, "Error: Failed to copy file %s to %s !",
                                     original.Name.string().c_str(), copy.Name.string().c_str());
    return false;
}

bool TempFileList::CopyFrom(const TempFileList& source)
{
    assert(m_entries.empty());
    const auto buffer = std::make_unique_for_overwrite<uint8_t[]>(LargestFile);
    for (const TempFileEntry& original : source.m_entries) {
        TempFileEntry copy;
        if (!CopyFile(original, copy, buffer.get()))
            return false;
        Append(std::move(copy));
    }
    return true;
}

bool TempFileList::Clear()
{
    m_index.clear();
    bool ok = true;
    for (TempFileEntry& entry : m_entries)
        ok = entry.Delete() && ok;
    m_entries.clear();
    return ok;
}

} // namespace ek
