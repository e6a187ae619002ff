// SPDX-License-Identifier: GPL-3.0-or-later
#include "ekdatapr/SourceFacts.h"

#include "ekdatapr/CoderTypes.h"
#include "ekdatapr/Container.h"

#include <algorithm>
#include <array>
#include <charconv>
#include <cmath>
#include <cstring>
#include <optional>
#include <string_view>

namespace ek {

namespace {

constexpr std::string_view QualityName = "Ek Wave Editor (quality ";
constexpr std::string_view BitRateName = "Ek Wave Editor (bit rate ";

std::optional<uint32_t> NumberAfter(std::string_view text, std::string_view before)
{
    const size_t place = text.find(before);
    if (place == std::string_view::npos)
        return {};
    const char* first = text.data() + place + before.size();
    uint32_t number = 0;
    if (std::from_chars(first, text.data() + text.size(), number).ec != std::errc())
        return {};
    return number;
}

/// kbit/s over the whole file less its tags, which may hold pictures; 0 when its length is not known.
double MeanBitRate(const SoundSource& source)
{
    if (source.Frames() == 0)
        return 0;
    const double seconds = static_cast<double>(source.Frames()) / source.Rate();
    const FileStream& file = source.File().Stream();
    return static_cast<double>(file.Length() - TagBytes(file)) * 8 / 1000 / seconds;
}

/// The bit rate that the encoder of a Vorbis file aimed at, which is in the first packet of the stream. What it came to
/// depends on the sound, and would change the quality with every save.
double VorbisNominalBitRate(const SoundSource& source)
{
    constexpr uint64_t packetStart = 28; // behind the header of an Ogg page with one segment
    constexpr std::string_view packetMark("\x01vorbis", 7);
    std::array<char, 24> packet{};
    if (!source.File().Stream().Peek(packet.data(), packet.size(), packetStart) ||
        !std::string_view(packet.data(), packet.size()).starts_with(packetMark))
        return 0;
    int32_t rate = 0;
    std::memcpy(&rate, packet.data() + 20, sizeof rate);
    return rate > 0 ? rate / 1000.0 : 0;
}

/// The lowest quality, in tenths, at which Vorbis aims at such a rate.
double VorbisQuality(const SoundSource& source)
{
    constexpr std::array<double, 10> perChannel = {32, 40, 48, 56, 64, 80, 96, 112, 128, 160};
    const double nominal = VorbisNominalBitRate(source);
    const double rate = nominal > 0 ? nominal : MeanBitRate(source);
    const auto found = std::ranges::lower_bound(perChannel, rate / source.Channels());
    return static_cast<double>(found - perChannel.begin()) / 10;
}

uint32_t UsualBitRate(int sfFormat, double bitRate)
{
    if ((sfFormat & SF_FORMAT_SUBMASK) == SF_FORMAT_OPUS)
        return static_cast<uint32_t>(std::clamp(std::ceil(bitRate / 8) * 8, 1.0 * MinBitRate, 1.0 * MaxBitRate));
    const std::span<const uint32_t> rates = FindCoderType("mp3")->BitRates;
    return *std::ranges::min_element(rates, {}, [&](uint32_t rate) { return std::fabs(rate - bitRate); });
}

} // namespace

std::string MakeEncoderName(int sfFormat, double quality, uint32_t bitRate)
{
    switch (RateSettingOf(sfFormat)) {
    case RateSetting::Quality:
        return std::string(QualityName) + std::to_string(std::lround(quality * 100)) + "%)";
    case RateSetting::BitRate:
        return std::string(BitRateName) + std::to_string(bitRate) + ")";
    default:
        return {};
    }
}

StreamFacts ReadFacts(const SoundSource& source)
{
    StreamFacts facts;
    facts.SfFormat = source.File().Info().format;
    facts.Channels = source.Channels();
    facts.Tags = ReadTags(source.File().Handle());
    const char* software = sf_get_string(source.File().Handle(), SF_STR_SOFTWARE);
    const std::string_view encoder = software ? software : "";
    const RateSetting setting = RateSettingOf(facts.SfFormat);
    if (setting == RateSetting::Quality) {
        const std::optional<uint32_t> percent = NumberAfter(encoder, QualityName);
        facts.Quality = percent ? std::min(*percent / 100.0, 1.0) : VorbisQuality(source);
    }
    if (setting == RateSetting::BitRate)
        facts.BitRate = NumberAfter(encoder, BitRateName).value_or(UsualBitRate(facts.SfFormat, MeanBitRate(source)));
    return facts;
}

} // namespace ek
