// SPDX-License-Identifier: GPL-3.0-or-later
#include <gtest/gtest.h>

#include <cstdio>
#include <memory>
#include <set>
#include <string>

namespace {

TEST(ModuleSymbols, TheThirteenFunctionsLeaveTheModuleAndNothingElse)
{
    const std::string command = "nm -D --defined-only --format=just-symbols '" EK_BIN_DIR "/libEkWaveEditor.so'";
    const std::unique_ptr<FILE, int (*)(FILE*)> list(popen(command.c_str(), "r"), pclose);
    ASSERT_NE(list, nullptr);
    std::set<std::string> symbols;
    char line[1024];
    while (fgets(line, sizeof line, list.get()))
        symbols.insert(std::string(line, std::string(line).find('\n')));
    EXPECT_EQ(symbols, (std::set<std::string>{"EkInitialize", "EkGetMenu", "EkGetAccelTable", "EkChangeState", "EkFree",
                                              "EkLoadSkin", "EkFilterDllMsg", "EkProcessDllIdle", "EkPassMessage",
                                              "EkGetModuleInfo", "EkOnCmdMsg", "EkPreTranslateMessage", "EkTryClose"}));
}

} // namespace
