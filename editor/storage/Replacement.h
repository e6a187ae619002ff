// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "storage/TempFileList.h"

#include <cstdint>
#include <memory>

namespace ek {

/// Other bytes for a range of a stream, all or nothing: they are written into new files beside the stream, and only
/// when all of them are there do those files take the place of the old ones. Until Commit the stream is what it was;
/// a replacement that is dropped before deletes its files and has changed nothing.
///
/// Bytes of a file that a border of the range cuts go along into the new files, and so do neighbours that fit into one
/// file with what lies beside them. So of two files side by side none could hold both, however often a sound is
/// edited, and an edit copies the bytes of at most a few files besides its own.
class Replacement {
public:
    /// `newLength` is how many bytes will be appended, as far as the caller knows.
    Replacement(TempFileList& files, uint64_t from, uint64_t to, uint64_t newLength);
    Replacement(const Replacement&) = delete;
    Replacement& operator=(const Replacement&) = delete;

    bool IsValid() const { return m_valid; } ///< [from, to) is a range of the stream; the log says so when not

    // Any one thread. False: the disk is full or fails; the log says so, and the replacement is of no use any more.
    bool Append(const void* bytes, uint64_t length);
    bool AppendZeros(uint64_t length);
    uint64_t Length() const { return m_length; } ///< appended so far

    /// Nothing is taken out and nothing was appended.
    bool IsEmpty() const { return m_from == m_to && m_length == 0; }
    uint64_t RangeEnd() const { return m_to; }

    /// The range ends behind as many old bytes as new ones were appended: what was not reached stays as it is.
    void EndAtProgress() { m_to = m_from + m_length; }

    /// Does what can still fail. Afterwards nothing is appended any more. The files must not have changed since the
    /// replacement was made.
    bool Complete();
    /// After Complete; cannot fail. No other thread uses the stream. The old files are deleted with the replacement.
    void Commit() noexcept;

private:
    void PlanFront(uint64_t newLength);
    bool MakeRoom(uint64_t wanted);
    bool Flush();
    template <class Put>
    bool Extend(uint64_t length, Put put);
    bool CopyToBack(uint64_t from, uint64_t to);
    bool CopyFront();
    bool JoinNextFiles();

    TempFileList& m_files;
    const uint64_t m_from;
    uint64_t m_to;
    uint64_t m_begin;       ///< the old bytes [m_begin, m_from) stand before the appended ones in the first new file
    uint64_t m_end;         ///< the old bytes [m_to, m_end) stand behind them
    uint64_t m_planned = 0; ///< bytes that are still to come, for which room is made along with the next ones
    uint64_t m_length = 0;
    std::unique_ptr<uint8_t[]> m_buffer; ///< gathers short pieces: a call of the system costs as much as one of them
    uint64_t m_buffered = 0;             ///< bytes in it, the last ones appended
    uint64_t m_allocated = 0;            ///< of the newest file
    TempFileList::List m_pieces;
    bool m_valid;
};

} // namespace ek
