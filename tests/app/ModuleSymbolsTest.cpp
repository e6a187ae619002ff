// SPDX-License-Identifier: GPL-3.0-or-later
#include <gtest/gtest.h>

#include <cstdio>
#include <memory>
#include <set>
#include <string>

namespace {

/// An instrumented module also exports what its sanitizer watches: names reserved for the compiler, and constants of
/// the standard library.
bool IsSanitizers(const std::string& symbol)
{
#if defined(__SANITIZE_ADDRESS__) || defined(__SANITIZE_THREAD__)
    return symbol.starts_with("__") || symbol.starts_with("_ZSt");
#else
    return symbol.empty();
#endif
}

TEST(ModuleSymbols, TheThirteenFunctionsLeaveTheModuleAndNothingElse)
{
    const std::string command = "nm -D --defined-only --format=just-symbols '" EK_BIN_DIR "/libEkWaveEditor.so'";
    const std::unique_ptr<FILE, int (*)(FILE*)> list(popen(command.c_str(), "r"), pclose);
    ASSERT_NE(list, nullptr);
    std::set<std::string> symbols;
    char line[1024];
    while (fgets(line, sizeof line, list.get())) {
        const std::string symbol(line, std::string(line).find('\n'));
        if (!IsSanitizers(symbol))
            symbols.insert(symbol);
    }
    EXPECT_EQ(symbols, (std::set<std::string>{"EkInitialize", "EkGetMenu", "EkGetAccelTable", "EkChangeState", "EkFree",
                                              "EkLoadSkin", "EkFilterDllMsg", "EkProcessDllIdle", "EkPassMessage",
                                              "EkGetModuleInfo", "EkOnCmdMsg", "EkPreTranslateMessage", "EkTryClose"}));
}

} // namespace
