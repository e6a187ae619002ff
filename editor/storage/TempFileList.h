// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "platform/File.h"

#include <cstdint>
#include <filesystem>
#include <list>
#include <string_view>
#include <vector>

namespace ek {

/// One temporary file of a store: it holds the stream bytes [Start, Start + Length) from its beginning on. The
/// file may be longer; the rest is not part of the stream. While its handle is open the entry owns the file and
/// deletes it in the end.
struct TempFileEntry {
    TempFileEntry() = default;
    ~TempFileEntry();
    TempFileEntry(TempFileEntry&&) = default;
    TempFileEntry& operator=(TempFileEntry&&) = delete;

    bool Delete(); ///< closes and deletes the file; false when one of that failed

    uint64_t Start = 0;
    uint64_t Length = 0;
    std::filesystem::path Name;
    File Handle;
};

/// A byte stream in a row of hidden temporary files, which tile it without gaps. Every failure writes a line to
/// the log. Read and Write may run on several threads at once, the other operations only alone.
class TempFileList {
public:
    using List = std::list<TempFileEntry>;

    /// New files are made no longer than this, so that an edit never has to move more.
    static constexpr uint64_t LargestFile = 1720320;

    TempFileList() = default;
    ~TempFileList(); ///< deletes the files
    TempFileList(const TempFileList&) = delete;
    TempFileList& operator=(const TempFileList&) = delete;

    const List& Entries() const { return m_entries; }
    uint64_t Length() const { return m_entries.empty() ? 0 : EndOf(m_entries.back()); } ///< of the stream

    /// Moves the range between the stream and a buffer, file by file. On failure the part before it is done.
    bool Read(void* buffer, uint64_t position, uint64_t length);
    bool Write(const void* data, uint64_t position, uint64_t length);

    /// Creates the file of a new entry, which is not part of the list yet; the caller fills it and appends it.
    static bool CreateFile(std::string_view prefix, TempFileEntry& entry);
    void Append(TempFileEntry entry); ///< its Start becomes the end of the stream

    /// The stream grows by `length` zero bytes somewhere in [a, b], exactly at `b` when a == b.
    /// On failure the stream is as before.
    bool InsertSpace(uint64_t a, uint64_t b, uint64_t length);
    /// Takes [from, to) out. On failure the stream is as before, where the disk allows: bytes that can be written
    /// neither to their own file nor to a new one are lost, which the log says.
    bool Remove(uint64_t from, uint64_t to);
    /// Fills an empty list with copies of the files of `source`; on failure it holds the copies made so far.
    bool CopyFrom(const TempFileList& source);
    bool Clear(); ///< closes and deletes all files; false when one could not be deleted

private:
    using Iterator = List::iterator;

    static uint64_t EndOf(const TempFileEntry& entry) { return entry.Start + entry.Length; }
    bool IsRange(uint64_t from, uint64_t to) const; ///< logs when it is not one of the stream
    Iterator Find(uint64_t offset);
    Iterator Split(Iterator entry, uint64_t offset);
    static bool CopyFile(const TempFileEntry& original, TempFileEntry& copy, uint8_t* buffer);
    static bool MakeRoom(List& pieces, uint64_t start, uint64_t length);
    void Reindex();
    template <class Move>
    bool Transfer(uint64_t position, uint64_t length, const char* verb, Move move);

    List m_entries;
    std::vector<Iterator> m_index; ///< the entries again, for a search by halves
};

} // namespace ek
