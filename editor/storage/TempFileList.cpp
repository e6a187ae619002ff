// SPDX-License-Identifier: GPL-3.0-or-later
#include "storage/TempFileList.h"

#include "debugmanager/DebugManager.h"
#include "platform/SpaceRelease.h"
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

} // namespace

TempFileEntry::~TempFileEntry()
{
    if (Handle.IsOpen())
        Delete();
}

bool TempFileEntry::Read(void* buffer, uint64_t length, uint64_t positionInFile) const
{
    return LogUnlessOk(Handle.ReadAllAt(buffer, length, positionInFile),
                       "Error! Failed to read data from temporary file \"%s\".", Name);
}

bool TempFileEntry::Write(const void* data, uint64_t length, uint64_t positionInFile)
{
    return LogUnlessOk(Handle.WriteAt(data, length, positionInFile),
                       "Error! Failed to write data to temporary file \"%s\".", Name);
}

bool TempFileEntry::Allocate(uint64_t size)
{
    return LogUnlessOk(Handle.Allocate(size), "Error: Failed to create temporary file \"%s\".", Name);
}

bool TempFileEntry::Delete()
{
    const DeferredSpaceRelease space(Handle);
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
    const auto found = Search(offset);
    if (found != m_index.end())
        return *found;
    if (offset != Length())
        LogOffset(offset);
    return m_entries.end();
}

TempFileList::Index::const_iterator TempFileList::Search(uint64_t offset) const
{
    return std::partition_point(m_index.begin(), m_index.end(),
                                [offset](Iterator entry) { return entry->End() <= offset; });
}

const TempFileEntry* TempFileList::FileBefore(uint64_t offset) const
{
    return offset != 0 ? FileAt(offset - 1) : nullptr;
}

const TempFileEntry* TempFileList::FileAt(uint64_t offset) const
{
    const auto found = Search(offset);
    return found != m_index.end() ? &**found : nullptr;
}

template <class Move>
bool TempFileList::Transfer(uint64_t position, uint64_t length, const char* verb, Move move)
{
    if (length == 0)
        return true; // also where the stream has no byte
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
                        return entry.Read(bytes + done, part, inFile);
                    });
}

bool TempFileList::Write(const void* data, uint64_t position, uint64_t length)
{
    const auto* bytes = static_cast<const uint8_t*>(data);
    return Transfer(position, length, "write",
                    [bytes](TempFileEntry& entry, uint64_t done, uint64_t part, uint64_t inFile) {
                        return entry.Write(bytes + done, part, inFile);
                    });
}

void TempFileList::Reserve(size_t entries)
{
    m_index.reserve(m_entries.size() + entries);
}

void TempFileList::Exchange(uint64_t from, uint64_t to, List& files) noexcept
{
    uint64_t end = from;
    for (TempFileEntry& file : files) {
        file.Start = end;
        end += file.Length;
    }
    const auto front =
        std::ranges::find_if(m_entries, [from](const TempFileEntry& entry) { return entry.End() > from; });
    const auto first = front != m_entries.end() && front->Start < from ? std::next(front) : front;
    if (first != front)
        front->Length = from - front->Start;
    const auto last =
        std::find_if(first, m_entries.end(), [to](const TempFileEntry& entry) { return entry.End() > to; });
    List fallen;
    fallen.splice(fallen.end(), m_entries, first, last);
    m_entries.splice(last, files);
    files.swap(fallen);
    for (auto entry = last; entry != m_entries.end(); ++entry)
        entry->Start = entry->Start - to + end;
    Reindex();
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
