// SPDX-License-Identifier: GPL-3.0-or-later
#include "platform/MappedFile.h"
#include "platform/TempFile.h"
#include "platform/WholeFile.h"
#include "support/FaultyFileCalls.h"
#include "support/TestFolder.h"

#include <algorithm>
#include <fcntl.h>
#include <gtest/gtest.h>

namespace ek::test {
namespace {

TEST(TempFileTest, NamesAreHiddenNumberedAndFree)
{
    const TestFolder folder;
    std::vector<std::filesystem::path> names;
    for (int i = 0; i < 20; ++i) {
        names.push_back(MakeTempFileName("ekesb", ".tmp", folder.Path()));
        WriteTextFile(names.back(), "");
        const std::string name = names.back().filename();
        EXPECT_EQ(name.substr(0, 6), ".ekesb");
        EXPECT_EQ(name.find_first_not_of("0123456789", 6), name.size() - 4);
        EXPECT_EQ(name.substr(name.size() - 4), ".tmp");
    }
    EXPECT_EQ(folder.EntryCount(), names.size());
}

TEST(TempFileTest, TheFolderIsTheUsersWhenThereIsOne)
{
    const TestFolder folder;
    const std::string plain = folder.Path();
    const std::string withSeparator = plain + "/";
    for (const char* const name : {plain.c_str(), withSeparator.c_str()}) {
        const ScopedVariable variable("TMPDIR", name);
        EXPECT_EQ(TempFolder().string(), plain);
    }
    const std::string missing = folder / "none";
    for (const char* const name : {"", missing.c_str(), static_cast<const char*>(nullptr)}) {
        const ScopedVariable variable("TMPDIR", name);
        EXPECT_EQ(TempFolder(), "/var/tmp");
    }
}

TEST(TempFileTest, ANameTakenBetweenChoosingAndCreatingIsPassedOver)
{
    struct Racing : FileCalls {
        int Open(const char* path, int flags, mode_t mode) override
        {
            if (Taken++ < 2)
                WriteTextFile(path, "another's");
            return FileCalls::Open(path, flags, mode);
        }
        int Taken = 0;
    } calls;
    const ScopedFileCalls scope(calls);
    const TestFolder folder;
    File file;
    std::filesystem::path path;
    ASSERT_TRUE(CreateTempFile("ekesb", ".tmp", file, path).Ok());
    EXPECT_EQ(folder.TempFileCount(), 3u);
    EXPECT_EQ(ReadTextFile(path), "");
}

TEST(MappedFileTest, WhatIsWrittenIsInTheFile)
{
    const TestFolder folder;
    MappedFile file;
    ASSERT_TRUE(file.CreateTemporary(10000).Ok());
    EXPECT_TRUE(std::all_of(file.Data(), file.Data() + 10000, [](uint8_t byte) { return byte == 0; }));
    file.Data()[9999] = 7;
    ASSERT_TRUE(file.Close().Ok());
    EXPECT_EQ(file.Data(), nullptr);

    MappedFile again;
    ASSERT_TRUE(again.Open(file.Path()).Ok());
    EXPECT_EQ(again.Size(), 10000u);
    EXPECT_EQ(again.Data()[9999], 7);
    ASSERT_TRUE(again.CloseAndRemove().Ok());
    EXPECT_EQ(folder.TempFileCount(), 0u);
    EXPECT_TRUE(again.CloseAndRemove().Ok()) << "nothing is left to remove";
    ASSERT_TRUE(again.CreateTemporary(0).Ok());
    EXPECT_EQ(again.Size(), 0u);
    again.Data()[0] = 1;
}

TEST(MappedFileTest, AFailedCreationLeavesNoFileAndNoDescriptor)
{
    const TestFolder folder;
    for (const FaultyFileCalls::Kind kind :
         {FaultyFileCalls::Opens, FaultyFileCalls::Allocations, FaultyFileCalls::Mappings}) {
        FaultyFileCalls calls({}, kind);
        calls.FailCall(1, EIO);
        MappedFile file;
        EXPECT_EQ(file.CreateTemporary(100).Errno(), EIO) << kind;
        EXPECT_EQ(file.Data(), nullptr);
        EXPECT_EQ(folder.TempFileCount(), 0u) << kind;
        EXPECT_EQ(calls.OpenDescriptors(), 0) << kind;
    }
}

TEST(WholeFileTest, AFailedSaveLeavesTheOldFileAndNoLitter)
{
    const TestFolder folder;
    WriteTextFile(folder / "a", "old");
    for (const FaultyFileCalls::Kind kind :
         {FaultyFileCalls::Opens, FaultyFileCalls::Writes, FaultyFileCalls::ModeChanges, FaultyFileCalls::Syncs,
          FaultyFileCalls::Closes, FaultyFileCalls::Renames}) {
        FaultyFileCalls calls(".eksave", kind);
        calls.FailCall(1, EIO);
        EXPECT_EQ(SaveWholeFile(folder / "a", "new").Errno(), EIO) << kind;
        EXPECT_EQ(ReadTextFile(folder / "a"), "old") << kind;
        EXPECT_EQ(folder.EntryCount(), 1u) << kind;
    }
    EXPECT_FALSE(SaveWholeFile(folder / "none" / "a", "new").Ok());
}

TEST(WholeFileTest, AFileThatMayNotBeWrittenIsNotReplaced)
{
    const TestFolder folder;
    WriteTextFile(folder / "a", "old");
    FaultyFileCalls calls("work/a", FaultyFileCalls::Opens); // a mode would not stop every user
    calls.FailCall(1, EACCES);
    EXPECT_EQ(SaveWholeFile(folder / "a", "new").Errno(), EACCES);
    EXPECT_EQ(ReadTextFile(folder / "a"), "old");
}

TEST(WholeFileTest, SavingFollowsLinksAndKeepsTheModeExactly)
{
    using std::filesystem::perms;
    const TestFolder folder;
    WriteTextFile(folder / "a", "a long old text");
    std::filesystem::create_symlink("a", folder / "inner");
    std::filesystem::create_symlink(folder / "inner", folder / "link");
    for (const perms mode : {static_cast<perms>(0666), static_cast<perms>(0640)}) {
        std::filesystem::permissions(folder / "a", mode);
        ASSERT_TRUE(SaveWholeFile(folder / "link", "new").Ok());
        EXPECT_EQ(std::filesystem::status(folder / "a").permissions(), mode);
        ASSERT_TRUE(CopyFileTo(folder / "a", folder / "copy").Ok());
        EXPECT_EQ(std::filesystem::status(folder / "copy").permissions(), mode);
    }
    EXPECT_EQ(ReadTextFile(folder / "a"), "new");
    std::filesystem::remove(folder / "a");
    ASSERT_TRUE(SaveWholeFile(folder / "link", "newer").Ok()) << "a link to a file yet to be made";
    EXPECT_TRUE(std::filesystem::is_symlink(folder / "link") && std::filesystem::is_symlink(folder / "inner"));
    EXPECT_EQ(ReadTextFile(folder / "a"), "newer");
    EXPECT_EQ(std::filesystem::status(folder / "a").permissions(), static_cast<perms>(0600));
    std::filesystem::create_symlink("circle", folder / "circle");
    EXPECT_EQ(SaveWholeFile(folder / "circle", "").Errno(), ELOOP);
}

TEST(WholeFileTest, WhatCannotBeReadLeavesTheContentAlone)
{
    const TestFolder folder;
    File huge;
    ASSERT_TRUE(huge.CreateNew(folder / "huge").Ok());
    ASSERT_TRUE(huge.Resize((256 << 20) + 1).Ok());
    std::string content = "before";
    EXPECT_EQ(ReadWholeFile(folder / "huge", content).Errno(), EFBIG);
    EXPECT_EQ(ReadWholeFile(folder / "none", content).Errno(), ENOENT);
    EXPECT_EQ(content, "before");
}

} // namespace
} // namespace ek::test
