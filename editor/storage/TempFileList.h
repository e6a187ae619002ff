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
/// deletes it in the end. Every failure writes a line to the log.
struct TempFileEntry {
    TempFileEntry() = default;
    ~TempFileEntry();
    TempFileEntry(TempFileEntry&&) = default;
    TempFileEntry& operator=(TempFileEntry&&) = delete;

    uint64_t End() const { return Start + Length; }
    bool Read(void* buffer, uint64_t length, uint64_t positionInFile) const;
    bool Write(const void* data, uint64_t length, uint64_t positionInFile);
    bool Allocate(uint64_t size); ///< disk space for the file's first bytes; new ones read as zeros
    bool Delete();                ///< closes and deletes the file; false when one of that failed

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

    /// No file is made longer than this, so that an edit never has to move much more.
    static constexpr uint64_t LargestFile = 1720320;

    TempFileList() = default;
    ~TempFileList(); ///< deletes the files
    TempFileList(const TempFileList&) = delete;
    TempFileList& operator=(const TempFileList&) = delete;

    const List& Entries() const { return m_entries; }
    uint64_t Length() const { return m_entries.empty() ? 0 : m_entries.back().End(); } ///< of the stream

    /// Moves the range between the stream and a buffer, file by file. On failure the part before it is done.
    bool Read(void* buffer, uint64_t position, uint64_t length);
    bool Write(const void* data, uint64_t position, uint64_t length);

    /// Creates the file of a new entry, which is not part of the list yet; the caller fills it and appends it.
    static bool CreateFile(std::string_view prefix, TempFileEntry& entry);
    void Append(TempFileEntry entry); ///< its Start becomes the end of the stream

    const TempFileEntry* FileBefore(uint64_t offset) const; ///< holds the byte before the offset; null for 0
    const TempFileEntry* FileAt(uint64_t offset) const;     ///< holds the byte at the offset; null from the end on

    bool IsRange(uint64_t from, uint64_t to) const; ///< from <= to, of the stream; logs when not
    void Reserve(size_t entries);                   ///< memory for so many entries more
    /// Puts other files in the place of [from, to): the file that `from` lies in ends there, `to` is the border of two
    /// files. Their Start is set here. Afterwards `files` holds those that fell out. Cannot fail when memory was
    /// reserved.
    void Exchange(uint64_t from, uint64_t to, List& files) noexcept;

    /// Fills an empty list with copies of the files of `source`; on failure it holds the copies made so far.
    bool CopyFrom(const TempFileList& source);
    bool Clear(); ///< closes and deletes all files; false when one could not be deleted

private:
    using Iterator = List::iterator;

    using Index = std::vector<Iterator>;

    Index::const_iterator Search(uint64_t offset) const;
    Iterator Find(uint64_t offset);
    static bool CopyFile(const TempFileEntry& original, TempFileEntry& copy, uint8_t* buffer);
    void Reindex();
    template <class Move>
    bool Transfer(uint64_t position, uint64_t length, const char* verb, Move move);

    List m_entries;
    Index m_index; ///< the entries again, for a search by halves
};

} // namespace ek
