// SPDX-License-Identifier: GPL-3.0-or-later
#include "InputFile.h"

#include "ekdatapr/EkDataPr.h"
#include "servicefuncs/Channels.h"

#include <vector>

namespace {

constexpr uint64_t FramesPerRead = 4096;
constexpr int MaxReads = 32;

void ReadSome(ek::DecoderHandle decoder)
{
    static std::vector<uint8_t> buffer(FramesPerRead * ek::MaxChannels * sizeof(int16_t));
    uint64_t first = 0;
    for (int i = 0; i < MaxReads; ++i) {
        const uint64_t got = ek::EkGetFileData(decoder, first, FramesPerRead, buffer.data(), buffer.size());
        if (got < FramesPerRead)
            break;
        first += got;
    }
    ek::EkGetFileData(decoder, first / 3, FramesPerRead, buffer.data(), buffer.size());
    ek::EkCloseFile(decoder);
}

} // namespace

/// The Vorbis library does not free this when a header is broken.
extern "C" __attribute__((visibility("default"))) const char* __lsan_default_suppressions()
{
    return "leak:vorbis_info_init\n";
}

extern "C" int LLVMFuzzerTestOneInput(const uint8_t* data, size_t size)
{
    const InputFile input(data, size);
    ek::StreamInfo info;
    ek::StreamProperties properties;
    if (!ek::EkGetStreamInfo(input.Path(), info, properties))
        return 0;
    ek::EkGetTags(properties);
    uint64_t frames = 0;
    ek::WAVEFORMATEXTENSIBLE format;
    ReadSome(ek::EkOpenFile(input.Path(), format, frames, true));
    format = ek::MakePcm16Format(48000, 2);
    ReadSome(ek::EkOpenFile(input.Path(), format, frames, false));
    return 0;
}
