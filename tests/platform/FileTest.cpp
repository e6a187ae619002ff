// SPDX-License-Identifier: GPL-3.0-or-later
#include "platform/File.h"
#include "platform/MappedFile.h"
#include "platform/WholeFile.h"
#include "support/FaultyFileCalls.h"
#include "support/TestFolder.h"

#include <cerrno>
#include <functional>
#include <gtest/gtest.h>
#include <sys/stat.h>

namespace ek::test {
namespace {

std::string PatternOf(size_t bytes)
{
    std::string text(bytes, '\0');
    uint32_t state = 1;
    for (char& c : text) {
        state = state * 1664525 + 1013904223;
        c = static_cast<char>(state >> 24);
    }
    return text;
}

class FileTest : public testing::Test {
protected:
    File OpenNew(const char* name)
    {
        File file;
        EXPECT_TRUE(file.CreateNew(m_folder / name).Ok());
        return file;
    }

    TestFolder m_folder;
};

TEST_F(FileTest, InterruptedAndPartialTransfersAreContinued)
{
    FaultyFileCalls calls;
    calls.InterruptEveryOther();
    calls.LimitTransfers(7);
    const std::string text = PatternOf(1000);
    File file = OpenNew("a");
    ASSERT_TRUE(file.WriteAt(text.data(), text.size(), 13).Ok());
    std::string back(text.size(), '\0');
    ASSERT_TRUE(file.ReadAllAt(back.data(), back.size(), 13).Ok());
    EXPECT_EQ(back, text);
    EXPECT_TRUE(file.Allocate(2000).Ok());
    EXPECT_TRUE(file.Resize(500).Ok());
    EXPECT_TRUE(file.SetMode(0640).Ok());
    EXPECT_TRUE(file.Sync().Ok());
}

TEST_F(FileTest, ReadingStopsAtTheEndAndSaysHowFarItCame)
{
    File file = OpenNew("a");
    ASSERT_TRUE(file.WriteAt("abcde", 5, 0).Ok());
    char buffer[8] = {};
    uint64_t done = 99;
    EXPECT_TRUE(file.ReadAt(buffer, 8, 3, done).Ok());
    EXPECT_EQ(done, 2u);
    EXPECT_TRUE(file.ReadAt(buffer, 8, 50, done).Ok());
    EXPECT_EQ(done, 0u);
    EXPECT_EQ(file.ReadAllAt(buffer, 3, 3).Errno(), EIO);
}

TEST_F(FileTest, AFailingCallIsReportedWithItsErrorNumber)
{
    char buffer[4];
    uint64_t number = 0;
    const std::vector<std::pair<FaultyFileCalls::Kind, std::function<IoStatus(File&)>>> cases = {
        {FaultyFileCalls::Reads, [&](File& file) { return file.ReadAt(buffer, 4, 0, number); }},
        {FaultyFileCalls::Writes, [&](File& file) { return file.WriteAt("abcd", 4, 0); }},
        {FaultyFileCalls::Truncations, [&](File& file) { return file.Resize(1); }},
        {FaultyFileCalls::Allocations, [&](File& file) { return file.Allocate(1); }},
        {FaultyFileCalls::Queries, [&](File& file) { return file.Size(number); }},
        {FaultyFileCalls::Syncs, [&](File& file) { return file.Sync(); }},
        {FaultyFileCalls::Closes, [&](File& file) { return file.Close(); }},
        {FaultyFileCalls::Removals, [&](File&) { return RemoveFile(m_folder / "none"); }},
        {FaultyFileCalls::Opens, [&](File& file) { return file.Open(m_folder / "none", File::Access::Read); }},
        {FaultyFileCalls::ModeChanges, [&](File& file) { return file.SetMode(0600); }},
    };
    for (const auto& [kind, run] : cases) {
        FaultyFileCalls calls({}, kind);
        File file = OpenNew(std::to_string(kind).c_str());
        calls.FailCall(1, EIO);
        EXPECT_EQ(run(file).Errno(), EIO) << kind;
        (void)file.Close();
        EXPECT_EQ(calls.OpenDescriptors(), 0) << kind;
    }
    EXPECT_EQ(IoStatus(ENOSPC).Text(), "No space left on device");
}

TEST_F(FileTest, AWriteThatMakesNoProgressFailsInsteadOfHanging)
{
    FaultyFileCalls calls;
    calls.LimitTransfers(0);
    EXPECT_EQ(OpenNew("a").WriteAt("abcd", 4, 0).Errno(), EIO);
}

TEST_F(FileTest, CreatingIsExclusiveAndPrivate)
{
    OpenNew("a");
    struct stat status {};
    ASSERT_EQ(stat((m_folder / "a").c_str(), &status), 0);
    EXPECT_EQ(status.st_mode & 0777, 0600u);
    std::filesystem::create_symlink(m_folder / "nowhere", m_folder / "link");
    File file;
    EXPECT_EQ(file.CreateNew(m_folder / "a").Errno(), EEXIST);
    EXPECT_EQ(file.CreateNew(m_folder / "link").Errno(), EEXIST);
    EXPECT_FALSE(file.IsOpen());
}

TEST_F(FileTest, AllocatingReservesSpaceAndNeverShortens)
{
    File file = OpenNew("a");
    ASSERT_TRUE(file.Resize(1 << 20).Ok());
    struct stat status {};
    ASSERT_EQ(fstat(file.Descriptor(), &status), 0);
    EXPECT_LT(status.st_blocks * 512, 1 << 20) << "a hole";
    ASSERT_TRUE(file.Allocate(1 << 20).Ok());
    ASSERT_EQ(fstat(file.Descriptor(), &status), 0);
    EXPECT_GE(status.st_blocks * 512, 1 << 20);
    ASSERT_TRUE(file.Allocate(0).Ok());
    ASSERT_TRUE(file.Allocate(10).Ok());
    uint64_t size = 0;
    ASSERT_TRUE(file.Size(size).Ok());
    EXPECT_EQ(size, 1u << 20);
    EXPECT_EQ(file.Allocate(UINT64_MAX).Errno(), EFBIG);
    EXPECT_EQ(file.Resize(UINT64_MAX).Errno(), EFBIG);
}

TEST_F(FileTest, AFailedRenameLeavesBothFiles)
{
    WriteTextFile(m_folder / "new", "new");
    WriteTextFile(m_folder / "old", "old");
    for (const FaultyFileCalls::Kind kind : {FaultyFileCalls::Opens, FaultyFileCalls::Renames}) {
        FaultyFileCalls calls({}, kind);
        calls.FailCall(1, EIO);
        EXPECT_EQ(RenameOver(m_folder / "new", m_folder / "old").Errno(), EIO) << kind;
        EXPECT_EQ(ReadTextFile(m_folder / "old"), "old") << kind;
        EXPECT_EQ(ReadTextFile(m_folder / "new"), "new") << kind;
        EXPECT_EQ(calls.OpenDescriptors(), 0) << kind;
    }
}

TEST_F(FileTest, ARenameIsSyncedUnlessTheFolderCannotBe)
{
    const auto renameWithFault = [&](FaultyFileCalls::Kind kind, int error) {
        WriteTextFile(m_folder / "new", "new");
        WriteTextFile(m_folder / "old", "old");
        FaultyFileCalls calls({}, kind);
        calls.FailCall(1, error);
        IoStatus synced(ENOENT);
        EXPECT_TRUE(RenameOver(m_folder / "new", m_folder / "old", &synced).Ok());
        EXPECT_EQ(ReadTextFile(m_folder / "old"), "new");
        return synced.Errno();
    };
    EXPECT_EQ(renameWithFault(FaultyFileCalls::Syncs, EIO), EIO);
    EXPECT_EQ(renameWithFault(FaultyFileCalls::Syncs, EINVAL), 0) << "a file system without it";
    EXPECT_EQ(renameWithFault(FaultyFileCalls::Opens, EACCES), 0) << "a folder that may be written but not read";
}

TEST_F(FileTest, ACopyIsCompleteWhateverTheKernelSupports)
{
    const std::string text = PatternOf(3 << 20);
    WriteTextFile(m_folder / "from", text);
    for (const int error : {0, EXDEV, EINVAL, ENOSYS, EOPNOTSUPP}) {
        FaultyFileCalls calls({}, FaultyFileCalls::Copies);
        calls.LimitTransfers(1000003);
        calls.FailCall(error ? 2 : 0, error); // also after a part has been copied
        WriteTextFile(m_folder / "to", "what was here before");
        EXPECT_TRUE(CopyFileTo(m_folder / "from", m_folder / "to").Ok()) << error;
        EXPECT_EQ(ReadTextFile(m_folder / "to"), text) << error;
        EXPECT_EQ(calls.OpenDescriptors(), 0);
    }
}

TEST_F(FileTest, AFailedCopyLeavesNothingAtTheTarget)
{
    WriteTextFile(m_folder / "from", PatternOf(10000));
    for (uint64_t nth = 1;; ++nth) {
        // Closing what was only read loses nothing, and a name that is free already need not be removed.
        FaultyFileCalls calls("work/",
                              FaultyFileCalls::AllKinds & ~(FaultyFileCalls::Closes | FaultyFileCalls::Removals));
        calls.FailCall(nth, EIO);
        const IoStatus status = CopyFileTo(m_folder / "from", m_folder / "to");
        EXPECT_EQ(calls.OpenDescriptors(), 0) << nth;
        if (!calls.HasFailed()) {
            EXPECT_GT(nth, 5u);
            break;
        }
        EXPECT_EQ(status.Errno(), EIO) << nth;
        EXPECT_EQ(m_folder.EntryCount(), 1u) << nth;
    }
    FaultyFileCalls calls("work/to", FaultyFileCalls::Closes);
    calls.FailCall(1, EIO);
    EXPECT_EQ(CopyFileTo(m_folder / "from", m_folder / "to").Errno(), EIO);
    EXPECT_EQ(m_folder.EntryCount(), 1u);
    EXPECT_EQ(CopyFileTo(m_folder / "none", m_folder / "to").Errno(), ENOENT);
}

TEST_F(FileTest, CopyingAFileOntoItselfIsRefused)
{
    WriteTextFile(m_folder / "a", "text");
    std::filesystem::create_hard_link(m_folder / "a", m_folder / "b");
    EXPECT_FALSE(CopyFileTo(m_folder / "a", m_folder / "b").Ok());
    EXPECT_EQ(ReadTextFile(m_folder / "a"), "text");
}

TEST_F(FileTest, WhatIsNoRegularFileIsRefusedWithoutWaiting)
{
    ASSERT_EQ(mkfifo((m_folder / "pipe").c_str(), 0600), 0);
    std::string content;
    MappedFile mapped;
    for (const auto& [path, error] : std::vector<std::pair<std::filesystem::path, int>>{
             {m_folder / "pipe", EINVAL}, {"/dev/zero", EINVAL}, {m_folder.Path(), EISDIR}}) {
        File file;
        EXPECT_EQ(file.Open(path, File::Access::Read).Errno(), error) << path;
        EXPECT_FALSE(file.IsOpen());
        EXPECT_EQ(ReadWholeFile(path, content).Errno(), error) << path;
        EXPECT_EQ(CopyFileTo(path, m_folder / "to").Errno(), error) << path;
        EXPECT_EQ(mapped.Open(path).Errno(), error) << path;
        EXPECT_EQ(SaveWholeFile(path, "new").Errno(), error) << path;
    }
    EXPECT_EQ(m_folder.EntryCount(), 1u);
}

} // namespace
} // namespace ek::test
