// SPDX-License-Identifier: GPL-3.0-or-later
#include "ekdatapr/EkDataPr.h"

#include "ekdatapr/Coder.h"
#include "ekdatapr/ConvertingDecoder.h"
#include "ekdatapr/HandleTable.h"
#include "ekdatapr/SourceFacts.h"
#include "servicefuncs/Channels.h"

#include <algorithm>

namespace ek {

namespace {

constexpr const char* LayoutNames[] = {
    "Mono",
    "Stereo",
    "2.1 Surround Mode",
    "4.0 Surround Mode",
    "4.1 Surround Mode",
    "5.1 Surround Mode",
    "6.1 Surround Mode",
    "7.1 Surround Mode",
};

HandleTable<Decoder>& Decoders()
{
    static HandleTable<Decoder> table;
    return table;
}

HandleTable<Coder>& Coders()
{
    static HandleTable<Coder> table;
    return table;
}

/// Headers decide how much memory opening takes, and may lie. Callers get a failure, as of any file that cannot be read
/// or written.
template <typename Function>
auto Guarded(Function function) noexcept -> decltype(function())
{
    try {
        return function();
    } catch (...) {
        return decltype(function())();
    }
}

WAVEFORMATEXTENSIBLE FormatOf(const SoundSource& source)
{
    return MakeFileFormat(source.Shape(), source.Rate(), source.Channels(), source.Mask());
}

std::unique_ptr<Decoder> OpenNative(std::unique_ptr<SoundSource> source)
{
    if (source->Shape().Bits == 8)
        return std::make_unique<ByteDecoder>(std::move(source));
    return std::make_unique<ShortDecoder>(std::move(source));
}

std::unique_ptr<Decoder> OpenAs(std::unique_ptr<SoundSource> source, const WAVEFORMATEXTENSIBLE& format)
{
    const WAVEFORMATEXTENSIBLE own = FormatOf(*source);
    const ChannelMatrix matrix =
        MakeChannelMatrix(own.nChannels, own.dwChannelMask, format.nChannels, format.dwChannelMask);
    if (format.nSamplesPerSec == own.nSamplesPerSec && matrix.IsIdentity())
        return std::make_unique<ShortDecoder>(std::move(source));
    return ConvertingDecoder::Create(std::move(source), format.nSamplesPerSec, matrix);
}

bool IsDeliverable(const WAVEFORMATEXTENSIBLE& format)
{
    return format.wBitsPerSample == 16 && format.nChannels >= 1 && format.nChannels <= MaxChannels &&
           format.nBlockAlign == format.nChannels * sizeof(int16_t) && format.nSamplesPerSec > 0;
}

} // namespace

bool EkGetStreamInfo(const std::filesystem::path& path, StreamInfo& info, StreamProperties& properties)
{
    return Guarded([&]() -> bool {
        const std::unique_ptr<SoundSource> source = info.Size == sizeof info ? SoundSource::Open(path) : nullptr;
        if (!source)
            return false;
        info.Channels = source->Channels();
        info.Rate = source->Rate();
        info.BitsPerSample = source->Shape().Bits;
        info.Frames = source->Frames();
        const std::string name = FormatName(source->File().Info().format);
        info.FormatName[name.copy(info.FormatName, sizeof info.FormatName - 1)] = '\0';
        properties = Pack(ReadFacts(*source));
        return true;
    });
}

DecoderHandle EkOpenFile(const std::filesystem::path& path, WAVEFORMATEXTENSIBLE& format, uint64_t& frames, bool native)
{
    return Guarded([&]() -> DecoderHandle {
        if (!native && !IsDeliverable(format))
            return 0;
        std::unique_ptr<SoundSource> source = SoundSource::Open(path);
        if (!source)
            return 0;
        if (native)
            format = FormatOf(*source);
        const uint64_t length = ConvertedFrames(source->Frames(), source->Rate(), format.nSamplesPerSec);
        const DecoderHandle decoder =
            Decoders().Add(native ? OpenNative(std::move(source)) : OpenAs(std::move(source), format));
        if (decoder != 0)
            frames = length;
        return decoder;
    });
}

uint64_t EkGetFileData(DecoderHandle decoder, uint64_t firstFrame, uint64_t frames, void* buffer, uint64_t bufferBytes)
{
    Decoder* found = Decoders().Find(decoder);
    if (!found)
        return 0;
    try {
        return found->Read(firstFrame, std::min(frames, bufferBytes / found->BlockAlign()), buffer);
    } catch (...) {
        found->Fail();
        return 0;
    }
}

bool EkDecoderFailed(DecoderHandle decoder)
{
    const Decoder* found = Decoders().Find(decoder);
    return !found || found->Failed();
}

void EkCloseFile(DecoderHandle decoder)
{
    Decoders().Take(decoder);
}

CoderHandle EkCoderCreateFile(const std::filesystem::path& target, const WAVEFORMATEXTENSIBLE& format,
                              const StreamProperties* properties, uint8_t* openAfter, const uint64_t& frames)
{
    return Guarded([&]() -> CoderHandle {
        std::optional<CoderPlan> plan = MakeCoderPlan(target, format, properties, frames);
        if (!plan)
            return 0;
        if (openAfter)
            *openAfter = plan->OpenAfter ? 1 : 0;
        return Coders().Add(Coder::Create(target, format, std::move(*plan)));
    });
}

void EkCoderSetTags(CoderHandle coder, const StreamProperties& source)
{
    return Guarded([&]() -> void {
        if (Coder* found = Coders().Find(coder))
            found->SetTags(EkGetTags(source));
    });
}

bool EkCoderAddFileData(CoderHandle coder, uint64_t frames, const void* data, uint64_t bytes)
{
    return Guarded([&]() -> bool {
        Coder* found = Coders().Find(coder);
        if (!found || bytes != frames * found->BlockAlign())
            return false;
        return found->Add(static_cast<const int16_t*>(data), frames);
    });
}

bool EkCoderCloseFile(CoderHandle coder)
{
    return Guarded([&]() -> bool {
        const std::unique_ptr<Coder> taken = Coders().Take(coder);
        return taken && taken->Finish();
    });
}

const char* ChannelLayoutName(uint32_t channels)
{
    return channels >= 1 && channels <= std::size(LayoutNames) ? LayoutNames[channels - 1] : "";
}

uint32_t ChannelLayoutCount(std::string_view name)
{
    const auto found = std::ranges::find(LayoutNames, name);
    return found == std::end(LayoutNames) ? 0 : static_cast<uint32_t>(found - std::begin(LayoutNames) + 1);
}

} // namespace ek
