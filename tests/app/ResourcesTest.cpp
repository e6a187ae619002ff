// SPDX-License-Identifier: GPL-3.0-or-later
#include "resources/Accelerators.h"
#include "resources/Commands.h"
#include "resources/Cursors.h"
#include "resources/Menus.h"

#include <gtest/gtest.h>

#include <filesystem>
#include <fstream>
#include <iterator>
#include <map>
#include <set>

namespace ek {
namespace {

const std::filesystem::path ResourceFolder =
    std::filesystem::path(EK_TEST_DATA).parent_path().parent_path().parent_path() / "editor" / "resources";

void Collect(std::span<const MenuItem> items, std::vector<MenuItem>& commands)
{
    for (const MenuItem& item : items) {
        if (item.Id != 0)
            commands.push_back(item);
        Collect(item.Submenu(), commands);
    }
}

std::vector<MenuItem> CommandsOfAllMenus()
{
    std::vector<MenuItem> commands;
    for (const uint32_t menu : {MENU_MAIN, MENU_ZOOM_RATIO, MENU_AMPLITUDE, MENU_WAVE_MONO, MENU_WAVE_STEREO,
                                MENU_WAVE_4, MENU_WAVE_5, MENU_WAVE_6, MENU_WAVE_8})
        Collect(LoadMenu(menu), commands);
    return commands;
}

std::string KeyText(const Accelerator& key)
{
    const std::map<int, std::string> names = {
        {0x01000001, "Tab"}, {0x01000033, "F4"}, {0x01000013, "Up"}, {0x01000015, "Down"}};
    std::string text = key.Keypad ? "Num " : "";
    text += key.Modifiers & 0x04000000 ? "Ctrl+" : "";
    text += key.Modifiers & 0x02000000 ? "Shift+" : "";
    const auto named = names.find(key.Key);
    return text + (named == names.end() ? std::string(1, static_cast<char>(key.Key)) : named->second);
}

/// Every key of the tables with its command; fails when two entries have the same key.
std::map<std::string, uint32_t> Keys()
{
    std::map<std::string, uint32_t> keys;
    for (const AcceleratorTable& table : {MainAccelerators(), ViewAccelerators()}) {
        for (const Accelerator& entry : std::span(table.Entries, table.Count))
            EXPECT_TRUE(keys.emplace(KeyText(entry), entry.Command).second) << KeyText(entry);
    }
    return keys;
}

TEST(Resources, WhatAMenuShowsHasATextAndTheKeyOfItsCommand)
{
    for (const MenuItem& item : CommandsOfAllMenus()) {
        const std::string text = item.Text;
        EXPECT_NE(text, "") << item.Id;
        const bool isRatio = item.Id >= ID_ZOOM_RATIO_FIRST && item.Id <= ID_ZOOM_RATIO_LAST;
        if (isRatio) {
            EXPECT_EQ(text, "1 : " + std::to_string(1UL << (item.Id - ID_ZOOM_RATIO_FIRST)));
            continue;
        }
        ASSERT_NE(FindCommand(item.Id), nullptr) << text;
        const size_t tab = text.find('\t');
        EXPECT_TRUE(tab == std::string::npos || text.substr(tab + 1) == FindCommand(item.Id)->Keys) << text;
    }
    EXPECT_EQ(LoadMenu(MENU_ZOOM_RATIO).size(), 20U);
}

/// The ids of a menu in their order, 0 for what is no command.
std::vector<uint32_t> Ids(std::span<const MenuItem> items)
{
    std::vector<uint32_t> ids;
    for (const MenuItem& item : items)
        ids.push_back(item.Id);
    return ids;
}

TEST(Resources, MenusAndToolBarKeepTheirOrder)
{
    using List = std::vector<uint32_t>;
    const std::span<const MenuItem> menu = LoadMenu(MENU_MAIN);
    ASSERT_EQ(menu.size(), 5U);
    EXPECT_EQ(Ids(menu[0].Submenu()), (List{57600, 57601, 57603, 57604, 0}));
    EXPECT_EQ(Ids(menu[1].Submenu()), (List{57643, 57644, 0, 57635, 57634, 57637, 1101, 0, 1133}));
    EXPECT_EQ(Ids(menu[2].Submenu()), (List{1110, 0, 1025, 1027, 1028, 1029, 0, 1056, 1057, 1304, 1305, 1302, 1303}));
    EXPECT_EQ(Ids(menu[3].Submenu()), List{0});
    EXPECT_EQ(Ids(menu[4].Submenu()), (List{57650, 57651, 57652}));
    const auto bar = LoadToolBar(TOOLBAR_MAIN);
    EXPECT_EQ(List(bar.begin(), bar.end()),
              (List{57601, 57600, 1097, 1111, 57603, 0,    57635, 57634, 57637, 1098, 0,
                    57643, 57644, 0,    1025, 1027,  1028, 1029,  1056,  1057,  1304, 1305}));
}

TEST(Resources, EveryButtonHasAnImageAToolTipAndAStatusText)
{
    for (const uint32_t id : LoadToolBar(TOOLBAR_MAIN)) {
        if (id == 0)
            continue;
        ASSERT_NE(FindCommand(id), nullptr) << id;
        EXPECT_NE(std::string(FindCommand(id)->Icon), "") << id;
        EXPECT_NE(CommandToolTip(id), "") << id;
        EXPECT_NE(CommandStatusText(id), "") << id;
    }
    EXPECT_EQ(CommandStatusText(ID_NEXT_WINDOW), "Activate the next window");
    EXPECT_EQ(CommandToolTip(ID_NEXT_WINDOW), "Next Window");
}

TEST(Resources, EveryImageIsDrawnAndCompiledIn)
{
    std::ifstream list(ResourceFolder / "icons.qrc");
    const std::string compiled{std::istreambuf_iterator<char>(list), {}};
    for (const CommandInfo& info : CommandInfos()) {
        const std::string file = std::string("icons/") + info.Icon + ".svg";
        EXPECT_TRUE(!*info.Icon || std::filesystem::exists(ResourceFolder / file)) << file;
        EXPECT_TRUE(!*info.Icon || compiled.find("<file>" + file + "</file>") != std::string::npos) << file;
    }
}

TEST(Resources, EveryPointerShapeIsDrawn)
{
    for (const CursorInfo& info : CursorInfos()) {
        const std::string file = std::string("cursors/") + info.Image + ".svg";
        EXPECT_TRUE(std::filesystem::exists(ResourceFolder / file)) << file;
        EXPECT_EQ(FindCursor(info.Id), &info);
    }
    EXPECT_EQ(FindCursor(0), nullptr);
}

TEST(Resources, KeysShownForACommandAreKeysThatRunIt)
{
    const std::map<std::string, uint32_t> keys = Keys();
    for (const auto& [key, command] : keys)
        EXPECT_NE(FindCommand(command), nullptr) << key;
    for (const CommandInfo& info : CommandInfos()) {
        const bool isViewKey = info.Id == ID_DELETE; // a key of the views, not of the table
        const uint32_t runs = info.Id == ID_NEW_MULTITRACK ? ID_FILE_NEW : info.Id; // with Shift held
        EXPECT_TRUE(!*info.Keys || isViewKey || (keys.contains(info.Keys) && keys.at(info.Keys) == runs)) << info.Keys;
    }
}

} // namespace
} // namespace ek
