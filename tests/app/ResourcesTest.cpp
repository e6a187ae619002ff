// SPDX-License-Identifier: GPL-3.0-or-later
#include "resources/Accelerators.h"
#include "resources/Commands.h"
#include "resources/Menus.h"
#include "resources/Strings.h"

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

/// All commands of the menus with their texts; the lines of submenus too.
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
    for (const uint32_t menu : {MENU_MAIN, MENU_ZOOM_RATIO, MENU_AMPLITUDE})
        Collect(LoadMenu(menu), commands);
    return commands;
}

std::string KeyText(const Accelerator& key)
{
    const std::map<int, std::string> names = {{0x01000001, "Tab"}, {0x01000033, "F4"}};
    std::string text = key.Keypad ? "Num " : "";
    text += key.Modifiers & 0x04000000 ? "Ctrl+" : "";
    text += key.Modifiers & 0x02000000 ? "Shift+" : "";
    const auto named = names.find(key.Key);
    return text + (named == names.end() ? std::string(1, static_cast<char>(key.Key)) : named->second);
}

std::set<std::string> KeysOf(uint32_t command)
{
    std::set<std::string> keys;
    const AcceleratorTable& table = MainAccelerators();
    for (uint32_t i = 0; i < table.Count; ++i) {
        if (table.Entries[i].Command == command)
            keys.insert(KeyText(table.Entries[i]));
    }
    return keys;
}

TEST(Resources, EveryCommandOfAMenuHasATextAndIsInTheTable)
{
    for (const MenuItem& item : CommandsOfAllMenus()) {
        EXPECT_NE(std::string(item.Text), "") << item.Id;
        const bool isRatio = item.Id >= ID_ZOOM_RATIO_FIRST && item.Id <= ID_ZOOM_RATIO_LAST;
        EXPECT_TRUE(isRatio || FindCommand(item.Id)) << item.Id;
    }
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
}

TEST(Resources, EveryImageIsDrawnAndCompiledIn)
{
    std::ifstream list(ResourceFolder / "icons.qrc");
    const std::string compiled{std::istreambuf_iterator<char>(list), {}};
    for (const CommandInfo& info : CommandInfos()) {
        if (!*info.Icon)
            continue;
        const std::string file = std::string("icons/") + info.Icon + ".svg";
        EXPECT_TRUE(std::filesystem::exists(ResourceFolder / file)) << file;
        EXPECT_NE(compiled.find("<file>" + file + "</file>"), std::string::npos) << file;
    }
}

TEST(Resources, KeysShownForACommandAreKeysThatRunIt)
{
    for (const CommandInfo& info : CommandInfos()) {
        const bool isViewKey = info.Id == ID_DELETE;            // a key of the views, not of the table
        const bool isShiftedNew = info.Id == ID_NEW_MULTITRACK; // New with Shift held
        if (!*info.Keys || isViewKey || isShiftedNew)
            continue;
        EXPECT_TRUE(KeysOf(info.Id).contains(info.Keys)) << info.Symbol << " " << info.Keys;
    }
    EXPECT_TRUE(KeysOf(ID_FILE_NEW).contains(FindCommand(ID_NEW_MULTITRACK)->Keys));
}

TEST(Resources, EveryKeyRunsAKnownCommandAndNoOtherOne)
{
    const AcceleratorTable& table = MainAccelerators();
    std::set<std::string> keys;
    for (uint32_t i = 0; i < table.Count; ++i) {
        EXPECT_NE(FindCommand(table.Entries[i].Command), nullptr) << table.Entries[i].Command;
        EXPECT_TRUE(keys.insert(KeyText(table.Entries[i])).second) << KeyText(table.Entries[i]);
    }
    EXPECT_EQ(table.Count, 18U);
}

TEST(Resources, AMenuNamesTheSameKeyAsTheCommandTable)
{
    for (const MenuItem& item : CommandsOfAllMenus()) {
        const std::string text = item.Text;
        const size_t tab = text.find('\t');
        const std::string key = tab == std::string::npos ? "" : text.substr(tab + 1);
        EXPECT_TRUE(key.empty() || key == FindCommand(item.Id)->Keys) << text;
    }
}

TEST(Resources, ZoomRatiosArePowersOfTwoByTheirId)
{
    std::set<uint32_t> ids;
    for (const MenuItem& item : LoadMenu(MENU_ZOOM_RATIO)) {
        EXPECT_EQ(item.Text, "1 : " + std::to_string(1UL << (item.Id - ID_ZOOM_RATIO_FIRST)));
        ids.insert(item.Id);
    }
    EXPECT_EQ(ids.size(), ID_ZOOM_RATIO_LAST - ID_ZOOM_RATIO_FIRST + 1);
}

TEST(Resources, TheStringOfACommandIsItsStatusTextAndItsToolTip)
{
    EXPECT_EQ(LoadString(ID_NEXT_WINDOW), "Activate the next window\nNext Window");
    EXPECT_EQ(LoadString(ID_DELETE), "");
    EXPECT_EQ(CommandToolTip(ID_DELETE), "");
    EXPECT_EQ(LoadString(4711), "");
}

} // namespace
} // namespace ek
