// SPDX-License-Identifier: GPL-3.0-or-later
#include "platform/Text.h"
#include "platform/Events.h"

#include <cinttypes>
#include <gtest/gtest.h>

namespace ek::test {
namespace {

using namespace std::string_literals;

TEST(TextTest, EveryCharacterSurvivesTheWayThroughUtf16)
{
    std::u16string all;
    for (char32_t c = 0; c < 0x110000; c += c < 0x3000 ? 1 : 37) {
        if (c >= 0xD800 && c < 0xE000)
            continue;
        if (c >= 0x10000)
            all += {static_cast<char16_t>(0xD7C0 + (c >> 10)), static_cast<char16_t>(0xDC00 + (c & 0x3FF))};
        else
            all += static_cast<char16_t>(c);
    }
    EXPECT_EQ(ToUtf16(ToUtf8(all)), all);
    EXPECT_EQ(ToUtf8(u"a\u00E9\u20AC\U0001F3B5"), "a\xC3\xA9\xE2\x82\xAC\xF0\x9F\x8E\xB5");
}

TEST(TextTest, EachMalformedSequenceBecomesOneReplacement)
{
    EXPECT_EQ(ToUtf16("a\xFFz"), u"a\uFFFDz");
    EXPECT_EQ(ToUtf16("a\xE2\x82"), u"a\uFFFD") << "cut off at the end";
    EXPECT_EQ(ToUtf16("\xC0\xAFz"), u"\uFFFDz") << "overlong";
    EXPECT_EQ(ToUtf16("\xED\xA0\x80z"), u"\uFFFDz") << "a surrogate";
    EXPECT_EQ(ToUtf8(u"a\xD83Cz"), "a\xEF\xBF\xBDz");
    EXPECT_EQ(ToUtf8(u"\xDFB5\xD83C"), "\xEF\xBF\xBD\xEF\xBF\xBD") << "surrogates the wrong way round";
    EXPECT_FALSE(IsUtf8("\xED\xA0\x80"));
    EXPECT_TRUE(IsUtf8("\xF0\x9F\x8E\xB5\0a"s));
}

TEST(TextTest, CuttingCountsUtf16UnitsAndKeepsCharactersWhole)
{
    const std::string note = "\xF0\x9F\x8E\xB5"; // two units
    EXPECT_EQ(CutToUtf16Units("abc", 2), "ab");
    EXPECT_EQ(CutToUtf16Units("abc", 3), "abc");
    EXPECT_EQ(CutToUtf16Units("a" + note + "b", 2), "a");
    EXPECT_EQ(CutToUtf16Units("a" + note + "b", 3), "a" + note);
    EXPECT_EQ(CutToUtf16Units("\xC3\xA9\xC3\xA9", 1), "\xC3\xA9");
    EXPECT_EQ(CutToUtf16Units("", 5), "");
}

TEST(TextTest, SixtyFourBitLengthsAreUnderstoodWithAllModifiers)
{
    const int64_t big = 0x123456789ABCDEF0;
    EXPECT_EQ(Format("%I64x %I64X", big, big), "123456789abcdef0 123456789ABCDEF0");
    EXPECT_EQ(Format("%02I64d:%02I64d,%03I64d", int64_t{1}, int64_t{2}, int64_t{3}), "01:02,003");
    EXPECT_EQ(Format("%-6I64u|%+I64d|%*I64d", uint64_t{7}, int64_t{8}, 4, int64_t{9}), "7     |+8|   9");
    EXPECT_EQ(Format("%d%%I64d %s%c", 5, "I64d", '!'), "5%I64d I64d!");
    EXPECT_EQ(Format("%s", std::string(5000, 'x').c_str()), std::string(5000, 'x'));
    EXPECT_EQ(Format(""), "");
}

TEST(TextTest, LettersCompareWithoutCaseAndNothingElseDoes)
{
    EXPECT_TRUE(EqualsIgnoreCase("Effects.MTS", "eFFECTS.mts"));
    EXPECT_TRUE(EqualsIgnoreCase("ÀÖØÞŸĀŽ", "àöøþÿāž"));
    EXPECT_TRUE(EqualsIgnoreCase("ΑΒΩ ЖЮЁ", "αβω жюё"));
    EXPECT_FALSE(EqualsIgnoreCase("@[`{", "`{@["));
    EXPECT_FALSE(EqualsIgnoreCase("×", "÷"));
    EXPECT_FALSE(EqualsIgnoreCase("a", "à"));
    EXPECT_FALSE(EqualsIgnoreCase("a", "ab"));
    EXPECT_FALSE(EqualsIgnoreCase("\xFE", "\xFF")) << "malformed bytes stay apart";
    EXPECT_LT(CompareIgnoreCase("alpha", "BETA"), 0);
    EXPECT_GT(CompareIgnoreCase("b", "ALPHA"), 0);
    EXPECT_LT(CompareIgnoreCase("a", "AB"), 0);
}

TEST(EventTest, ASetEventReleasesEveryWaitUntilItIsReset)
{
    ManualResetEvent event;
    EXPECT_FALSE(event.IsSet());
    event.Set();
    event.Wait();
    event.Wait();
    EXPECT_TRUE(event.IsSet());
    event.Reset();
    EXPECT_FALSE(event.IsSet());
}

} // namespace
} // namespace ek::test
