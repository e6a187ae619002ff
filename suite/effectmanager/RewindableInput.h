// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "effectmanager/AudioAbstract.h"

#include <cstddef>
#include <vector>

namespace ek {

/// Stands before a chain of effects and remembers the last frames that it gave, so that a chain that is changed in
/// the middle of a stream can be given again what the old one held. One thread at a time.
class RewindableInput final : public CAudioAbstract {
public:
    void Open(uint32_t channels); ///< forgets everything
    /// From now on `frames` frames are remembered, or those that are still to be given again if they are more.
    void Remember(uint32_t frames);
    void Rewind(uint32_t frames); ///< as far as they are remembered
    void Restart();               ///< what is pulled next is new
    uint32_t GetData(_SOUNDDATAEX_* sound) override;
    uint64_t Position() const { return m_end - m_again; } ///< of the next frame that it gives
    uint32_t Again() const { return m_again; }            ///< frames that are to be given again before new ones

private:
    uint32_t GiveAgain(_SOUNDDATAEX_& sound);
    void Keep(const _SOUNDDATAEX_& sound, uint32_t frames);
    float& At(uint32_t channel, uint64_t frame) { return m_frames[channel * size_t{m_capacity} + frame % m_capacity]; }
    uint32_t Remembered() const;

    uint32_t m_channels = 0;
    uint32_t m_capacity = 0;
    std::vector<float> m_frames; ///< the last `m_capacity` ones, a ring for each channel
    uint64_t m_end = 0;          ///< frames that have been pulled
    uint32_t m_again = 0;
};

} // namespace ek
