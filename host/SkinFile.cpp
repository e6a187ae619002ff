// SPDX-License-Identifier: GPL-3.0-or-later
#include "host/SkinFile.h"

#include "platform/File.h"
#include "platform/Paths.h"
#include "platform/Text.h"
#include "skinmanager/SkinColors.h"

#include <charconv>

namespace ek {

std::optional<SkinColor> ParseColor(std::string_view text)
{
    uint32_t rgb = 0;
    if (text.size() != 7 || text.front() != '#')
        return std::nullopt;
    const auto [end, error] = std::from_chars(text.data() + 1, text.data() + text.size(), rgb, 16);
    if (error != std::errc() || end != text.data() + text.size())
        return std::nullopt;
    return (rgb >> 16) | (rgb & 0xFF00) | ((rgb & 0xFF) << 16);
}

Skin Skin::Load(const std::filesystem::path& file, std::vector<std::string>& complaints)
{
    Skin skin;
    auto root = std::make_unique<enXml>();
    if (!root->LoadFromFile(file) || !EqualsIgnoreCase(root->Name(), "skin")) {
        complaints.push_back("Error: cannot read the skin " + file.native() + ", the built-in colours are used");
        return skin;
    }
    skin.m_root = std::move(root);
    skin.ReadColors(file, complaints);
    skin.ReportMissing(file, complaints);
    return skin;
}

void Skin::ReadColors(const std::filesystem::path& file, std::vector<std::string>& complaints)
{
    const enXml* colors = m_root->FindChild("colors");
    for (const enXml* child = colors ? colors->FirstChild() : nullptr; child; child = child->NextSibling()) {
        if (!EqualsIgnoreCase(child->Name(), "color"))
            continue;
        if (const std::string complaint = ReadColor(*child); !complaint.empty())
            complaints.push_back("Error: skin " + file.native() + ": " + complaint);
    }
}

std::string Skin::ReadColor(const enXml& element)
{
    std::string name;
    std::string value;
    element.GetAttribute("name", name);
    element.GetAttribute("value", value);
    const std::optional<uint32_t> id = SkinColorId(name);
    const std::optional<SkinColor> color = ParseColor(value);
    if (!id)
        return "there is no colour named \"" + name + "\"";
    if (!color)
        return "\"" + value + "\" is not a colour for " + name;
    m_colors[*id] = *color;
    return {};
}

void Skin::ReportMissing(const std::filesystem::path& file, std::vector<std::string>& complaints) const
{
    for (const SkinColorName& entry : SkinColorNames()) {
        if (!m_colors.contains(entry.Id))
            complaints.push_back("Error: skin " + file.native() + " gives no " + std::string(entry.Name));
    }
}

SkinColor Skin::Color(uint32_t colorId) const
{
    const auto found = m_colors.find(colorId);
    return found != m_colors.end() ? found->second : DefaultSkinColor(colorId);
}

const enXml* Skin::Element(std::string_view moduleName, std::string_view elementName) const
{
    for (const enXml* child = m_root ? m_root->FirstChild() : nullptr; child; child = child->NextSibling()) {
        std::string name;
        if (EqualsIgnoreCase(child->Name(), "module") && child->GetAttribute("name", name) && name == moduleName)
            return child->FindChild(elementName);
    }
    return nullptr;
}

std::map<std::string, std::filesystem::path> FindSkins(const std::vector<std::filesystem::path>& folders)
{
    std::map<std::string, std::filesystem::path> skins;
    for (const std::filesystem::path& folder : folders) {
        std::error_code error;
        for (std::filesystem::directory_iterator entry(folder, error), end; !error && entry != end;
             entry.increment(error)) {
            const std::filesystem::path file = entry->path() / "skin.xml";
            if (IsFile(file))
                skins.try_emplace(entry->path().filename().native(), file);
        }
    }
    return skins;
}

std::vector<std::filesystem::path> SkinFolders()
{
    const std::filesystem::path program = ExecutableFolder();
    return {DataHome() / "ek-wave-editor" / "skins", program / "skins",
            program.parent_path() / "share" / "ek-wave-editor" / "skins"};
}

} // namespace ek
