// SPDX-License-Identifier: GPL-3.0-or-later
#include "ekdatapr/SourceFacts.h"

#include "ekdatapr/CoderTypes.h"

#include <algorithm>
#include <array>
#include <charconv>
#include <cmath>
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

/// kbit/s over the whole file; 0 for a file without sound.
double MeanBitRate(const SoundSource& source)
{
    if (source.Frames() == 0)
        return 0;
    const double seconds = static_cast<double>(source.Frames()) / source.Rate();
    return static_cast<double>(source.File().Stream().Length()) * 8 / 1000 / seconds;
}

/// The lowest quality, in tenths, at which Vorbis aims at such a rate.
double VorbisQualityOf(double bitRate, uint32_t channels)
{
    constexpr std::array<double, 10> perChannel = {32, 40, 48, 56, 64, 80, 96, 112, 128, 160};
    const auto found = std::ranges::lower_bound(perChannel, bitRate / channels);
    return static_cast<double>(found - perChannel.begin()) / 10;
}

uint32_t UsualBitRate(int sfFormat, double bitRate)
{
    if ((sfFormat & SF_FORMAT_SUBMASK) == SF_FORMAT_OPUS)
        return static_cast<uint32_t>(std::clamp(std::ceil(bitRate / 8) * 8, 1.0 * MinBitRate, 1.0 * MaxBitRate));
    const auto rates = FindCoderType("mp3")->BitRates;
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
    facts.Tags = ReadTags(source.File().Handle());
    const char* software = sf_get_string(source.File().Handle(), SF_STR_SOFTWARE);
    const std::string_view encoder = software ? software : "";
    const double meanRate = MeanBitRate(source);
    const RateSetting setting = meanRate > 0 ? RateSettingOf(facts.SfFormat) : RateSetting::None;
    if (setting == RateSetting::Quality) {
        const std::optional<uint32_t> percent = NumberAfter(encoder, QualityName);
        facts.Quality = percent ? std::min(*percent / 100.0, 1.0) : VorbisQualityOf(meanRate, source.Channels());
    }
    if (setting == RateSetting::BitRate)
        facts.BitRate = NumberAfter(encoder, BitRateName).value_or(UsualBitRate(facts.SfFormat, meanRate));
    return facts;
}

} // namespace ek
