// SPDX-License-Identifier: GPL-3.0-or-later
#include "platform/File.h"
#include "FaultyFileCalls.h"
#include "ScratchFolder.h"

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

    FaultyFileCalls m_calls;
    ScopedFileCalls m_scope{m_calls};
    ScratchFolder m_folder;
};

TEST_F(FileTest, InterruptedAndPartialTransfersAreContinued)
{
    m_calls.InterruptEveryOther(true);
    m_calls.LimitTransfers(7);
    const std::string text = PatternOf(1000);
    File file = OpenNew("a");
    ASSERT_TRUE(file.WriteAt(text.data(), text.size(), 13).Ok());
    std::string back(text.size(), '\0');
    ASSERT_TRUE(file.ReadAllAt(back.data(), back.size(), 13).Ok());
    EXPECT_EQ(back, text);
    EXPECT_TRUE(file.Allocate(2000).Ok());
    EXPECT_TRUE(file.Resize(500).Ok());
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
    const std::vector<std::pair<const char*, std::function<IoStatus(File&)>>> cases = {
        {"PRead", [&](File& file) { return file.ReadAt(buffer, 4, 0, number); }},
        {"PWrite", [&](File& file) { return file.WriteAt("abcd", 4, 0); }},
        {"FTruncate", [&](File& file) { return file.Resize(1); }},
        {"FAllocate", [&](File& file) { return file.Allocate(1); }},
        {"FStat", [&](File& file) { return file.Size(number); }},
        {"FSync", [&](File& file) { return file.Sync(); }},
        {"Close", [&](File& file) { return file.Close(); }},
        {"Unlink", [&](File&) { return RemoveFile(m_folder / "FSync"); }},
        {"Open", [&](File& file) { return file.Open(m_folder / "FSync", File::Access::Read); }},
    };
    for (const auto& [kind, run] : cases) {
        File file = OpenNew(kind);
        m_calls.FailCall(kind, ENOSPC, m_calls.CallCount(kind) + 1);
        EXPECT_EQ(run(file).Errno(), ENOSPC) << kind;
    }
    EXPECT_EQ(m_calls.OpenDescriptors(), 0);
    EXPECT_EQ(IoStatus(ENOSPC).Text(), "No space left on device");
}

TEST_F(FileTest, AWriteThatMakesNoProgressFailsInsteadOfHanging)
{
    m_calls.LimitTransfers(0);
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
    WriteText(m_folder / "new", "new");
    WriteText(m_folder / "old", "old");
    for (const char* kind : {"Open", "Rename"}) {
        m_calls.FailCall(kind, EIO, m_calls.CallCount(kind) + 1);
        EXPECT_EQ(RenameOver(m_folder / "new", m_folder / "old").Errno(), EIO) << kind;
        EXPECT_EQ(ReadText(m_folder / "old"), "old") << kind;
        EXPECT_EQ(ReadText(m_folder / "new"), "new") << kind;
    }
    EXPECT_EQ(m_calls.OpenDescriptors(), 0);
}

TEST_F(FileTest, ARenameIsSyncedUnlessTheFolderCannotBe)
{
    const auto renameWithFault = [&](const char* kind, int error) {
        WriteText(m_folder / "new", "new");
        WriteText(m_folder / "old", "old");
        m_calls.FailCall(kind, error, m_calls.CallCount(kind) + 1);
        const int result = RenameOver(m_folder / "new", m_folder / "old").Errno();
        EXPECT_EQ(ReadText(m_folder / "old"), "new");
        return result;
    };
    EXPECT_EQ(renameWithFault("FSync", EIO), EIO);
    EXPECT_EQ(renameWithFault("FSync", EINVAL), 0) << "a file system without it";
    EXPECT_EQ(renameWithFault("Open", EACCES), 0) << "a folder that may be written but not read";
}

TEST_F(FileTest, ACopyIsCompleteWhateverTheKernelSupports)
{
    const std::string text = PatternOf(3 << 20);
    WriteText(m_folder / "from", text);
    for (const int error : {0, EXDEV, EINVAL, ENOSYS, EOPNOTSUPP}) {
        FaultyFileCalls calls;
        const ScopedFileCalls scope(calls);
        calls.LimitTransfers(1000003);
        calls.FailCall("CopyRange", error, error ? 2 : 0); // also after a part has been copied
        WriteText(m_folder / "to", "what was here before");
        EXPECT_TRUE(CopyFileTo(m_folder / "from", m_folder / "to").Ok()) << error;
        EXPECT_EQ(ReadText(m_folder / "to"), text) << error;
        EXPECT_EQ(calls.OpenDescriptors(), 0);
    }
}

TEST_F(FileTest, AFailedCopyLeavesNothingAtTheTarget)
{
    WriteText(m_folder / "from", PatternOf(10000));
    for (const char* kind : {"CopyRange", "PRead", "Close"}) {
        m_calls.FailCall(kind, ENOSPC, m_calls.CallCount(kind) + 1);
        EXPECT_EQ(CopyFileTo(m_folder / "from", m_folder / "to").Errno(), ENOSPC) << kind;
        EXPECT_EQ(m_folder.EntryCount(), 1u) << kind;
    }
    EXPECT_EQ(CopyFileTo(m_folder / "none", m_folder / "to").Errno(), ENOENT);
}

TEST_F(FileTest, CopyingAFileOntoItselfIsRefused)
{
    WriteText(m_folder / "a", "text");
    std::filesystem::create_hard_link(m_folder / "a", m_folder / "b");
    EXPECT_FALSE(CopyFileTo(m_folder / "a", m_folder / "b").Ok());
    EXPECT_EQ(ReadText(m_folder / "a"), "text");
}

TEST_F(FileTest, FilesAndFoldersAreToldApart)
{
    WriteText(m_folder / "a", "");
    const std::string folder = m_folder.Path();
    for (const auto& [path, isFile, isFolder] :
         std::vector<std::tuple<std::string, bool, bool>>{{folder + "/a", true, false},
                                                          {folder + "/a/", false, false},
                                                          {folder, false, true},
                                                          {folder + "/", false, true},
                                                          {folder + "/none", false, false},
                                                          {"", false, false}}) {
        EXPECT_EQ(IsFile(path), isFile) << path;
        EXPECT_EQ(IsFolder(path), isFolder) << path;
    }
}

} // namespace
} // namespace ek::test
