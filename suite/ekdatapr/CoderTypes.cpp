// SPDX-License-Identifier: GPL-3.0-or-later
#include "ekdatapr/CoderTypes.h"

#include "platform/Text.h"

#include <algorithm>
#include <sndfile.h>

namespace ek {

namespace {

constexpr SampleCoding Codings[] = {
    {"pcm_16", "16-bit", SF_FORMAT_PCM_16, SampleKind::Bits16, 2},
    {"pcm_24", "24-bit", SF_FORMAT_PCM_24, SampleKind::Bits24, 3},
    {"pcm_32", "32-bit", SF_FORMAT_PCM_32, SampleKind::Bits32, 4},
    {"float", "32-bit floating point", SF_FORMAT_FLOAT, SampleKind::Real, 4},
    {"double", "64-bit floating point", SF_FORMAT_DOUBLE, SampleKind::Real, 8},
    {"pcm_u8", "8-bit unsigned", SF_FORMAT_PCM_U8, SampleKind::Bits8, 1},
    {"pcm_s8", "8-bit signed", SF_FORMAT_PCM_S8, SampleKind::Bits8, 1},
    {"ulaw", "\u00B5-law", SF_FORMAT_ULAW, SampleKind::Bits16, 1},
    {"alaw", "A-law", SF_FORMAT_ALAW, SampleKind::Bits16, 1},
    {"ima_adpcm", "IMA ADPCM", SF_FORMAT_IMA_ADPCM, SampleKind::Bits16, 1},
    {"ms_adpcm", "Microsoft ADPCM", SF_FORMAT_MS_ADPCM, SampleKind::Bits16, 1},
    {"gsm610", "GSM 6.10", SF_FORMAT_GSM610, SampleKind::Bits16, 1},
    {"vorbis", "Vorbis", SF_FORMAT_VORBIS, SampleKind::Real, 0},
    {"opus", "Opus", SF_FORMAT_OPUS, SampleKind::Real, 0},
    {"mp3", "MPEG layer 3", SF_FORMAT_MPEG_LAYER_III, SampleKind::Real, 0},
};

constexpr std::string_view WavExtensions[] = {"wav"};
constexpr std::string_view Rf64Extensions[] = {"rf64"};
constexpr std::string_view W64Extensions[] = {"w64"};
constexpr std::string_view AiffExtensions[] = {"aiff", "aif", "aifc"};
constexpr std::string_view AuExtensions[] = {"au", "snd"};
constexpr std::string_view CafExtensions[] = {"caf"};
constexpr std::string_view FlacExtensions[] = {"flac"};
constexpr std::string_view OggExtensions[] = {"ogg", "oga"};
constexpr std::string_view OpusExtensions[] = {"opus"};
constexpr std::string_view Mp3Extensions[] = {"mp3"};

constexpr int WavContainers[] = {SF_FORMAT_WAV, SF_FORMAT_WAVEX, SF_FORMAT_RF64};
constexpr int Rf64Containers[] = {SF_FORMAT_RF64};
constexpr int W64Containers[] = {SF_FORMAT_W64};
constexpr int AiffContainers[] = {SF_FORMAT_AIFF};
constexpr int AuContainers[] = {SF_FORMAT_AU};
constexpr int CafContainers[] = {SF_FORMAT_CAF};
constexpr int FlacContainers[] = {SF_FORMAT_FLAC};
constexpr int OggContainers[] = {SF_FORMAT_OGG};
constexpr int Mp3Containers[] = {SF_FORMAT_MPEG};

constexpr int WavSubtypes[] = {SF_FORMAT_PCM_16,    SF_FORMAT_PCM_24,   SF_FORMAT_PCM_32, SF_FORMAT_FLOAT,
                               SF_FORMAT_DOUBLE,    SF_FORMAT_PCM_U8,   SF_FORMAT_ULAW,   SF_FORMAT_ALAW,
                               SF_FORMAT_IMA_ADPCM, SF_FORMAT_MS_ADPCM, SF_FORMAT_GSM610};
constexpr int Rf64Subtypes[] = {SF_FORMAT_PCM_16, SF_FORMAT_PCM_24, SF_FORMAT_PCM_32, SF_FORMAT_FLOAT,
                                SF_FORMAT_DOUBLE, SF_FORMAT_PCM_U8, SF_FORMAT_ULAW,   SF_FORMAT_ALAW};
constexpr int AppleSubtypes[] = {SF_FORMAT_PCM_16, SF_FORMAT_PCM_24, SF_FORMAT_PCM_32, SF_FORMAT_FLOAT,
                                 SF_FORMAT_DOUBLE, SF_FORMAT_PCM_S8, SF_FORMAT_ULAW,   SF_FORMAT_ALAW};
constexpr int FlacSubtypes[] = {SF_FORMAT_PCM_16, SF_FORMAT_PCM_24, SF_FORMAT_PCM_S8};
constexpr int OggSubtypes[] = {SF_FORMAT_VORBIS};
constexpr int OpusSubtypes[] = {SF_FORMAT_OPUS};
constexpr int Mp3Subtypes[] = {SF_FORMAT_MPEG_LAYER_III};

constexpr uint32_t Mp3BitRates[] = {32, 40, 48, 56, 64, 80, 96, 112, 128, 160, 192, 224, 256, 320};

constexpr CoderType Types[] = {
    {"WAV", WavExtensions, WavContainers, WavSubtypes},
    {"RF64", Rf64Extensions, Rf64Containers, Rf64Subtypes},
    {"Wave64", W64Extensions, W64Containers, WavSubtypes},
    {"AIFF", AiffExtensions, AiffContainers, AppleSubtypes},
    {"AU", AuExtensions, AuContainers, AppleSubtypes},
    {"CAF", CafExtensions, CafContainers, AppleSubtypes},
    {"FLAC", FlacExtensions, FlacContainers, FlacSubtypes},
    {"Ogg Vorbis", OggExtensions, OggContainers, OggSubtypes, RateSetting::Quality},
    {"Opus", OpusExtensions, OggContainers, OpusSubtypes, RateSetting::BitRate},
    {"MP3", Mp3Extensions, Mp3Containers, Mp3Subtypes, RateSetting::BitRate, Mp3BitRates, 2},
};

constexpr uint32_t OpusRates[] = {8000, 12000, 16000, 24000, 48000};
constexpr uint32_t Mp3Rates[] = {8000, 11025, 12000, 16000, 22050, 24000, 32000, 44100, 48000};

} // namespace

std::span<const CoderType> CoderTypes()
{
    return Types;
}

const CoderType* FindCoderType(std::string_view extension)
{
    for (const CoderType& type : Types) {
        if (std::ranges::any_of(type.Extensions, [&](auto own) { return EqualsIgnoreCase(own, extension); }))
            return &type;
    }
    return nullptr;
}

const SampleCoding* FindCoding(int sfFormat)
{
    const auto found = std::ranges::find(Codings, sfFormat & SF_FORMAT_SUBMASK, &SampleCoding::SfSubtype);
    return found == std::end(Codings) ? nullptr : found;
}

const SampleCoding* FindCoding(std::string_view name)
{
    const auto found = std::ranges::find(Codings, name, &SampleCoding::Name);
    return found == std::end(Codings) ? nullptr : found;
}

RateSetting RateSettingOf(int sfFormat)
{
    switch (sfFormat & SF_FORMAT_SUBMASK) {
    case SF_FORMAT_VORBIS:
        return RateSetting::Quality;
    case SF_FORMAT_OPUS:
    case SF_FORMAT_MPEG_LAYER_III:
        return RateSetting::BitRate;
    default:
        return RateSetting::None;
    }
}

uint32_t WritableRate(int sfFormat, uint32_t rate)
{
    std::span<const uint32_t> rates;
    if ((sfFormat & SF_FORMAT_SUBMASK) == SF_FORMAT_OPUS)
        rates = OpusRates;
    if ((sfFormat & SF_FORMAT_SUBMASK) == SF_FORMAT_MPEG_LAYER_III)
        rates = Mp3Rates;
    if (rates.empty())
        return rate;
    const auto found = std::ranges::lower_bound(rates, rate);
    return found == rates.end() ? rates.back() : *found;
}

} // namespace ek
