// SPDX-License-Identifier: GPL-3.0-or-later
#include "platform/Text.h"
#include "platform/WholeFile.h"
#include "xml/enXml.h"

#include <algorithm>
#include <memory>
#include <pugixml.hpp>

namespace ek {

namespace {

// Everything inside an element becomes a node, save white space alone. Text outside the root is seen only in a
// fragment.
constexpr unsigned ParseOptions = pugi::parse_default | pugi::parse_comments | pugi::parse_pi | pugi::parse_fragment;

/// The one element of the document; none when there are several, or text beside it.
pugi::xml_node DocumentElement(const pugi::xml_document& document)
{
    pugi::xml_node element;
    for (const pugi::xml_node node : document.children()) {
        const pugi::xml_node_type type = node.type();
        const bool isElement = type == pugi::node_element;
        if (type == pugi::node_pcdata || type == pugi::node_cdata || (isElement && element))
            return {};
        if (isElement)
            element = node;
    }
    return element;
}

bool HasDuplicates(const std::vector<enXml::Attribute>& attributes)
{
    std::vector<std::string_view> names;
    names.reserve(attributes.size());
    for (const auto& [name, value] : attributes)
        names.push_back(name);
    std::sort(names.begin(), names.end());
    return std::adjacent_find(names.begin(), names.end()) != names.end();
}

/// A new node for `source`, nameless when that is no element; null when its texts are not UTF-8 or two attributes have
/// one name.
std::unique_ptr<enXml> MakeNode(pugi::xml_node source)
{
    if (!IsUtf8(source.name()))
        return nullptr;
    auto node = std::make_unique<enXml>(source.type() == pugi::node_element ? source.name() : "");
    if (node->Name().empty())
        return node;
    for (const pugi::xml_attribute attribute : source.attributes()) {
        if (!IsUtf8(attribute.name()) || !IsUtf8(attribute.value()))
            return nullptr;
        node->AddAttribute(attribute.name(), attribute.value());
    }
    return HasDuplicates(node->Attributes()) ? nullptr : std::move(node);
}

/// Copies what is below the document element. A walk without recursion, because a file decides how deep it goes.
class TreeBuilder : public pugi::xml_tree_walker {
public:
    explicit TreeBuilder(enXml& root) : m_path{&root} {}

    bool for_each(pugi::xml_node& source) override
    {
        if (depth() >= enXml::MaxDepth)
            return false;
        std::unique_ptr<enXml> node = MakeNode(source);
        if (!node)
            return false;
        m_path.resize(static_cast<size_t>(depth()) + 1);
        m_path.push_back(node.get());
        m_path[m_path.size() - 2]->AddChild(node.release());
        return true;
    }

private:
    std::vector<enXml*> m_path; // from the root down to the node that was added last
};

/// The element with all below it; null when some of it cannot be taken.
std::unique_ptr<enXml> MakeTree(pugi::xml_node element)
{
    std::unique_ptr<enXml> root = MakeNode(element);
    if (!root)
        return nullptr;
    TreeBuilder builder(*root);
    return element.traverse(builder) ? std::move(root) : nullptr;
}

} // namespace

bool enXml::LoadFromFile(const std::filesystem::path& path)
{
    std::string content;
    if (!ReadWholeFile(path, content).Ok())
        return false;
    pugi::xml_document document;
    if (!document.load_buffer_inplace(content.data(), content.size(), ParseOptions))
        return false;
    const pugi::xml_node element = DocumentElement(document);
    const std::unique_ptr<enXml> tree = element ? MakeTree(element) : nullptr;
    if (!tree)
        return false;
    m_name = tree->m_name;
    UserValue = 0;
    m_attributes.insert(m_attributes.end(), tree->m_attributes.begin(), tree->m_attributes.end());
    while (enXml* const child = tree->FirstChild())
        AddChild(child);
    return true;
}

} // namespace ek
