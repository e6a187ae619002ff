// SPDX-License-Identifier: GPL-3.0-or-later
#include "ekdatapr/CoderSettings.h"

#include "ekdatapr/CoderTypes.h"
#include "ekdatapr/EkDataPr.h"
#include "platform/ProductSettings.h"
#include "platform/Text.h"

#include <algorithm>
#include <charconv>
#include <cmath>
#include <map>
#include <mutex>
#include <optional>

namespace ek {

namespace {

constexpr const char* DefaultLayout = "Stereo";
constexpr const char* DefaultQuality = "0.6";
constexpr const char* DefaultMp3BitRate = "192";
constexpr const char* DefaultOpusBitRate = "128";

std::string SectionFor(std::string_view extension)
{
    return "Providers\\" + std::string(extension);
}

// Keys of the settings file compare without regard to case, so the options' own keys find what is written so.
const char* StoredKey(std::string_view key)
{
    constexpr std::pair<std::string_view, const char*> keys[] = {
        {"subtype", "Subtype"},   {"quality", "Quality"},     {"bitrate", "Bitrate"},
        {"channels", "Channels"}, {"openafter", "OpenAfter"},
    };
    return std::ranges::find(keys, key, &std::pair<std::string_view, const char*>::first)->second;
}

std::mutex g_unstoredMutex;
std::map<std::string, std::map<std::string, std::string>> g_unstored; ///< by extension and stored key

std::string ToLower(std::string_view extension)
{
    std::string lower(extension);
    std::ranges::transform(lower, lower.begin(), [](char c) { return c >= 'A' && c <= 'Z' ? char(c - 'A' + 'a') : c; });
    return lower;
}

/// What was chosen but could not be stored.
std::map<std::string, std::string> Unstored(std::string_view extension)
{
    const std::lock_guard lock(g_unstoredMutex);
    const auto found = g_unstored.find(ToLower(extension));
    return found == g_unstored.end() ? std::map<std::string, std::string>() : found->second;
}

CoderOption SubtypeOption(const CoderType& type)
{
    CoderOption option{.Key = "subtype", .Label = "Sample format"};
    for (const int subtype : type.Subtypes)
        option.Choices.push_back({FindCoding(subtype)->Name, FindCoding(subtype)->Label});
    option.Value = option.Choices.front().Value;
    return option;
}

CoderOption BitRateOption(const CoderType& type)
{
    CoderOption option{.Key = "bitrate", .Label = "Bit rate (kbit/s)"};
    for (const uint32_t rate : type.BitRates)
        option.Choices.push_back({std::to_string(rate), std::to_string(rate)});
    option.Minimum = MinBitRate;
    option.Maximum = MaxBitRate;
    option.Value = type.BitRates.empty() ? DefaultOpusBitRate : DefaultMp3BitRate;
    return option;
}

CoderOption ChannelsOption(const CoderType& type)
{
    CoderOption option{.Key = "channels", .Label = "Channels"};
    for (uint32_t channels = 1; channels <= type.MaxChannels; ++channels)
        option.Choices.push_back({ChannelLayoutName(channels), ChannelLayoutName(channels)});
    option.Value = DefaultLayout;
    return option;
}

std::vector<CoderOption> DefaultOptions(const CoderType& type)
{
    std::vector<CoderOption> options = {SubtypeOption(type)};
    if (type.Rate == RateSetting::Quality)
        options.push_back({.Key = "quality", .Label = "Quality", .Maximum = 1, .Value = DefaultQuality});
    if (type.Rate == RateSetting::BitRate)
        options.push_back(BitRateOption(type));
    options.push_back(ChannelsOption(type));
    options.push_back({.Key = "openafter",
                       .Label = "Open the file after saving",
                       .Choices = {{"0", "No"}, {"1", "Yes"}},
                       .Value = "0"});
    return options;
}

std::optional<double> ParseNumber(std::string_view text)
{
    double number = 0;
    const auto [end, error] = std::from_chars(text.data(), text.data() + text.size(), number);
    if (error != std::errc() || end != text.data() + text.size() || !std::isfinite(number))
        return {};
    return number;
}

bool Accepts(const CoderOption& option, std::string_view value)
{
    if (!option.Choices.empty())
        return std::ranges::find(option.Choices, value, &CoderOption::Choice::Value) != option.Choices.end();
    const std::optional<double> number = ParseNumber(value);
    return number && *number >= option.Minimum && *number <= option.Maximum;
}

std::vector<CoderOption> OptionsInForce(const CoderType& type, std::string_view extension)
{
    std::vector<CoderOption> options = DefaultOptions(type);
    const std::map<std::string, std::string> unstored = Unstored(extension);
    for (CoderOption& option : options) {
        const auto chosen = unstored.find(StoredKey(option.Key));
        const std::string value = chosen != unstored.end()
                                      ? chosen->second
                                      : GetProductSetting(SectionFor(extension), StoredKey(option.Key), option.Value);
        if (Accepts(option, value))
            option.Value = value;
    }
    return options;
}

/// Best effort: what the settings file does not take holds for this process.
void Store(std::string_view extension, const std::map<std::string, std::string>& values)
{
    std::map<std::string, std::string> changed = Unstored(extension);
    for (const auto& [key, value] : values) {
        if (changed.contains(StoredKey(key)) || GetProductSetting(SectionFor(extension), StoredKey(key), "") != value)
            changed[StoredKey(key)] = value;
    }
    if (!changed.empty() && SetProductSettings(SectionFor(extension), changed).Ok())
        changed.clear();
    const std::lock_guard lock(g_unstoredMutex);
    g_unstored[ToLower(extension)] = std::move(changed);
}

bool Check(const std::vector<CoderOption>& options, const std::string& key, const std::string& value,
           std::string& error)
{
    const auto option = std::ranges::find(options, key, &CoderOption::Key);
    if (option == options.end())
        error = "There is no setting \"" + key + "\" for this type of file";
    else if (!Accepts(*option, value))
        error = "\"" + value + "\" is not possible for \"" + key + "\"";
    else
        return true;
    return false;
}

} // namespace

CoderSettings LoadCoderSettings(const CoderType& type, std::string_view extension)
{
    CoderSettings settings;
    for (const CoderOption& option : OptionsInForce(type, extension)) {
        if (option.Key == "subtype")
            settings.Subtype = FindCoding(option.Value)->SfSubtype;
        else if (option.Key == "quality")
            settings.Quality = ParseNumber(option.Value).value_or(0);
        else if (option.Key == "bitrate")
            settings.BitRate = static_cast<uint32_t>(std::lround(ParseNumber(option.Value).value_or(0)));
        else if (option.Key == "channels")
            settings.Channels = ChannelLayoutCount(option.Value);
        else
            settings.OpenAfter = option.Value == "1";
    }
    return settings;
}

std::vector<CoderOption> EkGetCoderOptions(std::string_view extension)
{
    const CoderType* type = FindCoderType(extension);
    return type ? OptionsInForce(*type, extension) : std::vector<CoderOption>();
}

bool EkSetCoderOptions(std::string_view extension, const std::map<std::string, std::string>& values, std::string& error)
{
    const CoderType* type = FindCoderType(extension);
    if (!type) {
        error = "Files of the type \"" + std::string(extension) + "\" cannot be written";
        return false;
    }
    const std::vector<CoderOption> options = DefaultOptions(*type);
    for (const auto& [key, value] : values) {
        if (!Check(options, key, value, error))
            return false;
    }
    Store(extension, values);
    return true;
}

std::string EkCoderChannelLayout(std::string_view extension)
{
    for (const CoderOption& option : EkGetCoderOptions(extension)) {
        if (option.Key == "channels")
            return option.Value;
    }
    return {};
}

} // namespace ek
