// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "ek/SoundData.h"

#include <array>
#include <cstdint>
#include <deque>
#include <mutex>

namespace ek {

/// How loud the channels of a sound are, from the moment a piece is made until it is heard. Any thread, but the sound
/// card's: it waits.
class PeakTrack {
public:
    using Peaks = std::array<float, _SOUNDDATAEX_::MostChannels>; ///< largest absolute values; 0 without such a channel

    void Clear();
    /// The frames of the record, the first of which is frame `start` of the sound; of the sound `heard` frames have
    /// been heard.
    void Add(const _SOUNDDATAEX_& sound, uint64_t start, uint64_t heard);
    Peaks Take(uint64_t heard); ///< of what was heard since the last call

private:
    struct Piece {
        uint64_t Start = 0; ///< frame of the sound
        Peaks Values{};
    };

    void Hear(uint64_t heard);

    std::mutex m_mutex;
    std::deque<Piece> m_pieces; ///< not heard yet
    Peaks m_heard{};            ///< not taken yet
};

} // namespace ek
