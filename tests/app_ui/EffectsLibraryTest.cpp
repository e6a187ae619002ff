// SPDX-License-Identifier: GPL-3.0-or-later
#include "FrameFixture.h"

#include "debugmanager/DebugManager.h"
#include "effectmanager/EffectTree.h"
#include "framework/ui/CommandActions.h"
#include "platform/Paths.h"

#include <gmock/gmock.h>

namespace ek {
namespace {

using testing::ElementsAre;

class EffectsLibraryTest : public FrameFixture {
protected:
    Names LinesOf(const std::function<void()>& work)
    {
        enDebugManager().CollectLines();
        enDebugManager().TakeLines();
        work();
        Names texts;
        for (const CDebugManager::Line& line : enDebugManager().TakeLines()) {
            if (line.Source == ModuleName)
                texts.push_back(line.Text);
        }
        return texts;
    }
    void NewFrame() { m_frame = new CMainFrame(m_page, m_app, &m_host); }
    void DeleteFrame() { delete m_frame; }

    std::filesystem::path m_library = GetLanguageFilePath("Language", "effects_editor.xml");
};

TEST_F(EffectsLibraryTest, TheFrameKeepsTheLibraryFromRunToRunAndLogsItsSteps)
{
    ASSERT_NE(m_frame->GetEffectTree(), nullptr);
    EXPECT_EQ(m_frame->GetEffectTree()->GetRootNode().GetCaption(), "Effects Library");
    EXPECT_EQ(m_frame->Player(), m_host.GetPlayer());
    auto* const folder = new CEffectNode("Mine", NodeFolder);
    m_frame->GetEffectTree()->TransferNode(folder, &m_frame->GetEffectTree()->GetRootNode());
    EXPECT_THAT(LinesOf([this] { DeleteFrame(); }),
                ElementsAre("Deleting effect trees...", "Deleting effect trees finished"));
    EXPECT_THAT(LinesOf([this] { NewFrame(); }),
                ElementsAre("Effects tree creation started...", "Scanning for the rest Voice Morphs...",
                            "Scanning for the rest Special Effects...", "Scanning for the rest DirectX Effects...",
                            "Scanning for the rest VST Effects...", "Effects tree creation finished..."));
    const CEffectNode* const first = m_frame->GetEffectTree()->GetRootNode().FirstChild();
    ASSERT_NE(first, nullptr);
    EXPECT_EQ(first->GetCaption(), "Mine");
}

TEST_F(EffectsLibraryTest, TheMorphMenuOffersTheEffectsOfTheLibraryAndTheChosenOneIsInUse)
{
    const auto popup = [this] {
        EXPECT_EQ(SubMenu(3)->actions().size(), 1);
        EXPECT_EQ(SubMenu(3)->actions().front()->text(), "Editor Special Effects");
        return SubMenu(3)->actions().front();
    };
    EXPECT_FALSE(popup()->isEnabled());
    DeleteFrame();
    WriteTextFile(m_library,
                  "<EffectsTree><Folder Caption=\"F\"><Complex Caption=\"a &amp; b\"/></Folder></EffectsTree>");
    NewFrame();
    ASSERT_TRUE(popup()->isEnabled());
    const QAction* folder = popup()->menu()->actions().front();
    EXPECT_EQ(folder->text(), "F");
    const QAction* effect = folder->menu()->actions().front();
    EXPECT_EQ(effect->text(), "a && b");

    CEffectTree& tree = *m_frame->GetEffectTree();
    CEffectNode* const node = tree.GetRootNode().FirstChild()->FirstChild();
    const uint32_t command = CommandOf(*effect);
    EXPECT_EQ(command, ID_MORPH_FIRST + node->GetId());
    EXPECT_TRUE(Run(command));
    EXPECT_EQ(tree.GetSoundMorphEffect(), node->GetEffect());
    emit folder->menu()->aboutToShow();
    EXPECT_TRUE(effect->isEnabled() && effect->isChecked());
    Run(command);
    EXPECT_EQ(tree.GetSoundMorphEffect(), nullptr) << "chosen again";
    EXPECT_TRUE(tree.RemoveNode(node, false));
    EXPECT_FALSE(IsEnabled(command));
    Run(command);
}

TEST_F(EffectsLibraryTest, AFileThatIsNoLibraryIsReportedAndNotWrittenOver)
{
    for (const char* content : {"<EffectsTree><Folder Caption=\"damaged\">", "<Other/>"}) {
        DeleteFrame();
        WriteTextFile(m_library, content);
        const std::string reason = "Error: Failed to read the effects library \"" + m_library.string() + "\".";
        EXPECT_THAT(LinesOf([this] { NewFrame(); }), testing::Contains(reason));
        EXPECT_EQ(m_frame->GetEffectTree()->GetRootNode().FirstChild(), nullptr);
        DeleteFrame();
        EXPECT_EQ(ReadTextFile(m_library), content);
    }
}

TEST_F(EffectsLibraryTest, ALibraryThatCannotBeWrittenIsReported)
{
    std::filesystem::create_directories(m_library.parent_path().parent_path());
    WriteTextFile(m_library.parent_path(), "a file where the folder should be");
    const std::string reason = "Error: Failed to write the effects library \"" + m_library.string() + "\".";
    EXPECT_THAT(LinesOf([this] { DeleteFrame(); }), testing::Contains(reason));
}

} // namespace
} // namespace ek
