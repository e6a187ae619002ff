// SPDX-License-Identifier: GPL-3.0-or-later
#include "platform/Text.h"
#include "support/FaultyFileCalls.h"
#include "support/TestFolder.h"
#include "xml/enXml.h"

#include <gtest/gtest.h>

namespace ek::test {
namespace {

using namespace std::string_literals;

/// The tree on one line: a nameless node is "-", attributes and children follow in brackets.
std::string Shape(const enXml& node)
{
    std::string text = node.Name().empty() ? "-" : node.Name();
    for (const auto& [name, value] : node.Attributes())
        text += "[" + name + "=" + value + "]";
    if (node.FirstChild())
        text += "(";
    for (const enXml* child = node.FirstChild(); child; child = child->NextSibling())
        text += Shape(*child) + (child->NextSibling() ? " " : ")");
    return text;
}

enXml* Add(enXml& parent, const char* name)
{
    auto* const child = new enXml(name);
    parent.AddChild(child);
    return child;
}

std::string Utf16Le(std::u16string_view text)
{
    std::string bytes;
    for (const char16_t unit : text)
        bytes += {static_cast<char>(unit & 0xFF), static_cast<char>(unit >> 8)};
    return bytes;
}

class XmlTest : public testing::Test {
protected:
    /// The shape of what is read, or "false".
    std::string Read(std::string_view content)
    {
        WriteTextFile(m_file, content);
        enXml node;
        return node.LoadFromFile(m_file) ? Shape(node) : "false";
    }

    TestFolder m_folder;
    std::filesystem::path m_file = m_folder / "a.xml";
};

TEST_F(XmlTest, TheFileIsWrittenByteForByte)
{
    enXml root("Root");
    root.AddAttribute("a&", "a<b &\"'>");
    enXml* const child = Add(root, "Child");
    Add(*child, "Leaf")->AddAttribute("n", "\xC3\xA9\xF0\x9F\x8E\xB5");
    Add(*Add(root, ""), "below a nameless node");
    Add(*Add(root, "Last"), "");
    ASSERT_TRUE(root.SaveToFile(m_file));
    EXPECT_EQ(ReadTextFile(m_file), Utf16Le(u"\xFEFF<?xml version=\"1.0\" encoding=\"UTF-16\" standalone=\"yes\"?>\r\n"
                                            u"<Root a&amp;=\"a&lt;b &amp;&quot;&apos;&gt;\">\r\n"
                                            u"\t<Child>\r\n"
                                            u"\t\t<Leaf n=\"\u00E9\U0001F3B5\"/>\r\n"
                                            u"\t</Child>\r\n"
                                            u"\t<Last/>\r\n"
                                            u"</Root>\r\n"));
}

TEST_F(XmlTest, WhatIsNoElementReadsAsANamelessChildAndWhiteSpaceAsNothing)
{
    EXPECT_EQ(Read("<a>\n\t <b/> <!-- c -->\ntext<c/><?pi d?><![CDATA[e]]>\n</a>"), "a(b - - c - -)");
    EXPECT_EQ(
        Read("<?xml version=\"1.0\"?><!-- before --><a x=\"1\" y=' &amp;&lt;&gt;&quot;&apos;&#65; '/><!-- after -->"),
        "a[x=1][y= &<>\"'A ]");
}

TEST_F(XmlTest, Utf8AndUtf16WithMarkAreRead)
{
    const std::u16string text = u"\xFEFF<a n=\"\u00E9\u20AC\"/>";
    const std::string expected = "a[n=\xC3\xA9\xE2\x82\xAC]";
    std::string bigEndian = Utf16Le(text);
    for (size_t i = 0; i < bigEndian.size(); i += 2)
        std::swap(bigEndian[i], bigEndian[i + 1]);
    EXPECT_EQ(Read(Utf16Le(text)), expected);
    EXPECT_EQ(Read(bigEndian), expected);
    EXPECT_EQ(Read(ToUtf8(text)), expected);
    EXPECT_EQ(Read(ToUtf8(text.substr(1))), expected);
}

TEST_F(XmlTest, WhatIsNotWellFormedIsRefusedAndChangesNothing)
{
    for (const std::string& bad : {""s, "text"s, "<a>"s, "<a></b>"s, "<a/><b/>"s, "<a/>text"s, "text<a/>"s, "<a x=1/>"s,
                                   "<a><b x='1' y='' x='2'/></a>"s, "<a x/>"s, "<1/>"s, "<a x=\"\xFF\"/>"s,
                                   "<a><\xC3/></a>"s, "<!-- only -->"s, Utf16Le(u"\xFEFF<a>")}) {
        EXPECT_EQ(Read(bad), "false") << bad;
        enXml node("Kept");
        Add(node, "Child");
        node.UserValue = 7;
        EXPECT_FALSE(node.LoadFromFile(m_file));
        EXPECT_EQ(Shape(node), "Kept(Child)") << bad;
        EXPECT_EQ(node.UserValue, 7u);
    }
    enXml node;
    EXPECT_FALSE(node.LoadFromFile(m_folder.Path()));
    EXPECT_FALSE(node.LoadFromFile(m_folder / "none"));
    EXPECT_FALSE(node.LoadFromFile(""));
}

TEST_F(XmlTest, ReadingTakesTheNameAndAddsBehindWhatIsThere)
{
    WriteTextFile(m_file, "<New b=\"2\"><Second/></New>");
    enXml node("Old");
    node.AddAttribute("a", "1");
    Add(node, "First");
    node.UserValue = 7;
    ASSERT_TRUE(node.LoadFromFile(m_file));
    EXPECT_EQ(Shape(node), "New[a=1][b=2](First Second)");
    EXPECT_EQ(node.UserValue, 0u);
}

TEST_F(XmlTest, TooDeepIsRefusedAndNoDepthOverflowsTheStack)
{
    for (const int levels : {enXml::MaxDepth + 1, enXml::MaxDepth + 2, 1000000}) {
        std::string text;
        for (int i = 0; i < levels; ++i)
            text += "<a>";
        for (int i = 0; i < levels; ++i)
            text += "</a>";
        EXPECT_EQ(Read(text) == "false", levels > enXml::MaxDepth + 1) << levels;
    }
    enXml root("a");
    enXml* deepest = &root;
    for (int i = 0; i < 1000000; ++i)
        deepest = Add(*deepest, "a");
    EXPECT_FALSE(root.SaveToFile(m_folder / "deep.xml"));
    EXPECT_FALSE(std::filesystem::exists(m_folder / "deep.xml"));
}

TEST_F(XmlTest, AFailedSaveIsReportedAndKeepsTheOldFile)
{
    WriteTextFile(m_file, "old");
    FaultyFileCalls calls({}, FaultyFileCalls::Writes);
    calls.FailCall(1, ENOSPC);
    EXPECT_FALSE(enXml("New").SaveToFile(m_file));
    EXPECT_FALSE(enXml().SaveToFile(m_file)) << "without a name";
    EXPECT_EQ(ReadTextFile(m_file), "old");
}

TEST_F(XmlTest, NamesAreFoundWithoutRegardToCaseAndTheFirstMatchCounts)
{
    enXml root;
    enXml* const first = Add(root, "Source");
    Add(root, "SOURCE");
    EXPECT_EQ(root.FindChild("SOURCE"), first);
    EXPECT_EQ(root.FindChild("Sourc"), nullptr);
    root.AddAttribute("Name", "one");
    root.AddAttribute("NAME", "two");
    std::string value = "untouched";
    EXPECT_FALSE(root.GetAttribute("other", value));
    EXPECT_EQ(value, "untouched");
    EXPECT_TRUE(root.GetAttribute("naME", value));
    EXPECT_EQ(value, "one");
}

TEST_F(XmlTest, NumbersAreWhatTheLeadingDigitsSpell)
{
    const std::vector<std::pair<const char*, int>> cases = {{"12ab", 12},
                                                            {" \t-7", -7},
                                                            {"+3", 3},
                                                            {"abc", 0},
                                                            {"", 0},
                                                            {"- 5", 0},
                                                            {"99999999999", INT32_MAX},
                                                            {"-99999999999999999999", INT32_MIN}};
    for (const auto& [text, expected] : cases) {
        enXml node;
        node.AddAttribute("n", text);
        int value = 42;
        EXPECT_FALSE(node.GetAttributeInt("m", value));
        EXPECT_EQ(value, 42);
        EXPECT_TRUE(node.GetAttributeInt("N", value));
        EXPECT_EQ(value, expected) << text;
    }
}

TEST_F(XmlTest, ChildrenAreInsertedMovedAndRemovedInOrder)
{
    enXml root("r");
    enXml other("o");
    enXml* const a = Add(root, "a");
    enXml* const c = Add(root, "c");
    root.AddChild(new enXml("d"), c);
    root.AddChild(new enXml("b"), a);
    EXPECT_EQ(root.LastChild(), c->NextSibling());
    EXPECT_EQ(Shape(root), "r(a b c d)");
    root.AddChild(a, root.LastChild());
    EXPECT_EQ(Shape(root), "r(b c d a)");
    other.AddChild(c, a); // `a` is no child of the new parent, so the end it is
    EXPECT_EQ(Shape(root) + Shape(other), "r(b d a)o(c)");
    EXPECT_EQ(c->Parent(), &other);
    root.RemoveChild(c);
    EXPECT_EQ(Shape(other), "o(c)") << "not its child";
    root.RemoveChild(a);
    EXPECT_EQ(Shape(root), "r(b d)");
    EXPECT_EQ(a->Parent(), nullptr);
    Add(root, "e");
    EXPECT_EQ(Shape(root), "r(b d e)") << "the end moved with the removed child";
    delete a;
    delete root.FindChild("d");
    EXPECT_EQ(Shape(root), "r(b e)") << "a destroyed child unlinks itself";
}

} // namespace
} // namespace ek::test
