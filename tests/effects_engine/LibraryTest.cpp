// SPDX-License-Identifier: GPL-3.0-or-later
#include "TestEffects.h"
#include "support/TestFolder.h"

#include <gtest/gtest.h>

namespace ek::test {
namespace {

/// The nodes below one, on a line: "type:caption" and in brackets what is below.
std::string Shape(const CEffectNode& node)
{
    std::string text;
    for (const CEffectNode* child = node.FirstChild(); child; child = child->NextSibling()) {
        text += text.empty() ? "" : " ";
        text += std::to_string(child->GetType()) + ":" + child->GetCaption();
        if (child->FirstChild())
            text.append("(").append(Shape(*child)).append(")");
    }
    return text;
}

constexpr char Library[] = R"(<EffectsTree>
    <Folder Caption="Mine" Link="https://example.org/">
        <Complex Caption="Chain" Active="0">
            <Effect Library="test.gain" Caption="quiet" Active="0" Preset="0"><Parameter Name="Gain" Value="0.1"/></Effect>
            <Effect Library="gone.away" Caption="lost" State="abc"><Parameter Name="Depth" Value="3"/><Deep><Er/></Deep></Effect>
            <Complex Caption="Inner"><Effect Library="test.late" Caption="in"/></Complex>
            <Folder Caption="not here"/>
        </Complex>
        <Folder Caption="Kept" Editable="0"/>
        <Effect Library="test.later" Caption="renamed"/>
    </Folder>
    <Novelty Of="tomorrow"><What Ever="1"/></Novelty>
</EffectsTree>)";

class LibraryTest : public testing::Test {
protected:
    LibraryTest() { m_tree.AddProvider(MakeTestProvider()); }

    std::string SavedText(const CEffectTree& tree)
    {
        enXml xml("EffectsTree");
        tree.SaveTreeStruct(xml);
        EXPECT_TRUE(xml.SaveToFile(m_file));
        return ReadTextFile(m_file);
    }
    bool Build(CEffectTree& tree, std::string_view content)
    {
        WriteTextFile(m_file, content);
        enXml xml;
        xml.LoadFromFile(m_file);
        return tree.BuildTree(xml);
    }
    CEffectNode* Find(std::string_view caption)
    {
        CEffectNode* const root = &m_tree.GetRootNode();
        CEffectNode* node = root;
        while (node && node->GetCaption() != caption)
            node = node->NextInTree(root);
        return node;
    }
    std::string TreeShape() { return Shape(m_tree.GetRootNode()); }
    CEffectNode* Insert(const char* caption, NODE_TYPE type, CEffectNode* target)
    {
        std::unique_ptr<CEffectAbstract> effect;
        if (type == NodeComplex)
            effect = std::make_unique<CComplexEffect>(caption);
        auto* const node = new CEffectNode(caption, type, std::move(effect));
        EXPECT_EQ(m_tree.TransferNode(node, target), InsertedMoved);
        return node;
    }

    TestFolder m_folder;
    std::filesystem::path m_file = m_folder / "effects_editor.xml";
    CEffectTree m_tree{"Effects Library"};
};

TEST_F(LibraryTest, WhatIsNoLibraryLeavesOnlyTheRoot)
{
    for (const char* bad : {"", "no xml", "<EffectsTree><Folder>", "<Other><Folder Caption=\"a\"/></Other>"}) {
        EXPECT_FALSE(Build(m_tree, bad)) << bad;
        EXPECT_EQ(TreeShape(), "");
    }
    EXPECT_TRUE(Build(m_tree, "<EffectsTree/>"));
    EXPECT_EQ(m_tree.GetRootNode().GetType(), NodeRoot);
    EXPECT_EQ(m_tree.GetRootNode().GetCaption(), "Effects Library");
}

TEST_F(LibraryTest, ALibraryIsReadBeforeItsEffectsAreFoundAndTheRestIsAdded)
{
    ASSERT_TRUE(Build(m_tree, Library));
    EXPECT_EQ(TreeShape(), "2:Mine(3:Chain(5:quiet 5:lost 3:Inner(5:in) 5:not here) 2:Kept 5:renamed) 5:Novelty");
    m_tree.ScanAllVoiceMorphs();
    m_tree.ScanAllDirectXEffects();
    m_tree.ScanAllVSTEffects();
    EXPECT_TRUE(m_tree.GetLibraryEffects().empty()) << "the provider is of another family";
    const uint32_t id = Find("quiet")->GetId();
    m_tree.ScanAllSpecialEffects();
    m_tree.ScanAllSpecialEffects(); // a second time adds nothing
    EXPECT_EQ(TreeShape(), "2:Mine(3:Chain(6:quiet 5:lost 3:Inner(6:in) 5:not here) 2:Kept 4:renamed) 5:Novelty "
                           "2:Test(4:gain 4:late 4:stereo 4:monostereo 4:none 4:throws 4:twice)");
    CEffectNode* const quiet = m_tree.GetRootNode().FindNode(id);
    ASSERT_EQ(quiet, Find("quiet"));
    EXPECT_FALSE(quiet->GetEffect()->IsActive());
    EXPECT_EQ(quiet->GetEffect()->GetPresetIndex(), 0);
    EXPECT_EQ(quiet->GetSimpleEffect()->GetSettings().Values, std::vector{0.1F});
    EXPECT_FALSE(Find("Chain")->GetEffect()->IsActive());
    EXPECT_EQ(Find("Chain")->GetComplexEffect()->GetEffects().size(), 2u);
    EXPECT_EQ(Find("Mine")->GetLink(), "https://example.org/");
    EXPECT_FALSE(Find("Kept")->IsEditable());
}

TEST_F(LibraryTest, SavedAndReadAgainTheLibraryIsTheSameWhetherItsEffectsAreInstalledOrNot)
{
    CEffectTree withEffects("a");
    withEffects.AddProvider(MakeTestProvider());
    ASSERT_TRUE(Build(withEffects, Library));
    withEffects.ScanAllSpecialEffects();
    const std::string first = SavedText(withEffects);

    CEffectTree without("b");
    enXml xml;
    ASSERT_TRUE(xml.LoadFromFile(m_file));
    ASSERT_TRUE(without.BuildTree(xml));
    EXPECT_EQ(SavedText(without), first);

    ASSERT_TRUE(m_tree.BuildTree(xml));
    m_tree.ScanAllSpecialEffects();
    EXPECT_EQ(TreeShape(), Shape(withEffects.GetRootNode()));
    EXPECT_EQ(SavedText(m_tree), first);
}

TEST_F(LibraryTest, EachPlaceTakesWhatBelongsThere)
{
    ASSERT_TRUE(Build(m_tree, Library));
    m_tree.ScanAllSpecialEffects();
    const struct {
        const char* Target;
        std::vector<NODE_TYPE> Taken;
    } places[] = {{"Effects Library", {NodeFolder, NodeComplex, NodeLibraryEffect, NodeUnavailable}},
                  {"Mine", {NodeFolder, NodeComplex, NodeLibraryEffect, NodeUnavailable}},
                  {"Chain", {NodeComplex, NodeLibraryEffect, NodeUnavailable, NodeSubEffect}},
                  {"gain", {}},
                  {"quiet", {}},
                  {"lost", {}}};
    for (const auto& [target, taken] : places) {
        for (uint32_t type = NodeRoot; type <= NodeSubEffect; ++type) {
            const bool isTaken = std::find(taken.begin(), taken.end(), type) != taken.end();
            EXPECT_EQ(m_tree.CheckInsertion(Find(target), static_cast<NODE_TYPE>(type)), isTaken) << target << type;
        }
    }
    EXPECT_FALSE(m_tree.CheckInsertion(nullptr, NodeFolder));
    EXPECT_EQ(m_tree.CheckTransference(Find("Chain"), Find("Inner")), InsertImpossible) << "into itself";
    EXPECT_EQ(m_tree.CheckTransference(Find("Chain"), Find("Chain")), InsertImpossible);
    EXPECT_EQ(m_tree.CheckTransference(Find("quiet"), Find("Mine")), InsertImpossible) << "out of its chain";
    EXPECT_EQ(m_tree.CheckTransference(Find("gain"), Find("Mine")), InsertMove);
    EXPECT_EQ(m_tree.CheckTransference(Find("gain"), Find("Inner")), InsertCopy);
    EXPECT_EQ(m_tree.CheckTransference(&m_tree.GetRootNode(), Find("Mine")), InsertImpossible);
    EXPECT_EQ(m_tree.CheckTransference(nullptr, Find("Mine")), InsertImpossible);
    const std::string before = TreeShape();
    EXPECT_EQ(m_tree.TransferNode(Find("quiet"), Find("Mine")), InsertedNothing);
    EXPECT_EQ(m_tree.TransferNode(Find("gain"), Find("Mine"), nullptr, true), InsertedNothing);
    EXPECT_EQ(TreeShape(), before);
}

TEST_F(LibraryTest, NodesAreInsertedMovedAndRemoved)
{
    CEffectNode* const root = &m_tree.GetRootNode();
    CEffectNode* const a = Insert("a", NodeFolder, root);
    CEffectNode* const b = Insert("b", NodeFolder, root);
    CEffectNode* const c = Insert("c", NodeComplex, a);
    CEffectNode* const d = Insert("d", NodeFolder, a);
    EXPECT_EQ(TreeShape(), "2:a(3:c 2:d) 2:b");
    EXPECT_FALSE(m_tree.MoveUpNode(a) || m_tree.MoveDownNode(b) || m_tree.MoveUpNode(root) ||
                 m_tree.MoveDownNode(root));
    EXPECT_TRUE(m_tree.MoveDownNode(a));
    EXPECT_EQ(TreeShape(), "2:b 2:a(3:c 2:d)");
    EXPECT_TRUE(m_tree.MoveUpNode(d));
    EXPECT_EQ(TreeShape(), "2:b 2:a(2:d 3:c)");
    EXPECT_EQ(m_tree.TransferNode(a, b), InsertedMoved);
    EXPECT_EQ(m_tree.TransferNode(d, b, b->LastChild()), InsertedMoved);
    EXPECT_EQ(TreeShape(), "2:b(2:a(3:c) 2:d)");
    EXPECT_EQ(m_tree.TransferNode(d, b), InsertedNothing) << "it is the last one already";
    EXPECT_EQ(m_tree.TransferNode(d, b, a), InsertedNothing);
    EXPECT_EQ(m_tree.TransferNode(a, b, d), InsertedMoved);
    EXPECT_EQ(TreeShape(), "2:b(2:d 2:a(3:c))");
    EXPECT_EQ(m_tree.TransferNode(c, root, b), InsertedMoved);
    EXPECT_EQ(TreeShape(), "2:b(2:d 2:a) 3:c");

    const uint32_t id = a->GetId();
    EXPECT_TRUE(m_tree.RemoveNode(a, true));
    EXPECT_EQ(root->FindNode(id), nullptr);
    EXPECT_EQ(m_tree.TransferNode(a, root), InsertedMoved);
    EXPECT_EQ(root->FindNode(id), a) << "it is the same node still";
    EXPECT_TRUE(m_tree.RemoveNode(b, false));
    EXPECT_EQ(TreeShape(), "3:c 2:a");
    EXPECT_FALSE(m_tree.RemoveNode(root, false));
    EXPECT_GT(Insert("e", NodeFolder, a)->GetId(), d ? id : 0) << "no id is given twice";
}

TEST_F(LibraryTest, CopiesStandOnTheirOwn)
{
    ASSERT_TRUE(Build(m_tree, Library));
    m_tree.ScanAllSpecialEffects();
    CEffectNode* const root = &m_tree.GetRootNode();
    Find("Chain")->SetCaption("Renamed chain");
    EXPECT_EQ(Find("Renamed chain")->GetEffect()->GetTitle(), "Renamed chain");
    EXPECT_EQ(m_tree.TransferNode(Find("Mine"), root, Find("Mine"), true), InsertedCopy);
    CEffectNode* const copy = Find("Mine")->NextSibling();
    EXPECT_EQ(Shape(*copy), "3:Renamed chain(6:quiet 5:lost 3:Inner(6:in) 5:not here) 2:Kept")
        << "all but the library's own effect";
    CEffectNode* const chain = copy->FirstChild();
    EXPECT_NE(chain->GetId(), Find("Renamed chain")->GetId());
    EXPECT_EQ(chain->GetComplexEffect()->GetEffects().front(), chain->FirstChild()->GetEffect());
    EXPECT_EQ(chain->FirstChild()->GetSimpleEffect()->GetSettings(), Find("quiet")->GetSimpleEffect()->GetSettings());
    EXPECT_EQ(m_tree.TransferNode(Find("twice"), chain, chain->FirstChild()), InsertedCopy);
    EXPECT_EQ(Shape(*chain), "6:quiet 6:twice 5:lost 3:Inner(6:in) 5:not here");
    EXPECT_EQ(root->LastChild()->LastChild()->GetCaption(), "twice") << "the library offers it still";
    const std::string before = TreeShape();
    EXPECT_TRUE(m_tree.RemoveNode(copy, false));
    EXPECT_NE(TreeShape(), before);
    EXPECT_EQ(m_tree.TransferNode(Find("quiet"), Find("Inner")), InsertedMoved);
    EXPECT_EQ(Find("Inner")->GetComplexEffect()->GetEffects().size(), 2u);
    EXPECT_EQ(Find("Renamed chain")->GetComplexEffect()->GetEffects().size(), 1u);
}

TEST_F(LibraryTest, WhatTheLibraryOffersIsNotDeletedAndNothingAroundIt)
{
    ASSERT_TRUE(Build(m_tree, Library));
    m_tree.ScanAllSpecialEffects();
    for (const char* kept : {"Effects Library", "Mine", "renamed", "Test", "gain"}) {
        EXPECT_FALSE(m_tree.CheckDeletion(Find(kept))) << kept;
        EXPECT_FALSE(m_tree.RemoveNode(Find(kept), false)) << kept;
    }
    for (const char* deletable : {"quiet", "lost", "Inner", "Chain", "Kept", "Novelty"}) {
        EXPECT_TRUE(m_tree.CheckDeletion(Find(deletable))) << deletable;
        EXPECT_TRUE(m_tree.RemoveNode(Find(deletable), false)) << deletable;
    }
    EXPECT_FALSE(m_tree.CheckDeletion(nullptr));
}

TEST_F(LibraryTest, MenusNameTheEffectsWithTheirCommands)
{
    ASSERT_TRUE(Build(m_tree, R"(<EffectsTree><Folder Caption="F"><Complex Caption="C"><Complex Caption="no"/></Complex>
        </Folder><Folder Caption="empty"><Folder Caption="empty"/></Folder></EffectsTree>)"));
    m_tree.ScanAllSpecialEffects();
    const auto item = [&](const char* caption) {
        return std::to_string(MorphCommandFirst + Find(caption)->GetId()) + " " + caption;
    };
    const std::string inside = "[F: " + item("C") + "], [Test: " + item("gain") + ", " + item("late") + ", " +
                               item("later") + ", " + item("stereo") + ", " + item("monostereo") + ", " + item("none") +
                               ", " + item("throws") + ", " + item("twice") + "]";
    TextMenu children;
    m_tree.BuildMorphMenu(children, true);
    EXPECT_EQ(children.Text(), inside);
    TextMenu whole;
    m_tree.BuildMorphMenu(whole, false);
    EXPECT_EQ(whole.Text(), "[Effects Library: " + inside + "]");

    const std::string effects = "2024 gain, 2025 late, 2026 later, 2027 stereo, 2028 monostereo, 2029 none, "
                                "2030 throws, 2031 twice";
    TextMenu flat;
    m_tree.CreateSimpleEffectsMenu(flat, false);
    EXPECT_EQ(flat.Text(), effects);
    TextMenu inFolders;
    m_tree.CreateSimpleEffectsMenu(inFolders, true);
    EXPECT_EQ(inFolders.Text(), "[Test: " + effects + "]");

    for (uint32_t i = 0; i < 400; ++i)
        Insert("many", NodeComplex, &m_tree.GetRootNode());
    TextMenu full;
    m_tree.BuildMorphMenu(full, true);
    EXPECT_NE(full.Text().find("17500 many"), std::string::npos);
    EXPECT_EQ(full.Text().find("17501"), std::string::npos) << "that command is another's";
}

TEST_F(LibraryTest, SettingsAndPresetsStayWithinTheParameters)
{
    m_tree.ScanAllSpecialEffects();
    CSimpleEffect effect(m_tree.FindEffectByDllName("test.gain"));
    EXPECT_EQ(effect.GetSettings().Values, std::vector{1.0F});
    EXPECT_EQ(effect.GetPresetIndex(), NoPreset);
    EXPECT_TRUE(effect.LoadPreset(1));
    EXPECT_EQ(effect.GetSettings().Values, std::vector{4.0F}) << "cut to the parameter's limit";
    EXPECT_EQ(effect.GetPresetIndex(), 1);
    EffectSettings settings{{3}, "x"};
    EXPECT_FALSE(effect.LoadPreset(2) || effect.LoadPresetSettings(2, settings) || effect.LoadPreset(-2));
    EXPECT_EQ(settings, (EffectSettings{{3}, "x"}));
    EXPECT_TRUE(effect.LoadPresetSettings(0, settings));
    EXPECT_EQ(settings.Values, std::vector{0.5F});
    effect.SetPresetIndex(7);
    EXPECT_EQ(effect.GetPresetIndex(), NoPreset);
    effect.SetSettings({{NAN, 2, 3}, {}});
    EXPECT_EQ(effect.GetSettings().Values, std::vector{1.0F});
    effect.SetSettings({{-2.5F}, "state"});
    EXPECT_EQ(effect.GetSettings(), (EffectSettings{{-2.5F}, "state"}));
    effect.Initialize();
    EXPECT_EQ(effect.GetSettings(), effect.GetLibraryEffect()->InitialSettings());
    EXPECT_EQ(effect.CreateSettingsWindow(nullptr, settings, FloatFormat(2)), nullptr);
    EXPECT_FALSE(effect.HasHelp(nullptr));
    EXPECT_EQ(m_tree.FindEffectByDllName("test.unknown"), nullptr);
}

} // namespace
} // namespace ek::test
