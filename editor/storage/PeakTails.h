// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "storage/PeakCache.h"

#include <array>
#include <cstdint>
#include <vector>

namespace ek {

/// What an edit need not compute anew of a peak cache. An edit that changes the length of a sound moves what lies
/// behind it; unless it moves by whole blocks, every later entry becomes another one. But when the edit is undone, the
/// old entries are right again. So they are kept, in a bounded amount of memory, with how much of the sound's end has
/// not changed since they were its own: where the sound's length is congruent again, entries of that end are copied.
///
/// No thread may read or change this while another does. Lengths are frames.
class PeakTails {
public:
    static constexpr uint64_t LargestMemory = uint64_t{24} << 20; ///< bytes

    /// The sound changed; of the one before only the last `unchanged` frames are there still, at its end.
    void OnChange(uint64_t unchanged);
    /// All entries of the cache are those of the sound now, which has `frames` frames.
    void OnRenewed(uint64_t frames) { m_current = {frames, frames}; }
    void Clear();

    /// Puts known entries into the cache of a sound that has `frames` frames now, for which it has room; keeps those
    /// that stood there. Returns the frame, a multiple of 256 or `frames`, from which on the entries are right.
    uint64_t Restore(PeakCache& peaks, uint64_t frames);

private:
    /// A sound that was, and how much of its end is the end of the present one.
    struct Origin {
        uint64_t Frames = 0;
        uint64_t Unchanged = 0;

        uint64_t FirstBlock() const; ///< that lies wholly in the unchanged end
        uint64_t EndBlock() const;
    };
    struct Tail {
        Origin From;
        uint64_t FirstBlock = 0; ///< of the entries kept
        std::array<std::vector<PeakPair>, MaxChannels> Entries;

        uint64_t ByteSize() const;
    };

    void Keep(const PeakCache& peaks);

    Origin m_current;          ///< of the entries in the cache
    std::vector<Tail> m_tails; ///< oldest first; no two of congruent lengths
};

} // namespace ek
