// SPDX-License-Identifier: GPL-3.0-or-later
#include <gtest/gtest.h>

#include <elf.h>

#include <cstring>
#include <fstream>
#include <iterator>
#include <set>
#include <string>
#include <vector>

namespace {

std::vector<char> ReadModule()
{
    std::ifstream file(EK_BIN_DIR "/libEkWaveEditor.so", std::ios::binary);
    return {std::istreambuf_iterator<char>(file), {}};
}

template <class Record>
Record RecordAt(const std::vector<char>& file, size_t offset)
{
    Record record{};
    if (offset + sizeof record <= file.size())
        std::memcpy(&record, file.data() + offset, sizeof record);
    return record;
}

Elf64_Shdr SectionAt(const std::vector<char>& file, size_t index)
{
    const auto header = RecordAt<Elf64_Ehdr>(file, 0);
    return RecordAt<Elf64_Shdr>(file, header.e_shoff + index * header.e_shentsize);
}

/// The names of the dynamic symbols that the module itself defines.
std::set<std::string> DefinedDynamicSymbols(const std::vector<char>& file)
{
    std::set<std::string> names;
    const auto header = RecordAt<Elf64_Ehdr>(file, 0);
    for (size_t i = 0; i < header.e_shnum; ++i) {
        const Elf64_Shdr section = SectionAt(file, i);
        if (section.sh_type != SHT_DYNSYM)
            continue;
        const Elf64_Shdr strings = SectionAt(file, section.sh_link);
        for (size_t at = 0; at < section.sh_size; at += sizeof(Elf64_Sym)) {
            const auto symbol = RecordAt<Elf64_Sym>(file, section.sh_offset + at);
            if (symbol.st_shndx != SHN_UNDEF)
                names.insert(file.data() + strings.sh_offset + symbol.st_name);
        }
    }
    return names;
}

TEST(ModuleSymbols, TheThirteenFunctionsLeaveTheModuleAndNothingElse)
{
    const std::set<std::string> expected = {
        "EkInitialize",  "EkGetMenu",       "EkGetAccelTable", "EkChangeState",
        "EkFree",        "EkLoadSkin",      "EkFilterDllMsg",  "EkProcessDllIdle",
        "EkPassMessage", "EkGetModuleInfo", "EkOnCmdMsg",      "EkPreTranslateMessage",
        "EkTryClose",
    };
    const std::vector<char> module = ReadModule();
    ASSERT_GT(module.size(), sizeof(Elf64_Ehdr)) << "the module is built beside the tests";
    EXPECT_EQ(DefinedDynamicSymbols(module), expected);
}

} // namespace
