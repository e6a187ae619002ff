// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "xml/coTree.h"

#include <cstdint>
#include <filesystem>
#include <string>
#include <string_view>
#include <utility>
#include <vector>

namespace ek {

/// An XML element: its name, its attributes in document order and its child elements. Texts, comments and
/// processing instructions are not kept: each reads back as a nameless child. Strings are UTF-8.
class enXml : public coTree {
public:
    using Attribute = std::pair<std::string, std::string>;

    static constexpr int MaxDepth = 1000; ///< levels below the root that are read and written

    enXml() = default;
    explicit enXml(std::string_view name) : m_name(name) {}

    const std::string& Name() const { return m_name; }
    const std::vector<Attribute>& Attributes() const { return m_attributes; }
    uint32_t UserValue = 0;

    enXml* FirstChild() const { return static_cast<enXml*>(coTree::FirstChild()); }
    enXml* NextSibling() const { return static_cast<enXml*>(coTree::NextSibling()); }

    /// The first match without regard to case, or null.
    enXml* FindChild(std::string_view name) const;
    const Attribute* FindAttribute(std::string_view name) const;
    bool GetAttribute(std::string_view name, std::string& value) const; ///< false: `value` untouched
    /// The number that the value's leading digits spell (blanks and a sign may stand before them), 0 without
    /// digits; false, `value` untouched, when there is no such attribute.
    bool GetAttributeInt(std::string_view name, int& value) const;
    void AddAttribute(std::string_view name, std::string_view value);

    /// Reads the document element into this node: its name replaces the name, its attributes and children come behind
    /// those that are here. False when the file is missing, no regular file, not well-formed or nested too deep; the
    /// node then keeps what it held.
    bool LoadFromFile(const std::filesystem::path& path);
    /// UTF-16 little-endian with byte-order mark, one tab a level, CR LF line ends; nameless nodes are left out.
    /// Written beside the target, synced and renamed over it; false when any of that fails or the tree is nested too
    /// deep (or this node has no name), and the old file stays.
    bool SaveToFile(const std::filesystem::path& path) const;

private:
    std::string m_name;
    std::vector<Attribute> m_attributes;
};

} // namespace ek
