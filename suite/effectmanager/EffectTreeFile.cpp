// SPDX-License-Identifier: GPL-3.0-or-later
#include "effectmanager/EffectTreeFile.h"
#include "effectmanager/EffectTree.h"
#include "effectmanager/SimpleEffect.h"

#include <charconv>
#include <string_view>

namespace ek {

namespace {
constexpr char FolderName[] = "Folder";
constexpr char ComplexName[] = "Complex";
constexpr char EffectName[] = "Effect";
constexpr char ParameterName[] = "Parameter";

std::string Text(const enXml& element, const char* name)
{
    std::string text;
    element.GetAttribute(name, text);
    return text;
}

int Number(const enXml& element, const char* name, int otherwise)
{
    element.GetAttributeInt(name, otherwise);
    return otherwise;
}

enXml& Add(enXml& parent, std::string_view name)
{
    auto* const child = new enXml(name);
    parent.AddChild(child);
    return *child;
}

void CopyContent(const enXml& from, enXml& to)
{
    for (const auto& [name, value] : from.Attributes())
        to.AddAttribute(name, value);
    for (const enXml* child = from.FirstChild(); child; child = child->NextSibling())
        CopyContent(*child, Add(to, child->Name()));
}

std::unique_ptr<enXml> CopyOf(const enXml& element)
{
    auto copy = std::make_unique<enXml>(element.Name());
    CopyContent(element, *copy);
    return copy;
}

/// The shortest text that reads back as the same value, whatever the locale.
std::string ToText(float value)
{
    char text[32];
    return {text, std::to_chars(text, text + sizeof text, value).ptr};
}

void ReadParameters(const enXml& element, std::span<const EffectParameter> parameters, EffectSettings& settings)
{
    for (const enXml* child = element.FirstChild(); child; child = child->NextSibling()) {
        const std::string name = Text(*child, "Name");
        const std::string value = Text(*child, "Value");
        for (size_t i = 0; i < parameters.size(); ++i) {
            if (child->Name() == ParameterName && parameters[i].Name == name)
                std::from_chars(value.data(), value.data() + value.size(), settings.Values[i]);
        }
    }
}

void WriteSettings(const CSimpleEffect& effect, enXml& element)
{
    const EffectSettings& settings = effect.GetSettings();
    element.AddAttribute("Preset", std::to_string(effect.GetPresetIndex()));
    if (!settings.State.empty())
        element.AddAttribute("State", settings.State);
    const std::span<const EffectParameter> parameters = effect.GetLibraryEffect()->Parameters();
    for (size_t i = 0; i < parameters.size(); ++i) {
        enXml& parameter = Add(element, ParameterName);
        parameter.AddAttribute("Name", parameters[i].Name);
        parameter.AddAttribute("Value", ToText(settings.Values[i]));
    }
}

const char* ElementName(NODE_TYPE type)
{
    return type == NodeFolder ? FolderName : type == NodeComplex ? ComplexName : EffectName;
}
} // namespace

std::vector<std::unique_ptr<CEffectNode>> EffectTreeFile::Read(const enXml& xml, bool isInChain) const
{
    std::vector<std::unique_ptr<CEffectNode>> nodes;
    for (const enXml* child = xml.FirstChild(); child; child = child->NextSibling()) {
        if (!child->Name().empty())
            nodes.push_back(ReadNode(*child, isInChain));
    }
    return nodes;
}

void EffectTreeFile::ReadChildren(const enXml& element, CEffectNode& parent) const
{
    for (const enXml* child = element.FirstChild(); child; child = child->NextSibling()) {
        if (!child->Name().empty())
            parent.AddChild(ReadNode(*child, parent.GetType() == NodeComplex).release());
    }
}

std::unique_ptr<CEffectNode> EffectTreeFile::ReadNode(const enXml& element, bool isInChain) const
{
    std::string caption = Text(element, "Caption");
    std::unique_ptr<CEffectNode> node;
    if (element.Name() == FolderName && !isInChain) {
        node = std::make_unique<CEffectNode>(std::move(caption), NodeFolder);
        node->m_link = Text(element, "Link");
    } else if (element.Name() == ComplexName) {
        auto chain = std::make_unique<CComplexEffect>(caption);
        node = std::make_unique<CEffectNode>(std::move(caption), NodeComplex, std::move(chain));
    } else if (std::unique_ptr<CEffectAbstract> effect = ReadEffect(element)) {
        const NODE_TYPE type = isInChain ? NodeSubEffect : NodeLibraryEffect;
        node = std::make_unique<CEffectNode>(std::move(caption), type, std::move(effect));
    } else {
        node = std::make_unique<CEffectNode>(caption.empty() ? element.Name() : caption, NodeUnavailable);
        node->m_kept = CopyOf(element);
        return node;
    }
    node->SetActive(Number(element, "Active", 1) != 0);
    node->m_isEditable = node->m_isEditable && Number(element, "Editable", 1) != 0;
    if (!node->GetSimpleEffect())
        ReadChildren(element, *node);
    return node;
}

std::unique_ptr<CEffectAbstract> EffectTreeFile::ReadEffect(const enXml& element) const
{
    LibraryEffectPtr libraryEffect = m_tree.FindEffectByDllName(Text(element, "Library"));
    if (element.Name() != EffectName || !libraryEffect)
        return nullptr;
    EffectSettings settings = libraryEffect->InitialSettings();
    settings.State = Text(element, "State");
    ReadParameters(element, libraryEffect->Parameters(), settings);
    auto effect = std::make_unique<CSimpleEffect>(std::move(libraryEffect));
    effect->SetSettings(settings);
    effect->SetPresetIndex(Number(element, "Preset", NoPreset));
    return effect;
}

void EffectTreeFile::MakeAvailable(CEffectNode& top) const
{
    for (CEffectNode* node = &top; node; node = node->NextInTree(&top)) {
        std::unique_ptr<CEffectAbstract> effect = node->m_kept ? ReadEffect(*node->m_kept) : nullptr;
        if (!effect)
            continue;
        const bool isInChain = node->Parent() && node->Parent()->GetType() == NodeComplex;
        node->m_type = isInChain ? NodeSubEffect : NodeLibraryEffect;
        node->m_isEditable = isInChain;
        node->m_effect = std::move(effect);
        node->SetActive(Number(*node->m_kept, "Active", 1) != 0);
        node->m_kept.reset();
    }
}

void EffectTreeFile::Write(const CEffectNode& parent, enXml& xml)
{
    for (const CEffectNode* node = parent.FirstChild(); node; node = node->NextSibling())
        WriteNode(*node, xml);
}

void EffectTreeFile::WriteNode(const CEffectNode& node, enXml& xml)
{
    if (node.m_kept) {
        xml.AddChild(CopyOf(*node.m_kept).release());
        return;
    }
    enXml& element = Add(xml, ElementName(node.GetType()));
    const CSimpleEffect* const effect = node.GetSimpleEffect();
    if (effect)
        element.AddAttribute("Library", effect->GetLibraryName());
    element.AddAttribute("Caption", node.GetCaption());
    if (!node.GetLink().empty())
        element.AddAttribute("Link", node.GetLink());
    if (node.GetType() != NodeLibraryEffect && !node.IsEditable())
        element.AddAttribute("Editable", "0");
    if (node.GetEffect())
        element.AddAttribute("Active", node.GetEffect()->IsActive() ? "1" : "0");
    if (effect)
        WriteSettings(*effect, element);
    Write(node, element);
}

/// Written and read again: a copy is what the library would be without the original.
std::unique_ptr<CEffectNode> EffectTreeFile::Copy(const CEffectNode& node, bool isForChain) const
{
    if (node.GetType() == NodeLibraryEffect && !isForChain)
        return nullptr;
    enXml written;
    WriteNode(node, written);
    std::unique_ptr<CEffectNode> copy = ReadNode(*written.FirstChild(), isForChain);
    std::vector<std::unique_ptr<CEffectNode>> offered;
    for (CEffectNode* each = copy.get(); each; each = each->NextInTree(copy.get())) {
        if (each->GetType() == NodeLibraryEffect)
            offered.emplace_back(each);
    }
    return copy;
}

} // namespace ek
