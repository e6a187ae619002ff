// SPDX-License-Identifier: GPL-3.0-or-later
#include "platform/SpaceRelease.h"
#include "platform/FileCalls.h"
#include "support/TestFolder.h"

#include <gtest/gtest.h>

#include <cerrno>
#include <functional>
#include <list>
#include <string>
#include <system_error>
#include <vector>

namespace ek {
namespace {

/// A disk that is full as long as a deleted file is open. The first call that needs room comes while files are being
/// deleted.
class FullDisk final : public FileCalls {
public:
    FullDisk(const TestFolder& folder, std::list<File> files, int error)
        : m_folder(folder.Path().string()), m_files(std::move(files)), m_error(error), m_installed(*this)
    {
    }
    uint64_t CallsRefused() const { return m_refused; }

    int Open(const char* path, int flags, mode_t mode) override
    {
        return HasRoom() ? FileCalls::Open(path, flags, mode) : -1;
    }
    ssize_t PWrite(int descriptor, const void* data, size_t length, off_t position) override
    {
        return HasRoom() ? FileCalls::PWrite(descriptor, data, length, position) : -1;
    }
    int FAllocate(int descriptor, off_t size) override
    {
        return HasRoom() ? FileCalls::FAllocate(descriptor, size) : m_error;
    }

private:
    bool HasRoom()
    {
        const bool room = m_refused != 0 && !HoldsDeletedFiles();
        m_refused += !room;
        for (File& file : m_files) {
            const DeferredSpaceRelease space(file);
            EXPECT_TRUE(file.Close().Ok());
        }
        m_files.clear();
        errno = m_error;
        return room;
    }

    bool HoldsDeletedFiles() const
    {
        for (const auto& entry : std::filesystem::directory_iterator("/proc/self/fd")) {
            std::error_code gone;
            const std::string target = std::filesystem::read_symlink(entry, gone).string();
            if (target.starts_with(m_folder) && target.ends_with(" (deleted)"))
                return true;
        }
        return false;
    }

    const std::string m_folder;
    std::list<File> m_files;
    const int m_error;
    uint64_t m_refused = 0;
    ScopedFileCalls m_installed;
};

class SpaceReleaseTest : public testing::Test {
protected:
    /// Open ones whose names are gone.
    std::list<File> DeletedFiles(int count)
    {
        std::list<File> files;
        for (int i = 0; i < count; ++i) {
            EXPECT_TRUE(files.emplace_back().CreateNew(m_folder / "file").Ok());
            EXPECT_TRUE(files.back().Allocate(1 << 20).Ok());
            EXPECT_TRUE(RemoveFile(m_folder / "file").Ok());
        }
        return files;
    }

    const TestFolder m_folder;
};

TEST_F(SpaceReleaseTest, ACallThatFindsTheDiskFullWaitsForWhatIsBeingFreed)
{
    File file;
    ASSERT_TRUE(file.CreateNew(m_folder / "grows").Ok());
    File created;
    const std::vector<std::function<IoStatus()>> calls = {[&] { return file.Allocate(100000); },
                                                          [&] { return file.WriteAt("abcd", 4, 0); },
                                                          [&] { return created.CreateNew(m_folder / "new"); }};
    for (const auto& call : calls) {
        for (const int error : {ENOSPC, EDQUOT, EMFILE}) {
            (void)created.Close();
            std::filesystem::remove(m_folder / "new");
            const FullDisk disk(m_folder, DeletedFiles(20), error);
            EXPECT_EQ(call().Errno(), 0) << error;
            EXPECT_EQ(disk.CallsRefused(), 1U);
        }
    }
}

TEST_F(SpaceReleaseTest, ADiskThatIsFullOtherwiseIsToldAtOnce)
{
    File file;
    ASSERT_TRUE(file.CreateNew(m_folder / "grows").Ok());
    AwaitReleasedSpaces();
    const FullDisk disk(m_folder, {}, ENOSPC);
    EXPECT_EQ(file.Allocate(100000).Errno(), ENOSPC);
    EXPECT_EQ(disk.CallsRefused(), 1U);
}

TEST_F(SpaceReleaseTest, AnyOtherErrorIsToldAtOnce)
{
    File file;
    ASSERT_TRUE(file.CreateNew(m_folder / "grows").Ok());
    const FullDisk disk(m_folder, DeletedFiles(1), EIO);
    EXPECT_EQ(file.WriteAt("abcd", 4, 0).Errno(), EIO);
    EXPECT_EQ(disk.CallsRefused(), 1U);
}

} // namespace
} // namespace ek
