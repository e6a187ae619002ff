// SPDX-License-Identifier: GPL-3.0-or-later
#include "FaultyFileCalls.h"
#include "ScratchFolder.h"
#include "platform/MappedFile.h"
#include "platform/TempFile.h"
#include "platform/WholeFile.h"

#include <algorithm>
#include <fcntl.h>
#include <gtest/gtest.h>

namespace ek::test {
namespace {

TEST(TempFileTest, NamesAreHiddenNumberedAndFree)
{
    const ScratchFolder folder;
    std::vector<std::filesystem::path> names;
    for (int i = 0; i < 20; ++i) {
        names.push_back(MakeTempFileName("ekesb", ".tmp", folder.Path()));
        WriteText(names.back(), "");
        const std::string name = names.back().filename();
        EXPECT_EQ(name.substr(0, 6), ".ekesb");
        EXPECT_EQ(name.find_first_not_of("0123456789", 6), name.size() - 4);
        EXPECT_EQ(name.substr(name.size() - 4), ".tmp");
    }
    EXPECT_EQ(folder.EntryCount(), names.size());
}

TEST(TempFileTest, TheFolderIsTheUsersWhenThereIsOne)
{
    const ScratchFolder folder;
    const std::string withSeparator = folder.Path().string() + "/";
    for (const char* const name : {folder.Path().c_str(), withSeparator.c_str()}) {
        const ScopedVariable variable("TMPDIR", name);
        EXPECT_EQ(TempFolder().string(), folder.Path().string());
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
                WriteText(path, "another's");
            return FileCalls::Open(path, flags, mode);
        }
        int Taken = 0;
    } calls;
    const ScopedFileCalls scope(calls);
    const ScratchFolder folder;
    const ScopedVariable variable("TMPDIR", folder.Path().c_str());
    File file;
    std::filesystem::path path;
    ASSERT_TRUE(CreateTempFile("ekesb", ".tmp", file, path).Ok());
    EXPECT_EQ(folder.EntryCount(), 3u);
    EXPECT_EQ(ReadText(path), "");
}

TEST(MappedFileTest, WhatIsWrittenIsInTheFile)
{
    const ScratchFolder folder;
    const ScopedVariable variable("TMPDIR", folder.Path().c_str());
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
    EXPECT_EQ(folder.EntryCount(), 0u);
    EXPECT_TRUE(again.CloseAndRemove().Ok()) << "nothing is left to remove";
    ASSERT_TRUE(again.CreateTemporary(0).Ok());
    EXPECT_EQ(again.Size(), 0u);
    again.Data()[0] = 1;
}

TEST(MappedFileTest, AFailedCreationLeavesNoFileAndNoDescriptor)
{
    const ScratchFolder folder;
    const ScopedVariable variable("TMPDIR", folder.Path().c_str());
    for (const char* kind : {"Open", "FAllocate", "MMap"}) {
        FaultyFileCalls calls;
        const ScopedFileCalls scope(calls);
        calls.FailCall(kind, ENOSPC);
        MappedFile file;
        EXPECT_EQ(file.CreateTemporary(100).Errno(), ENOSPC) << kind;
        EXPECT_EQ(file.Data(), nullptr);
        EXPECT_EQ(folder.EntryCount(), 0u) << kind;
        EXPECT_EQ(calls.OpenDescriptors(), 0) << kind;
    }
}

TEST(WholeFileTest, AFailedSaveLeavesTheOldFileAndNoLitter)
{
    const ScratchFolder folder;
    WriteText(folder / "a", "old");
    for (const char* kind : {"Open", "PWrite", "FSync", "Close", "Rename"}) {
        FaultyFileCalls calls;
        const ScopedFileCalls scope(calls);
        calls.FailCall(kind, EIO);
        EXPECT_EQ(SaveWholeFile(folder / "a", "new").Errno(), EIO) << kind;
        EXPECT_EQ(ReadText(folder / "a"), "old") << kind;
        EXPECT_EQ(folder.EntryCount(), 1u) << kind;
    }
    EXPECT_FALSE(SaveWholeFile(folder / "none" / "a", "new").Ok());
}

TEST(WholeFileTest, SavingFollowsALinkAndKeepsTheMode)
{
    using std::filesystem::perms;
    const ScratchFolder folder;
    WriteText(folder / "a", "a long old text");
    std::filesystem::permissions(folder / "a", perms::owner_read | perms::owner_write | perms::group_read);
    std::filesystem::create_symlink("a", folder / "link");
    ASSERT_TRUE(SaveWholeFile(folder / "link", "new").Ok());
    EXPECT_TRUE(std::filesystem::is_symlink(folder / "link"));
    EXPECT_EQ(ReadText(folder / "a"), "new");
    EXPECT_EQ(std::filesystem::status(folder / "a").permissions(),
              perms::owner_read | perms::owner_write | perms::group_read);
}

TEST(WholeFileTest, WhatCannotBeReadLeavesTheContentAlone)
{
    const ScratchFolder folder;
    File huge;
    ASSERT_TRUE(huge.CreateNew(folder / "huge").Ok());
    ASSERT_TRUE(huge.Resize((256 << 20) + 1).Ok());
    std::string content = "before";
    EXPECT_EQ(ReadWholeFile(folder / "huge", content).Errno(), EFBIG);
    EXPECT_EQ(ReadWholeFile(folder.Path(), content).Errno(), EISDIR);
    EXPECT_EQ(ReadWholeFile(folder / "none", content).Errno(), ENOENT);
    EXPECT_EQ(content, "before");
}

} // namespace
} // namespace ek::test
