// SPDX-License-Identifier: GPL-3.0-or-later
#include "Times.h"

#include <charconv>
#include <cmath>

namespace ek {

namespace {

struct NamedChannel {
    std::string_view Name;
    ChannelCode Code;
};

constexpr NamedChannel Names[] = {
    {"all", ChannelAll},
    {"left", ChannelLeft},
    {"right", ChannelRight},
    {"lfe", ChannelLowFrequency},
    {"front-left", ChannelFrontLeft},
    {"front-right", ChannelFrontRight},
    {"front-centre", ChannelFrontCentre},
    {"back-left", ChannelBackLeft},
    {"back-right", ChannelBackRight},
    {"back-centre", ChannelBackCentre},
    {"side-left", ChannelSideLeft},
    {"side-right", ChannelSideRight},
};

bool IsDigit(char c)
{
    return c >= '0' && c <= '9';
}

/// Reads a number off the front; it stands there without sign or blanks.
template <class Number>
std::optional<Number> TakeNumber(std::string_view& text)
{
    Number value{};
    if (text.empty() || !IsDigit(text.front()))
        return std::nullopt;
    const char* end = text.data() + text.size();
    const auto [stop, status] = std::from_chars(text.data(), end, value);
    if (status != std::errc())
        return std::nullopt;
    text.remove_prefix(static_cast<size_t>(stop - text.data()));
    return value;
}

bool TakeCharacter(std::string_view& text, char c)
{
    if (text.empty() || text.front() != c)
        return false;
    text.remove_prefix(1);
    return true;
}

/// ",mmm", or nothing.
std::optional<uint32_t> TakeMilliseconds(std::string_view& text)
{
    if (text.empty())
        return 0;
    if (text.size() != 4 || !TakeCharacter(text, ','))
        return std::nullopt;
    return TakeNumber<uint32_t>(text);
}

/// "h:mm:ss" or "h:mm:ss,mmm", in seconds.
std::optional<double> ParseTimeText(std::string_view text)
{
    const auto hours = TakeNumber<uint32_t>(text);
    const bool first = TakeCharacter(text, ':');
    const auto minutes = TakeNumber<uint32_t>(text);
    const bool second = TakeCharacter(text, ':');
    const auto seconds = TakeNumber<uint32_t>(text);
    if (!hours || !first || !minutes || !second || !seconds || *minutes > 59 || *seconds > 59)
        return std::nullopt;
    const auto milliseconds = TakeMilliseconds(text);
    if (!milliseconds || !text.empty())
        return std::nullopt;
    return *hours * 3600.0 + *minutes * 60.0 + *seconds + *milliseconds / 1000.0;
}

std::optional<double> ParseSeconds(std::string_view text)
{
    if (text.find_first_not_of("0123456789.") != std::string_view::npos)
        return std::nullopt;
    const auto seconds = TakeNumber<double>(text);
    return text.empty() ? seconds : std::nullopt;
}

} // namespace

std::optional<uint64_t> ParseTime(std::string_view text, uint32_t rate, uint64_t length)
{
    if (text == "end")
        return length;
    if (text.ends_with('f')) {
        const auto frames = TakeNumber<uint64_t>(text);
        return text == "f" ? frames : std::nullopt;
    }
    const auto seconds = text.find(':') != std::string_view::npos ? ParseTimeText(text) : ParseSeconds(text);
    // No sound lasts that long, and no product beyond it fits.
    constexpr double mostSeconds = 1e12;
    if (!seconds || *seconds > mostSeconds)
        return std::nullopt;
    return static_cast<uint64_t>(std::llround(*seconds * rate));
}

std::optional<ChannelCode> ParseChannel(std::string_view name)
{
    for (const NamedChannel& channel : Names) {
        if (channel.Name == name)
            return channel.Code;
    }
    return std::nullopt;
}

std::string ScriptNameOf(ChannelCode code)
{
    for (const NamedChannel& channel : Names) {
        if (channel.Code == code)
            return std::string(channel.Name);
    }
    return {};
}

} // namespace ek
