// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <cstdarg>
#include <string>
#include <string_view>

namespace ek {

/// UTF-8 to UTF-16 and back. Malformed input becomes U+FFFD, one for each malformed sequence; never fails.
std::u16string ToUtf16(std::string_view utf8);
std::string ToUtf8(std::u16string_view utf16);

bool IsUtf8(std::string_view bytes);

/// The longest prefix of `utf8` of at most `maxUnits` UTF-16 units that does not split a character.
std::string_view CutToUtf16Units(std::string_view utf8, size_t maxUnits);

/// printf into a string. "%I64d", "%I64u" and "%I64x" take 64-bit arguments.
std::string Format(const char* format, ...);
std::string FormatV(const char* format, va_list arguments);

/// Below, equal to or above 0, as `a` sorts before `b`. Letters compare without regard to case, whatever the locale of
/// the process; everything else by code point, malformed bytes above all characters.
int CompareIgnoreCase(std::string_view a, std::string_view b);
bool EqualsIgnoreCase(std::string_view a, std::string_view b);

} // namespace ek
