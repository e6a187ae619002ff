// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "ek/HostSkin.h"
#include "xml/enXml.h"

#include <filesystem>
#include <map>
#include <memory>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

namespace ek {

/// A skin: colours, and a description of the elements of modules.
///
///     <skin>
///       <colors><color name="COLOR_WINDOW" value="#RRGGBB"/> ...</colors>
///       <module name="Ek Wave Editor"><Main color="#RRGGBB"/></module>
///     </skin>
class Skin {
public:
    Skin() = default; ///< the built-in light colours and no elements

    /// Never fails: a file that cannot be read gives the built-in skin, a colour that is missing, unknown or not
    /// understood the built-in colour. Each such case is a line of `complaints`.
    static Skin Load(const std::filesystem::path& file, std::vector<std::string>& complaints);

    SkinColor Color(uint32_t colorId) const;
    /// Null when the skin says nothing about the element. Valid as long as the skin.
    const enXml* Element(std::string_view moduleName, std::string_view elementName) const;

private:
    void ReadColors(const std::filesystem::path& file, std::vector<std::string>& complaints);
    std::string ReadColor(const enXml& element);
    void ReportMissing(const std::filesystem::path& file, std::vector<std::string>& complaints) const;

    std::map<uint32_t, SkinColor> m_colors;
    std::unique_ptr<enXml> m_root;
};

/// "#RRGGBB", in either case.
std::optional<SkinColor> ParseColor(std::string_view text);

/// The names of the skins in the folders, in alphabetical order, each with its file. A skin is a folder of its name
/// with a file skin.xml; the first folder that has a name wins.
std::map<std::string, std::filesystem::path> FindSkins(const std::vector<std::filesystem::path>& folders);

/// Where skins are: the user's own, those beside the program, those of the installation.
std::vector<std::filesystem::path> SkinFolders();

} // namespace ek
