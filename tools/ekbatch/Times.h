// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "servicefuncs/Channels.h"

#include <cstdint>
#include <optional>
#include <string>
#include <string_view>

namespace ek {

/// The frame that a time of a script means in a sound of that rate and length: seconds ("12.5"), a time text
/// ("0:01:02,500"), frames ("44100f") or "end". Seconds are rounded to the nearest frame, which may lie beyond the end.
/// None: the text is no time.
std::optional<uint64_t> ParseTime(std::string_view text, uint32_t rate, uint64_t length);

/// A channel by its name in scripts, as "front-left"; "all" for ChannelAll.
std::optional<ChannelCode> ParseChannel(std::string_view name);
/// The name for ParseChannel; empty for a channel that has none.
std::string ScriptNameOf(ChannelCode code);

} // namespace ek
