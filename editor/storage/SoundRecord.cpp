// SPDX-License-Identifier: GPL-3.0-or-later
#include "storage/SoundRecord.h"

#include "servicefuncs/Channels.h"

namespace ek {

bool IsStorable(const WAVEFORMATEXTENSIBLE& format)
{
    return format.nChannels >= 1 && format.nChannels <= MaxChannels &&
           (format.wBitsPerSample == 8 || format.wBitsPerSample == 16) &&
           format.nBlockAlign == format.nChannels * format.wBitsPerSample / 8 && format.nSamplesPerSec > 0;
}

WAVEFORMATEXTENSIBLE WidenTo16Bits(WAVEFORMATEXTENSIBLE format)
{
    if (format.wBitsPerSample == 8) {
        format.wBitsPerSample = 16;
        format.nBlockAlign *= 2;
        format.nAvgBytesPerSec *= 2;
    }
    return format;
}

} // namespace ek
