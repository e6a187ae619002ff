// SPDX-License-Identifier: GPL-3.0-or-later
#include "platform/FileView.h"
#include "platform/SpaceRelease.h"
#include "support/FaultyFileCalls.h"
#include "support/TestFolder.h"

#include <gtest/gtest.h>

#include <cerrno>
#include <cstring>
#include <string>
#include <utility>
#include <vector>

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

TEST_F(FileViewTest, ShowsAnyPartsAsTheyWereLastWritten)
{
    FileView view(200000);
    std::vector<std::pair<uint64_t, const uint8_t*>> parts;
    for (const uint64_t position : {0U, 1U, 4095U, 4096U, 12345U}) {
        parts.emplace_back(position, view.Map(m_file, position, m_content.size() - position));
        ASSERT_NE(parts.back().second, nullptr);
    }
    m_content.back() ^= 1;
    ASSERT_TRUE(m_file.WriteAt(m_content.data(), m_content.size(), 0).Ok());
    for (const auto& [position, bytes] : parts)
        EXPECT_EQ(std::memcmp(bytes, m_content.data() + position, m_content.size() - position), 0);
}

TEST_F(FileViewTest, RefusesWhatCannotBeReadAndWhatHasNoRoom)
{
    FileView view(60000);
    FaultyFileCalls calls("file", FaultyFileCalls::Mappings);
    File file;
    ASSERT_TRUE(file.Open(m_folder / "file", File::Access::Read).Ok());
    calls.FailCall(1, EIO);
    EXPECT_EQ(view.Map(file, 0, 100), nullptr);
    EXPECT_EQ(view.Map(file, 0, 40000), nullptr); // pages behind the end of the file cannot be there
    EXPECT_EQ(view.Map(file, 0, 20000), nullptr);
    const uint8_t* const bytes = view.Map(file, 8000, 100);
    ASSERT_NE(bytes, nullptr);
    EXPECT_EQ(std::memcmp(bytes, m_content.data() + 8000, 100), 0);
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
