// SPDX-License-Identifier: GPL-3.0-or-later
#include "platform/Text.h"

#include <algorithm>
#include <clocale>
#include <cstdint>
#include <cstdio>
#include <cwctype>
#include <iterator>
#include <utf8.h>

namespace ek {

namespace {

constexpr char32_t Replacement = 0xFFFD;
constexpr char32_t FirstBeyondUnicode = 0x110000;

/// Takes the first character off `text`, which is not empty. A malformed byte comes off alone, as a value beyond
/// Unicode that keeps it apart from every other.
char32_t TakeCodePoint(std::string_view& text)
{
    auto place = text.begin();
    try {
        const char32_t codePoint = utf8::next(place, text.end());
        text.remove_prefix(static_cast<size_t>(place - text.begin()));
        return codePoint;
    } catch (const utf8::exception&) {
        const auto byte = static_cast<unsigned char>(text.front());
        text.remove_prefix(1);
        return FirstBeyondUnicode + byte;
    }
}

char32_t Lower(char32_t codePoint)
{
    if (codePoint < 0x80)
        return codePoint >= U'A' && codePoint <= U'Z' ? codePoint + 32 : codePoint;
    static const locale_t locale = newlocale(LC_CTYPE_MASK, "C.UTF-8", nullptr);
    if (!locale || codePoint >= FirstBeyondUnicode)
        return codePoint;
    return static_cast<char32_t>(towlower_l(static_cast<wint_t>(codePoint), locale));
}

bool IsHighSurrogate(char16_t unit)
{
    return unit >= 0xD800 && unit < 0xDC00;
}

bool IsLowSurrogate(char16_t unit)
{
    return unit >= 0xDC00 && unit < 0xE000;
}

char32_t TakeCodePoint(std::u16string_view& text)
{
    const char16_t unit = text.front();
    text.remove_prefix(1);
    if (IsHighSurrogate(unit) && !text.empty() && IsLowSurrogate(text.front())) {
        const char16_t low = text.front();
        text.remove_prefix(1);
        return 0x10000 + ((char32_t{unit} - 0xD800) << 10) + (char32_t{low} - 0xDC00);
    }
    return IsHighSurrogate(unit) || IsLowSurrogate(unit) ? Replacement : unit;
}

/// "%08I64x" becomes "%08llx". The system's printf reads the I as a flag and the 64 as a width.
std::string WithStandardLengths(std::string_view format)
{
    std::string result;
    result.reserve(format.size());
    while (!format.empty()) {
        const bool directive = format.front() == '%';
        result += format.front();
        format.remove_prefix(1);
        if (!directive)
            continue;
        const size_t modifiers = std::min(format.find_first_not_of("-+ #.*0123456789"), format.size());
        result += format.substr(0, modifiers);
        format.remove_prefix(modifiers);
        if (format.starts_with("I64")) {
            result += "ll";
            format.remove_prefix(3);
        }
        if (!format.empty()) { // the conversion itself, so that the second % of "%%" begins nothing
            result += format.front();
            format.remove_prefix(1);
        }
    }
    return result;
}

} // namespace

std::u16string ToUtf16(std::string_view utf8)
{
    std::string valid;
    valid.reserve(utf8.size());
    utf8::replace_invalid(utf8.begin(), utf8.end(), std::back_inserter(valid), Replacement);
    std::u16string result;
    result.reserve(valid.size());
    utf8::unchecked::utf8to16(valid.begin(), valid.end(), std::back_inserter(result));
    return result;
}

std::string ToUtf8(std::u16string_view utf16)
{
    std::string result;
    result.reserve(utf16.size());
    while (!utf16.empty())
        utf8::unchecked::append(TakeCodePoint(utf16), std::back_inserter(result));
    return result;
}

bool IsUtf8(std::string_view bytes)
{
    return utf8::is_valid(bytes.begin(), bytes.end());
}

std::string_view CutToUtf16Units(std::string_view utf8, size_t maxUnits)
{
    std::string_view rest = utf8;
    size_t units = 0;
    while (!rest.empty()) {
        std::string_view next = rest;
        const char32_t codePoint = TakeCodePoint(next);
        units += codePoint >= 0x10000 && codePoint < FirstBeyondUnicode ? 2 : 1;
        if (units > maxUnits)
            break;
        rest = next;
    }
    return utf8.substr(0, utf8.size() - rest.size());
}

std::string Format(const char* format, ...)
{
    va_list arguments;
    va_start(arguments, format);
    std::string result = FormatV(format, arguments);
    va_end(arguments);
    return result;
}

std::string FormatV(const char* format, va_list arguments)
{
    const std::string translated = WithStandardLengths(format);
    va_list again;
    va_copy(again, arguments);
    const int length = std::vsnprintf(nullptr, 0, translated.c_str(), arguments);
    std::string result(length > 0 ? static_cast<size_t>(length) : 0, '\0');
    std::vsnprintf(result.data(), result.size() + 1, translated.c_str(), again);
    va_end(again);
    return result;
}

int CompareIgnoreCase(std::string_view a, std::string_view b)
{
    while (!a.empty() && !b.empty()) {
        const char32_t left = Lower(TakeCodePoint(a));
        const char32_t right = Lower(TakeCodePoint(b));
        if (left != right)
            return left < right ? -1 : 1;
    }
    return static_cast<int>(!a.empty()) - static_cast<int>(!b.empty());
}

bool EqualsIgnoreCase(std::string_view a, std::string_view b)
{
    return CompareIgnoreCase(a, b) == 0;
}

} // namespace ek
