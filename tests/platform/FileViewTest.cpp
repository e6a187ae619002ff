// SPDX-License-Identifier: GPL-3.0-or-later
#include "platform/FileView.h"
#include "platform/SpaceRelease.h"
#include "support/FaultyFileCalls.h"
#include "support/TestFolder.h"

#include <gtest/gtest.h>

#include <cerrno>
#include <cstring>
#include <string>

namespace ek {
namespace {

class FileViewTest : public testing::Test {
protected:
    void SetUp() override
    {
        for (size_t i = 0; i < m_content.size(); ++i)
            m_content[i] = static_cast<char>(i * 7 / 5);
        ASSERT_TRUE(m_file.CreateNew(m_folder / "file").Ok());
        ASSERT_TRUE(m_file.WriteAt(m_content.data(), m_content.size(), 0).Ok());
    }

    TestFolder m_folder;
    File m_file;
    std::string m_content = std::string(20000, ' ');
};

TEST_F(FileViewTest, ShowsAnyPartAsItWasLastWritten)
{
    for (const uint64_t position : {0U, 1U, 4095U, 4096U, 12345U}) {
        FileView view;
        ASSERT_TRUE(view.Map(m_file, position, m_content.size() - position).Ok());
        EXPECT_EQ(std::memcmp(view.Data(), m_content.data() + position, m_content.size() - position), 0);
        m_content[position] ^= 1;
        ASSERT_TRUE(m_file.WriteAt(&m_content[position], 1, position).Ok());
        EXPECT_EQ(view.Data()[0], static_cast<uint8_t>(m_content[position]));
    }
}

TEST_F(FileViewTest, SaysWhatCannotBeReadWhenItIsMapped)
{
    FileView refused;
    {
        FaultyFileCalls calls;
        File file;
        ASSERT_TRUE(file.Open(m_folder / "file", File::Access::Read).Ok());
        calls.FailFrom(1, EIO);
        EXPECT_EQ(refused.Map(file, 0, 100).Errno(), EIO);
        EXPECT_EQ(refused.Data(), nullptr);
    }
    FileView beyond; // pages that lie behind the end of the file cannot be there
    EXPECT_FALSE(beyond.Map(m_file, 0, 40000).Ok());
}

TEST_F(FileViewTest, AFileWhoseSpaceIsFreedLaterIsGoneAtOnce)
{
    {
        const DeferredSpaceRelease space(m_file);
        ASSERT_TRUE(m_file.Close().Ok());
        ASSERT_TRUE(RemoveFile(m_folder / "file").Ok());
        EXPECT_EQ(m_folder.EntryCount(), 0U);
    }
    const DeferredSpaceRelease ofNothing(m_file);
}

} // namespace
} // namespace ek
