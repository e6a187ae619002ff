// SPDX-License-Identifier: GPL-3.0-or-later
#include "app/RecentFiles.h"

#include "support/TestFolder.h"

#include <gtest/gtest.h>

#include <fstream>
#include <map>

namespace ek {
namespace {

using Paths = std::vector<std::filesystem::path>;

class RecentFilesTest : public testing::Test, public SettingsPort {
protected:
    std::filesystem::path MakeFile(const std::string& name) const
    {
        std::filesystem::path path = m_folder.Path() / name;
        std::ofstream(path) << name;
        return path;
    }

    std::optional<std::string> ReadSetting(const std::string& key) override
    {
        return m_stored.contains(key) ? std::optional(m_stored[key]) : std::nullopt;
    }
    void WriteSetting(const std::string& key, const std::string& value) override { m_stored[key] = value; }

    TestFolder m_folder;
    std::map<std::string, std::string> m_stored;
    RecentFiles m_files;
};

TEST_F(RecentFilesTest, AnAddedFileComesToTheFrontOnce)
{
    const auto first = MakeFile("first.wav");
    const auto second = MakeFile("second.wav");
    EXPECT_TRUE(m_files.Add(first));
    EXPECT_TRUE(m_files.Add(second));
    EXPECT_FALSE(m_files.Add(second));
    EXPECT_TRUE(m_files.Add(first));
    EXPECT_FALSE(m_files.Add(m_folder.Path()));
    EXPECT_FALSE(m_files.Add(m_folder.Path() / "missing.wav"));
    EXPECT_EQ(m_files.Paths(), (Paths{first, second}));
    EXPECT_EQ(m_files.Take(2), std::filesystem::path());
    EXPECT_EQ(m_files.Take(1), second);
    EXPECT_EQ(m_files.Paths(), Paths{first});
}

TEST_F(RecentFilesTest, NamesThatDifferInCaseAreOneEntryOnlyForOneFile)
{
    const auto lower = MakeFile("take.wav");
    const auto upper = MakeFile("TAKE.WAV");
    m_files.Add(lower);
    EXPECT_TRUE(m_files.Add(upper));
    EXPECT_EQ(m_files.Paths(), (Paths{upper, lower}));
    std::filesystem::remove(lower);
    std::filesystem::create_hard_link(upper, lower); // as a disk that ignores case shows it
    EXPECT_FALSE(m_files.Add(lower));
}

TEST_F(RecentFilesTest, AnEleventhFileDropsTheOldest)
{
    for (int i = 0; i < 11; ++i)
        m_files.Add(MakeFile(std::to_string(i)));
    ASSERT_EQ(m_files.Paths().size(), 10U);
    EXPECT_EQ(m_files.Paths().front().filename(), "10");
    EXPECT_EQ(m_files.Paths().back().filename(), "1");
}

TEST_F(RecentFilesTest, TheStoredEntriesThatAreFilesComeBackAndStalePositionsAreEmptied)
{
    const auto kept = MakeFile("a & b.wav");
    const auto last = MakeFile("last.wav");
    m_stored = {{"RecentFile1", (m_folder.Path() / "deleted.wav").string()},
                {"RecentFile2", kept.string()},
                {"RecentFile3", kept.string()},
                {"RecentFile4", m_folder.Path().string()},
                {"RecentFile10", last.string()},
                {"RecentFile11", MakeFile("beyond.wav").string()}};
    m_files.Load(*this);
    EXPECT_EQ(m_files.Paths(), (Paths{kept, last}));
    m_files.Save(*this);
    EXPECT_EQ(m_stored["RecentFile1"], kept.string());
    EXPECT_EQ(m_stored["RecentFile2"], last.string());
    for (int position = 3; position <= 10; ++position)
        EXPECT_EQ(m_stored["RecentFile" + std::to_string(position)], "");
}

} // namespace
} // namespace ek
