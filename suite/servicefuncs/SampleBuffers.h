// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "servicefuncs/Channels.h"

#include <cstdint>

namespace ek {

// Buffers of interleaved 16-bit frames. A channel code that the format does not hold changes nothing.

/// Copies the samples of one channel position into consecutive mono samples.
void SplitChannel(int16_t* destination, const int16_t* source, const WAVEFORMATEXTENSIBLE& format, uint64_t frames,
                  uint32_t position);

/// Sets the samples of the channel (of all channels for ChannelAll) to silence.
void ClearWaveData(int16_t* buffer, const WAVEFORMATEXTENSIBLE& format, uint64_t frames, ChannelCode code);

/// Writes the mix of `first` and `second` into `destination`, which may be `first`: the sum, saturated to the
/// 16-bit range. For ChannelAll `second` is interleaved like `first`; for one channel it is mono and the other
/// channels are copied from `first`. Past `secondFrames` the second source is silence.
void MixWaveData(int16_t* destination, const int16_t* first, uint64_t frames, const int16_t* second,
                 uint64_t secondFrames, const WAVEFORMATEXTENSIBLE& format, ChannelCode code);

/// Writes mono samples into one channel of the destination's frames; the other channels stay.
void CopyWaveData(int16_t* destination, const int16_t* source, const WAVEFORMATEXTENSIBLE& format, uint64_t frames,
                  ChannelCode code);

} // namespace ek
