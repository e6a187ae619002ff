// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <cstdarg>
#include <string>
#include <string_view>

namespace ek {

/// UTF-8 to UTF-16 and back. Malformed input becomes U+FFFD, one for each malformed sequence; never fails.
std::u16string ToUtf16(std::string_view utf8);
std::string ToUtf8(std::u16string_view utf16);

/// The longest prefix of `utf8` of at most `maxUnits` UTF-16 units that does not split a character.
std::string_view CutToUtf16Units(std::string_view utf8, size_t maxUnits);

/// printf into a string. "%I64d", "%I64u" and "%I64x" take 64-bit arguments.
std::string Format(const char* format, ...);
std::string FormatV(const char* format, va_list arguments);

/// ASCII and Latin letters compare without regard to case; other characters by code point.
bool EqualsIgnoreCase(std::string_view a, std::string_view b);

} // namespace ek
