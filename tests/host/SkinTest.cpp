// SPDX-License-Identifier: GPL-3.0-or-later
#include "Scratch.h"

#include "host/SkinFile.h"
#include "skinmanager/SkinColors.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <algorithm>
#include <cmath>

namespace ek {
namespace {

using testing::ElementsAre;
using testing::HasSubstr;
using testing::IsEmpty;
using testing::Key;

constexpr uint32_t Window = 5;
constexpr uint32_t ButtonFace = 15;

Skin LoadText(const Scratch& folder, const std::string& text, std::vector<std::string>& complaints)
{
    return Skin::Load(folder.Write("skin.xml", text), complaints);
}

bool HasBuiltInColors(const Skin& skin)
{
    const auto& names = SkinColorNames();
    return std::all_of(names.begin(), names.end(),
                       [&](const SkinColorName& entry) { return skin.Color(entry.Id) == DefaultSkinColor(entry.Id); });
}

double Luminance(SkinColor color)
{
    const auto part = [color](int shift) {
        const double value = (color >> shift & 0xFF) / 255.0;
        return value <= 0.03928 ? value / 12.92 : std::pow((value + 0.055) / 1.055, 2.4);
    };
    return 0.2126 * part(0) + 0.7152 * part(8) + 0.0722 * part(16);
}

double Contrast(const Skin& skin, std::string_view one, std::string_view other)
{
    const double a = Luminance(skin.Color(SkinColorId(one).value()));
    const double b = Luminance(skin.Color(SkinColorId(other).value()));
    return (std::max(a, b) + 0.05) / (std::min(a, b) + 0.05);
}

TEST(SkinTest, EveryShippedSkinGivesEveryColourAndIsLegible)
{
    const auto skins = FindSkins({std::filesystem::path(EK_BIN_DIR) / "skins"});
    EXPECT_THAT(skins, ElementsAre(Key("Dark"), Key("Light")));
    for (const auto& [name, file] : skins) {
        SCOPED_TRACE(name);
        std::vector<std::string> complaints;
        const Skin skin = Skin::Load(file, complaints);
        EXPECT_THAT(complaints, IsEmpty());
        EXPECT_NE(skin.Element("Ek Wave Editor", "Main"), nullptr);
        for (const char* ground : {"COLOR_WINDOW", "COLOR_BTNSHADOW", "COLOR_BTNHIGHLIGHT", "COLOR_EDITOR_GRADIENT2"})
            EXPECT_GE(Contrast(skin, "COLOR_WINDOWTEXT", ground), 4.5) << ground;
        EXPECT_GE(Contrast(skin, "COLOR_BTNTEXT", "COLOR_BTNFACE"), 4.5);
        EXPECT_GE(Contrast(skin, "COLOR_MENUTEXT", "COLOR_MENU"), 4.5);
        EXPECT_GE(Contrast(skin, "COLOR_HIGHLIGHTTEXT", "COLOR_HIGHLIGHT"), 4.5);
        EXPECT_GE(Contrast(skin, "COLOR_INFOTEXT", "COLOR_INFOBK"), 4.5);
        EXPECT_GE(Contrast(skin, "COLOR_EDITOR_WAVE", "COLOR_EDITOR_WAVE_BG"), 4.5);
        EXPECT_LT(Contrast(skin, "COLOR_EDITOR_WAVE_HOR_LINES", "COLOR_EDITOR_WAVE_BG"), 3.0);
    }
}

TEST(SkinTest, AFileThatIsNoSkinGivesTheBuiltInColoursAndAComplaint)
{
    const Scratch folder;
    const std::filesystem::path files[] = {
        folder / "missing.xml",
        folder.Path(),
        folder.Write("empty.xml", ""),
        folder.Write("cut.xml", "<skin><colors><color name=\"COLOR_WINDOW\" value=\"#102030\"/>"),
        folder.Write("other.xml",
                     "<settings><colors><color name=\"COLOR_WINDOW\" value=\"#102030\"/></colors></settings>"),
    };
    for (const std::filesystem::path& file : files) {
        SCOPED_TRACE(file);
        std::vector<std::string> complaints;
        EXPECT_TRUE(HasBuiltInColors(Skin::Load(file, complaints)));
        EXPECT_THAT(complaints, ElementsAre(HasSubstr(file.native())));
    }
}

TEST(SkinTest, RedIsTheLowestByteOfAColour)
{
    EXPECT_EQ(ParseColor("#102030"), 0x302010u);
    EXPECT_EQ(ParseColor("#aBcDeF"), 0xEFCDABu);
    for (const char* text :
         {"", "#", "102030", "#10203", "#1020304", "#10203G", "#-10203", "#+10203", "# 10203", "red"})
        EXPECT_EQ(ParseColor(text), std::nullopt) << text;
}

TEST(SkinTest, ColoursThatAreNotUnderstoodAreTheBuiltInOnes)
{
    const Scratch folder;
    std::vector<std::string> complaints;
    const Skin skin = LoadText(folder, R"(<skin><colors>
        <!-- a remark --><color name="color_window" value="#010203"/>
        <color name="COLOR_BTNFACE" value="gray"/>
        <color name="COLOR_SOMETHING" value="#010203"/>
        <color/><colour name="COLOR_BTNFACE" value="#010203"/></colors></skin>)",
                               complaints);
    EXPECT_EQ(skin.Color(Window), 0x030201u);
    EXPECT_EQ(skin.Color(ButtonFace), DefaultSkinColor(ButtonFace));
    EXPECT_THAT(complaints, testing::Contains(HasSubstr("\"gray\" is not a colour for COLOR_BTNFACE")));
    EXPECT_THAT(complaints, testing::Contains(HasSubstr("no colour named \"COLOR_SOMETHING\"")));
    EXPECT_THAT(complaints, testing::Contains(HasSubstr("gives no COLOR_BTNFACE")));
    EXPECT_THAT(complaints, testing::Not(testing::Contains(HasSubstr("COLOR_WINDOW "))));
}

TEST(SkinTest, ElementsBelongToTheirModule)
{
    const Scratch folder;
    std::vector<std::string> complaints;
    Skin skin = LoadText(folder, R"(<skin><module name="Other"><Main color="#111111"/></module>
        <module name="Ek Wave Editor"><Main color="#222222"/></module></skin>)",
                         complaints);
    const Skin moved = std::move(skin);
    const enXml* element = moved.Element("Ek Wave Editor", "Main");
    ASSERT_NE(element, nullptr);
    EXPECT_EQ(element->FindAttribute("color")->second, "#222222");
    EXPECT_EQ(moved.Element("Ek Wave Editor", "Effects"), nullptr);
    EXPECT_EQ(moved.Element("Nobody", "Main"), nullptr);
    EXPECT_EQ(Skin().Element("Ek Wave Editor", "Main"), nullptr);
}

TEST(SkinTest, TheFirstFolderThatHasASkinOfANameWins)
{
    const Scratch folder;
    const std::filesystem::path first = folder.Write("own/Light/skin.xml", "");
    folder.Write("shared/Light/skin.xml", "");
    const std::filesystem::path other = folder.Write("shared/Night/skin.xml", "");
    folder.Write("shared/Empty/readme.txt", "");
    folder.Write("shared/skin.xml", "");
    const auto skins = FindSkins({folder / "missing", folder / "own", folder / "shared"});
    EXPECT_THAT(skins, ElementsAre(testing::Pair("Light", first), testing::Pair("Night", other)));
}

} // namespace
} // namespace ek
