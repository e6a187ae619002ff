// SPDX-License-Identifier: GPL-3.0-or-later
#include "ekdatapr/SampleShape.h"

#include "servicefuncs/Channels.h"

#include <sndfile.h>
#include <string_view>

namespace ek {

namespace {

std::string NameOf(int sfFormat)
{
    SF_FORMAT_INFO info{};
    info.format = sfFormat;
    return sf_command(nullptr, SFC_GET_FORMAT_INFO, &info, sizeof info) == 0 && info.name ? info.name : "unknown";
}

} // namespace

SampleShape ShapeOf(int sfFormat)
{
    switch (sfFormat & SF_FORMAT_SUBMASK) {
    case SF_FORMAT_PCM_S8:
    case SF_FORMAT_PCM_U8:
        return {8, false, true};
    case SF_FORMAT_PCM_24:
    case SF_FORMAT_DWVW_24:
    case SF_FORMAT_DWVW_N:
    case SF_FORMAT_ALAC_20:
    case SF_FORMAT_ALAC_24:
        return {24, false, false};
    case SF_FORMAT_PCM_32:
    case SF_FORMAT_ALAC_32:
        return {32, false, false};
    case SF_FORMAT_FLOAT:
        return {32, true, false};
    case SF_FORMAT_DOUBLE:
        return {64, true, false};
    case SF_FORMAT_VORBIS:
    case SF_FORMAT_OPUS:
    case SF_FORMAT_MPEG_LAYER_I:
    case SF_FORMAT_MPEG_LAYER_II:
    case SF_FORMAT_MPEG_LAYER_III:
        return {16, false, false};
    default:
        return {16, false, true};
    }
}

WAVEFORMATEXTENSIBLE MakeFileFormat(SampleShape shape, uint32_t rate, uint32_t channels, uint32_t mask)
{
    WAVEFORMATEXTENSIBLE format = MakePcm16Format(rate, channels, mask);
    if (shape.Bits == 16)
        return format;
    format.wBitsPerSample = shape.Bits;
    format.nBlockAlign = static_cast<uint16_t>(channels * shape.Bits / 8);
    format.nAvgBytesPerSec = rate * format.nBlockAlign;
    if (shape.IsFloat)
        format.SubFormat = KSDATAFORMAT_SUBTYPE_IEEE_FLOAT;
    return format;
}

std::string FormatName(int sfFormat)
{
    std::string samples = NameOf(sfFormat & SF_FORMAT_SUBMASK);
    for (const std::string_view word : {"Signed", "Unsigned"}) {
        if (samples.starts_with(word))
            samples[0] = static_cast<char>(samples[0] - 'A' + 'a');
    }
    return NameOf(sfFormat & SF_FORMAT_TYPEMASK) + ", " + samples;
}

} // namespace ek
