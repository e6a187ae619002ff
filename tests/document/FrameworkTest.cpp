// SPDX-License-Identifier: GPL-3.0-or-later
#include "framework/DocTemplate.h"

#include <gtest/gtest.h>

namespace ek {
namespace {

class Target : public CCmdTarget {
public:
    int Runs = 0;
    uint32_t LastId = 0;
    bool Enabled = true;

    void Run() { ++Runs; }
    void RunOf(uint32_t id) { LastId = id; }
    void Update(CommandUi& ui) { ui.Enabled = Enabled; }

    std::span<const CommandEntry> CommandTable() const override
    {
        static constexpr CommandEntry table[] = {
            Command<Target, &Target::Run, &Target::Update>(10),
            CommandRange<Target, &Target::RunOf>(20, 29),
        };
        return table;
    }
};

TEST(CmdTarget, ACommandRunsOnlyWhileItsUpdateEnablesIt)
{
    Target target;
    EXPECT_TRUE(target.OnCmdMsg(10, CN_COMMAND, nullptr));
    target.Enabled = false;
    EXPECT_TRUE(target.OnCmdMsg(10, CN_COMMAND, nullptr));
    EXPECT_EQ(target.Runs, 1);
    CommandUi ui{.Id = 10};
    EXPECT_TRUE(target.OnCmdMsg(10, CN_UPDATE_COMMAND_UI, &ui));
    EXPECT_FALSE(ui.Enabled);
}

TEST(CmdTarget, ARangeIncludesItsLastIdAndNothingBeyond)
{
    Target target;
    EXPECT_TRUE(target.OnCmdMsg(29, CN_COMMAND, nullptr));
    EXPECT_EQ(target.LastId, 29U);
    EXPECT_FALSE(target.OnCmdMsg(30, CN_COMMAND, nullptr));
    EXPECT_FALSE(target.OnCmdMsg(19, CN_COMMAND, nullptr));
}

class PlainDocument : public CDocument {
public:
    bool Opens = true;
    bool OnOpenDocument(const std::filesystem::path&) override { return Opens; }
    bool OnSaveDocument(const std::filesystem::path&) override { return true; }
    bool DoSave() override { return true; }
    bool SaveAs() override { return true; }
    bool SaveModified() override { return true; }
};

struct Watcher : DocumentObserver {
    CDocument* Document = nullptr;
    int Calls = 0;
    bool LeavesWhenTold = false;

    void OnDocumentChanged(const DocumentChange&) override
    {
        ++Calls;
        if (LeavesWhenTold)
            Document->RemoveObserver(*this);
    }
};

TEST(Document, AnObserverMayLeaveWhileItIsTold)
{
    PlainDocument document;
    Watcher leaving{};
    leaving.Document = &document;
    leaving.LeavesWhenTold = true;
    Watcher staying;
    document.AddObserver(leaving);
    document.AddObserver(staying);
    document.SetModified(true);
    document.SetModified(false);
    EXPECT_EQ(leaving.Calls, 1);
    EXPECT_EQ(staying.Calls, 2);
}

TEST(DocTemplate, ADocumentThatRefusesOrCannotBeShownIsDropped)
{
    bool opens = false;
    CDocTemplate documents("\nPlain Kind\nPlain\n\n\nP.Document\nP Document", [&opens] {
        auto document = std::make_unique<PlainDocument>();
        document->Opens = opens;
        return document;
    });
    EXPECT_EQ(documents.DocumentName(), "Plain Kind");
    EXPECT_EQ(documents.OpenDocumentFile("a.wav"), nullptr);
    opens = true;
    CDocument* opened = documents.OpenDocumentFile("a.wav");
    ASSERT_NE(opened, nullptr);
    EXPECT_EQ(opened->Path(), "a.wav");
    documents.SetFrameMaker([](CDocument&) -> DocumentFrame* { return nullptr; });
    EXPECT_EQ(documents.OpenDocumentFile("b.wav"), nullptr);
    EXPECT_EQ(documents.Documents().size(), 1U);
    documents.CloseDocument(*opened);
    EXPECT_TRUE(documents.Documents().empty());
}

} // namespace
} // namespace ek
