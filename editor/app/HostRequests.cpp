// SPDX-License-Identifier: GPL-3.0-or-later
#include "app/HostRequests.h"

#include "platform/Text.h"
#include "resources/Strings.h"

#include <algorithm>

namespace ek {

namespace {

constexpr uint32_t OldestHost = 0x0100;
constexpr std::string_view Blanks = " \t\r\n\v\f";

std::string_view TakeFirstWord(std::string_view& text)
{
    text.remove_prefix(std::min(text.find_first_not_of(Blanks), text.size()));
    const std::string_view word = text.substr(0, text.find_first_of(Blanks));
    text.remove_prefix(word.size());
    return word;
}

std::vector<std::filesystem::path> QuotedNames(std::string_view text)
{
    std::vector<std::filesystem::path> names;
    for (;;) {
        const size_t open = text.find('"');
        const size_t close = open == std::string_view::npos ? open : text.find('"', open + 1);
        if (close == std::string_view::npos)
            return names;
        if (close > open + 1)
            names.emplace_back(text.substr(open + 1, close - open - 1));
        text.remove_prefix(close + 1);
    }
}

} // namespace

std::optional<std::string> HostVersionRefusal(uint32_t version)
{
    if (version >> 16 >= OldestHost)
        return std::nullopt;
    std::string shown = Format("%i.%i", static_cast<int>(version >> 24), static_cast<int>(version >> 16 & 0xFF));
    if (const uint32_t build = version & 0xFFFF)
        shown += std::to_string(build);
    return Format(LoadString(IDS_HOST_TOO_OLD).c_str(), shown.c_str());
}

PassedRequest ParsePassedRequest(std::string_view text)
{
    PassedRequest request;
    request.IsOpen = EqualsIgnoreCase(TakeFirstWord(text), "Open");
    if (request.IsOpen)
        request.Files = QuotedNames(text);
    return request;
}

} // namespace ek
