// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "ek/SoundData.h"
#include "ek/WaveFormat.h"

#include <array>
#include <cstdint>
#include <vector>

namespace ek {

/// Makes the interleaved frames of a card from the channels of a sound.
///
/// A card with as many channels or more gets each channel of the sound in its place, the rest is silent; mono goes to
/// the first two. A card with fewer gets a stereo mix with the coefficients of ITU-R BS.775 (centre and surround
/// channels at -3 dB, the low frequency channel left out), scaled so that full scale on all channels does not clip: a
/// preview that distorts misleads more than one that is softer. A card with one channel gets the mean of that mix.
/// Values that are no finite numbers become silence.
class CardMixer {
public:
    CardMixer(const WAVEFORMATEXTENSIBLE& sound, uint32_t cardChannels);

    uint32_t CardChannels() const { return m_cardChannels; }
    float Gain(uint32_t cardChannel, uint32_t soundChannel) const { return m_gain[cardChannel][soundChannel]; }
    /// Frames [0, frames) of the sound; the result holds until the next call.
    const float* Mix(const _SOUNDDATAEX_& sound, uint32_t frames);

private:
    void MixDown(const WAVEFORMATEXTENSIBLE& sound);

    uint32_t m_cardChannels;
    uint32_t m_soundChannels;
    std::array<std::array<float, _SOUNDDATAEX_::MostChannels>, _SOUNDDATAEX_::MostChannels> m_gain{};
    std::vector<float> m_frames;
};

} // namespace ek
