// SPDX-License-Identifier: GPL-3.0-or-later
#include "platform/Text.h"
#include "platform/WholeFile.h"
#include "xml/enXml.h"

namespace ek {

namespace {

constexpr std::string_view Prolog = "<?xml version=\"1.0\" encoding=\"UTF-16\" standalone=\"yes\"?>\r\n";
constexpr std::string_view LineEnd = "\r\n";

/// The first node with a name from `node` on along its siblings: a nameless one would be a tag without a name.
const enXml* NamedFrom(const enXml* node)
{
    while (node && node->Name().empty())
        node = node->NextSibling();
    return node;
}

void AppendEscaped(std::string& text, std::string_view value)
{
    for (const char c : value) {
        switch (c) {
        case '&':
            text += "&amp;";
            break;
        case '<':
            text += "&lt;";
            break;
        case '>':
            text += "&gt;";
            break;
        case '"':
            text += "&quot;";
            break;
        case '\'':
            text += "&apos;";
            break;
        default:
            text += c;
        }
    }
}

void AppendStart(std::string& text, const enXml& node, int depth)
{
    text.append(static_cast<size_t>(depth), '\t').append("<").append(node.Name());
    for (const auto& [name, value] : node.Attributes()) {
        text += ' ';
        AppendEscaped(text, name);
        text += "=\"";
        AppendEscaped(text, value);
        text += '"';
    }
    text.append(NamedFrom(node.FirstChild()) ? ">" : "/>").append(LineEnd);
}

void AppendEnd(std::string& text, const enXml& node, int depth)
{
    text.append(static_cast<size_t>(depth), '\t').append("</").append(node.Name()).append(">").append(LineEnd);
}

/// Appends the element and all below it. A loop, because a tree may be deeper than the stack.
bool AppendTree(std::string& text, const enXml& root)
{
    const enXml* node = &root;
    int depth = 0;
    while (node) {
        if (depth > enXml::MaxDepth)
            return false;
        AppendStart(text, *node, depth);
        if (const enXml* const child = NamedFrom(node->FirstChild())) {
            node = child;
            ++depth;
            continue;
        }
        while (node != &root && !NamedFrom(node->NextSibling())) {
            node = static_cast<const enXml*>(node->Parent());
            AppendEnd(text, *node, --depth);
        }
        node = node == &root ? nullptr : NamedFrom(node->NextSibling());
    }
    return true;
}

std::string Utf16Bytes(std::string_view text)
{
    std::string bytes = "\xFF\xFE";
    for (const char16_t unit : ToUtf16(text)) {
        bytes += static_cast<char>(unit & 0xFF);
        bytes += static_cast<char>(unit >> 8);
    }
    return bytes;
}

} // namespace

bool enXml::SaveToFile(const std::filesystem::path& path) const
{
    std::string text(Prolog);
    return !m_name.empty() && AppendTree(text, *this) && SaveWholeFile(path, Utf16Bytes(text)).Ok();
}

} // namespace ek
