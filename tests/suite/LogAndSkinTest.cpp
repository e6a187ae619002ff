// SPDX-License-Identifier: GPL-3.0-or-later
#include "debugmanager/DebugManager.h"
#include "skinmanager/SkinColors.h"
#include "support/TestFolder.h"

#include <gtest/gtest.h>
#include <set>

namespace ek::test {
namespace {

class LogTest : public testing::Test {
protected:
    std::string Content() const { return ReadTextFile(m_log); }

    TestFolder m_folder;
    ScopedVariable m_state{"XDG_STATE_HOME", m_folder.Path().c_str()};
    std::filesystem::path m_log = m_folder / "ek-wave-editor" / "editor.log";
    CDebugManager m_manager;
};

TEST_F(LogTest, ALineHoldsSourceLevelAndText)
{
    EXPECT_FALSE(std::filesystem::exists(m_log)) << "nothing was said yet";
    m_manager.WriteLogMessage("Source", LogError, "Error! Position: %I64x {} %s", uint64_t{0x123456789A}, "x");
    m_manager.WriteLogMessage("Source", LogTree, "tree");
    m_manager.WriteLogMessage("Source", "plain %d", 5);
    m_manager.WriteLogMessage("Source", "Can't open %s", "two\nlines\r\x1B\xC3\xA9");
    const std::string content = Content();
    EXPECT_NE(content.find(" error Source: Error! Position: 123456789a {} x\n"), std::string::npos) << content;
    EXPECT_NE(content.find(" Source: tree\n"), std::string::npos) << content;
    EXPECT_NE(content.find(" info Source: plain 5\n"), std::string::npos) << content;
    EXPECT_NE(content.find(" Source: Can't open two\\nlines\\x0D\\x1B\xC3\xA9\n"), std::string::npos) << content;
}

TEST_F(LogTest, WritersShareOneFileWhoeverRotatesItAndItsSizeIsBounded)
{
    CDebugManager other;
    for (int i = 0; i < 100; ++i) {
        const std::string text = std::to_string(i) + std::string(100000, 'x');
        (i % 3 == 0 ? other : m_manager).WriteLogMessage("Source", LogInformation, "%s", text.c_str());
        EXPECT_TRUE(Content().ends_with(" Source: " + text + "\n")) << i;
    }
    int files = 0;
    for (const auto& entry : std::filesystem::directory_iterator(m_log.parent_path())) {
        ++files;
        EXPECT_LE(entry.file_size(), uintmax_t{2} << 20);
    }
    EXPECT_EQ(files, 3);
}

TEST_F(LogTest, ALogThatCannotBeOpenedDisturbsNobody)
{
    WriteTextFile(m_folder / "ek-wave-editor", "a file where the folder would be");
    m_manager.CollectLines();
    m_manager.WriteLogMessage("Source", LogError, "first");
    m_manager.WriteLogMessage("Source", "second");
    const std::vector<CDebugManager::Line> lines = m_manager.TakeLines();
    ASSERT_EQ(lines.size(), 2u);
    EXPECT_EQ(lines[0].Text, "first");
    EXPECT_EQ(lines[0].Level, LogError);
    EXPECT_EQ(lines[1].Level, LogInformation);
    EXPECT_TRUE(m_manager.TakeLines().empty());
}

TEST(SkinColorsTest, NamesAndIdsAreOneToOne)
{
    std::set<uint32_t> ids;
    for (const SkinColorName& color : SkinColorNames()) {
        EXPECT_TRUE(color.Name.starts_with("COLOR_"));
        EXPECT_EQ(SkinColorId(color.Name), color.Id);
        ids.insert(color.Id);
    }
    EXPECT_EQ(ids.size(), 38u);
    EXPECT_FALSE(ids.contains(25));
    EXPECT_EQ(SkinColorId("color_editor_wave_hor_lines"), COLOR_EDITOR_WAVE_HOR_LINES);
    EXPECT_EQ(SkinColorId("COLOR_WINDOWTEXT"), 8u);
    EXPECT_EQ(SkinColorId("COLOR_NONE"), std::nullopt);
    EXPECT_EQ(DefaultSkinColor(25), 0u);
}

} // namespace
} // namespace ek::test
