// SPDX-License-Identifier: GPL-3.0-or-later
#include "app/RecentFiles.h"

#include "app/HostSettings.h"
#include "support/RecordingHost.h"
#include "support/TestFolder.h"

#include <gtest/gtest.h>

#include <fstream>

namespace ek {
namespace {

class RecentFilesTest : public testing::Test {
protected:
    std::filesystem::path MakeFile(const std::string& name) const
    {
        const std::filesystem::path path = m_folder.Path() / name;
        std::ofstream(path) << name;
        return path;
    }

    void Store(int position, const std::filesystem::path& path)
    {
        m_host.Services.Settings["Ek Wave Editor/RecentFile" + std::to_string(position)] = path.string();
    }

    std::string Stored(int position)
    {
        return m_host.Services.Settings["Ek Wave Editor/RecentFile" + std::to_string(position)];
    }

    TestFolder m_folder;
    RecordingHost m_host;
    HostSettings m_settings{&m_host.Services};
    RecentFiles m_files;
};

using Paths = std::vector<std::filesystem::path>;

TEST_F(RecentFilesTest, AnAddedFileComesToTheFrontOnce)
{
    const auto first = MakeFile("first.wav");
    const auto second = MakeFile("second.wav");
    EXPECT_TRUE(m_files.Add(first));
    EXPECT_TRUE(m_files.Add(second));
    EXPECT_FALSE(m_files.Add(second));
    EXPECT_TRUE(m_files.Add(first));
    EXPECT_EQ(m_files.Paths(), (Paths{first, second}));
}

TEST_F(RecentFilesTest, AFolderOrAMissingFileIsNotAdded)
{
    EXPECT_FALSE(m_files.Add(m_folder.Path()));
    EXPECT_FALSE(m_files.Add(m_folder.Path() / "missing.wav"));
    EXPECT_TRUE(m_files.Paths().empty());
}

TEST_F(RecentFilesTest, TwoFilesWhoseNamesDifferInCaseAreTwoEntries)
{
    const auto lower = MakeFile("take.wav");
    const auto upper = MakeFile("TAKE.WAV");
    m_files.Add(lower);
    EXPECT_TRUE(m_files.Add(upper));
    EXPECT_EQ(m_files.Paths(), (Paths{upper, lower}));
}

TEST_F(RecentFilesTest, OneFileUnderTwoSpellingsIsOneEntry)
{
    const auto lower = MakeFile("take.wav");
    const auto upper = m_folder.Path() / "TAKE.WAV";
    std::filesystem::create_hard_link(lower, upper); // as a disk that ignores case shows it
    m_files.Add(MakeFile("other.wav"));
    m_files.Add(lower);
    EXPECT_FALSE(m_files.Add(upper));
    m_files.Add(MakeFile("third.wav"));
    EXPECT_TRUE(m_files.Add(upper));
    EXPECT_EQ(m_files.Paths().size(), 3U);
    EXPECT_EQ(m_files.Paths().front(), upper);
}

TEST_F(RecentFilesTest, AnEleventhFileDropsTheOldest)
{
    for (int i = 0; i < 11; ++i)
        m_files.Add(MakeFile(std::to_string(i)));
    ASSERT_EQ(m_files.Paths().size(), 10U);
    EXPECT_EQ(m_files.Paths().front().filename(), "10");
    EXPECT_EQ(m_files.Paths().back().filename(), "1");
}

TEST_F(RecentFilesTest, LoadingKeepsTheStoredEntriesThatAreFiles)
{
    const auto kept = MakeFile("a & b.wav");
    const auto last = MakeFile("last.wav");
    Store(1, m_folder.Path() / "deleted.wav");
    Store(2, kept);
    Store(4, m_folder.Path());
    Store(10, last);
    Store(11, MakeFile("beyond.wav"));
    m_files.Load(m_settings);
    EXPECT_EQ(m_files.Paths(), (Paths{kept, last}));
}

TEST_F(RecentFilesTest, SavingEmptiesThePositionsWithoutAFile)
{
    const auto only = MakeFile("only.wav");
    for (int position = 1; position <= 10; ++position)
        Store(position, "/stale");
    m_files.Add(only);
    m_files.Save(m_settings);
    EXPECT_EQ(Stored(1), only.string());
    for (int position = 2; position <= 10; ++position)
        EXPECT_EQ(Stored(position), "");
}

TEST_F(RecentFilesTest, TakingAnEntryRemovesIt)
{
    const auto first = MakeFile("first.wav");
    const auto second = MakeFile("second.wav");
    m_files.Add(first);
    m_files.Add(second);
    EXPECT_EQ(m_files.Take(2), std::filesystem::path());
    EXPECT_EQ(m_files.Take(1), first);
    EXPECT_EQ(m_files.Paths(), Paths{second});
}

TEST_F(RecentFilesTest, AHostWithoutSettingsLosesNothingElse)
{
    HostSettings none(nullptr);
    m_files.Load(none);
    EXPECT_TRUE(m_files.Add(MakeFile("a.wav")));
    m_files.Save(none);
}

} // namespace
} // namespace ek
