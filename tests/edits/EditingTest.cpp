// SPDX-License-Identifier: GPL-3.0-or-later
#include "EditTest.h"
#include "app/EkEditorApp.h"
#include "support/CancelAt.h"

#include <utility>

namespace ek {
namespace {

/// What a document tells its views.
class Watcher final : public DocumentObserver {
public:
    explicit Watcher(CWEDoc& document) : m_document(document) { document.AddObserver(*this); }
    ~Watcher() { m_document.RemoveObserver(*this); }
    Watcher(const Watcher&) = delete;
    Watcher& operator=(const Watcher&) = delete;

    void OnDocumentChanged(const DocumentChange& change) override
    {
        if (change.What == DocumentChange::Kind::Reset)
            m_sounds.push_back("new " + std::to_string(change.NewLength));
        if (change.What == DocumentChange::Kind::Frames)
            m_sounds.push_back(std::to_string(change.StartFrame) + ": " + std::to_string(change.OldLength) + " -> " +
                               std::to_string(change.NewLength));
    }
    std::vector<std::string> Take() { return std::exchange(m_sounds, {}); }

private:
    CWEDoc& m_document;
    std::vector<std::string> m_sounds;
};

/// The captions of the progresses shown while it lives.
class Captions final : public ProgressPresenter {
public:
    Captions() { SetProgressPresenter(this); }
    ~Captions() override { SetProgressPresenter(nullptr); }
    Captions(const Captions&) = delete;
    Captions& operator=(const Captions&) = delete;

    WorkResult Show(CProgressDlg& progress) override
    {
        if (progress.Caption() != "Creating Draw Cache...")
            m_captions.push_back(progress.Caption() + (progress.IsCancellable() ? " (Cancel)" : ""));
        progress.Begin();
        const WorkResult result = progress.WaitResult();
        progress.End();
        return result;
    }
    std::vector<std::string> Take() { return std::exchange(m_captions, {}); }

private:
    std::vector<std::string> m_captions;
};

using Texts = std::vector<std::string>;

class EditingTest : public EditTest {
protected:
    EditingTest() { CopyAll(m_clip.Sound, MakePcm16Format(44100, 2)); }

    uint64_t m_start = 0;
    uint64_t m_end = 0;
    EditModel m_model = Noise(1, 2, 5000);
    const EditModel m_clip = Noise(2, 2, 1000);
    const std::unique_ptr<CWEDoc> m_document = MakeDocument(m_model);
};

TEST_F(EditingTest, ViewsAreToldWhatChangedAndTheSoundIsModified)
{
    Watcher watcher(*m_document);
    const auto expectTold = [&](bool done, const std::string& text) {
        EXPECT_TRUE(done);
        EXPECT_EQ(watcher.Take(), Texts{text});
        EXPECT_TRUE(m_document->IsModified());
        m_document->SetModified(false);
    };
    m_start = 100, m_end = 500;
    expectTold(m_document->Paste(m_start, m_end, ChannelAll), "100: 400 -> 1000");
    expectTold(m_document->PasteMix(m_start = 5000, m_end, ChannelAll), "5000: 600 -> 1000");
    expectTold(m_document->Delete(10, 30, ChannelAll), "10: 20 -> 0");
    expectTold(m_document->Delete(10, 30, ChannelLeft), "10: 20 -> 20");
    expectTold(m_document->Undo(m_start, m_end), "10: 20 -> 20");
    expectTold(m_document->Undo(m_start, m_end), "10: 0 -> 20");
    expectTold(m_document->Undo(m_start, m_end), "5000: 1000 -> 600");
    expectTold(m_document->Redo(m_start, m_end), "5000: 600 -> 1000");
    EXPECT_TRUE(m_document->Copy(0, 10, ChannelAll));
    EXPECT_TRUE(watcher.Take().empty());
    EXPECT_FALSE(m_document->IsModified());
}

TEST_F(EditingTest, EachStepShowsItsCaption)
{
    Captions captions;
    ASSERT_TRUE(m_document->Copy(0, 200, ChannelAll));
    EXPECT_EQ(captions.Take(), Texts{"Copying Sound Block (Cancel)"});
    m_end = 100;
    ASSERT_TRUE(m_document->Paste(m_start, m_end, ChannelAll));
    EXPECT_EQ(captions.Take(), (Texts{"Storing Undo... (Cancel)", "Pasting... (Cancel)"}));
    ASSERT_TRUE(m_document->PasteMix(m_start, m_end, ChannelAll));
    EXPECT_EQ(captions.Take(), Texts{"Paste-Mixing... (Cancel)"});
    ASSERT_TRUE(m_document->Undo(m_start, m_end));
    EXPECT_EQ(captions.Take(), (Texts{"Storing Redo... (Cancel)", "Undoing..."}));
    ASSERT_TRUE(m_document->Redo(m_start, m_end));
    EXPECT_EQ(captions.Take(), (Texts{"Storing Undo... (Cancel)", "Redoing..."}));
    ASSERT_TRUE(m_document->Delete(0, 100, ChannelAll));
    EXPECT_EQ(captions.Take()[0], "Storing Undo... (Cancel)");
    ASSERT_TRUE(m_document->Delete(0, 100, ChannelRight));
    EXPECT_TRUE(captions.Take()[0].starts_with("Deleting..."));
}

TEST_F(EditingTest, WhatTheSoundDoesNotHaveIsRefusedAndNothingHappens)
{
    const auto copied = ClipboardValues();
    EXPECT_FALSE(m_document->Delete(7, 7, ChannelAll));
    EXPECT_FALSE(m_document->Delete(0, 5001, ChannelAll));
    EXPECT_FALSE(m_document->Delete(8, 7, ChannelLeft));
    EXPECT_FALSE(m_document->Copy(0, 10, ChannelSideLeft));
    EXPECT_FALSE(m_document->Copy(10, 5001, ChannelAll));
    EXPECT_FALSE(m_document->PasteMix(m_start = 5001, m_end = 7, ChannelAll));
    EXPECT_EQ(m_end, 7U);
    EXPECT_FALSE(m_document->Undo(m_start, m_end));
    EXPECT_FALSE(m_document->Redo(m_start, m_end));
    EXPECT_FALSE(m_document->RollBack());
    EXPECT_EQ(ClipboardValues(), copied);
    ASSERT_TRUE(m_document->Copy(7, 7, ChannelAll));
    EXPECT_TRUE(CWEDoc::IsClipboardEmpty());
    EXPECT_FALSE(m_document->Paste(m_start = 0, m_end, ChannelAll));
    EXPECT_FALSE(m_document->PasteMix(m_start, m_end, ChannelAll));
    EXPECT_FALSE(m_document->IsModified());
    ExpectSame(*m_document, m_model);
}

TEST_F(EditingTest, ADocumentWithoutSoundBecomesThePastedOne)
{
    for (const auto paste : {&CWEDoc::Paste, &CWEDoc::PasteMix}) {
        CWEDoc document;
        EXPECT_FALSE(document.Copy(0, 0, ChannelAll));
        Watcher watcher(document);
        ASSERT_TRUE((document.*paste)(m_start = 0, m_end = 0, ChannelAll));
        EXPECT_EQ(watcher.Take(), Texts{"new 1000"});
        EXPECT_TRUE(document.IsReady() && document.IsModified());
        EXPECT_EQ(document.Format(), SoundClipboard().Format);
        EXPECT_EQ(m_end, 1000U);
        ExpectSameSound(document.Store(), m_clip.Sound);
        ASSERT_TRUE(document.Undo(m_start, m_end));
        EXPECT_EQ(document.FrameCount(), 0U);
        ASSERT_TRUE(document.Redo(m_start, m_end));
        ExpectSameSound(document.Store(), m_clip.Sound);
        ExpectSamePeaks(document.Store(), m_clip.Sound);
    }
}

TEST_F(EditingTest, ADocumentWithoutSoundStaysSoWhenThePasteIsCancelled)
{
    // The kept frames, of which there are none, then the pasted ones: more than fit into one file.
    CopyAll(Noise(3, 2, TempFileList::LargestFile / 3).Sound, MakePcm16Format(44100, 2));
    CWEDoc document;
    Watcher watcher(document);
    {
        const CancelAt cancel(".eke", 3);
        EXPECT_FALSE(document.Paste(m_start, m_end, ChannelAll));
    }
    EXPECT_FALSE(document.IsReady() || document.IsModified() || document.CanUndo());
    EXPECT_TRUE(watcher.Take().empty());
    EXPECT_TRUE(m_prompts.Messages().empty());
    ASSERT_TRUE(document.Paste(m_start, m_end, ChannelAll));
    EXPECT_EQ(document.FrameCount(), SoundClipboard().FrameCount);
}

TEST_F(EditingTest, AStoredUndoTakesBackAnEditInPlaceOrOneThatChangesTheLengthOfAChannel)
{
    ASSERT_TRUE(m_document->StoreUndo(100, 50, 150, "In place", ChannelLeft));
    ASSERT_TRUE(m_document->Store().ClearFrames(100, 50, ChannelLeft, "", false, nullptr));
    ASSERT_TRUE(m_document->RollBack());
    ExpectSame(*m_document, m_model);

    ASSERT_TRUE(m_document->StoreUndo(4900, 100, 5100, "Longer", ChannelLeft));
    std::vector<int16_t> longer = MakeRamp(200);
    const SoundBuffer block{ChannelLeft, MakeOneChannelFormat(m_document->Format()),
                            reinterpret_cast<uint8_t*>(longer.data()), 200, 0};
    uint64_t end = 5000;
    ASSERT_EQ(m_document->Store().ReplaceFrames(4900, end, block, ChannelLeft, false, ""), WorkResult::Finished);
    EXPECT_EQ(m_document->UndoStack().FillUndoList(), Texts{"Longer"});
    ASSERT_TRUE(m_document->Undo(m_start, m_end));
    EXPECT_EQ(m_end, 5000U);
    ExpectSameSound(m_document->Store(), m_model.Sound);
    EXPECT_FALSE(m_document->StoreUndo(4999, 2, 5000, "Beyond", ChannelAll));
}

TEST_F(EditingTest, AnotherSoundOrNoneEndsTheHistoryAndItsFilesVanish)
{
    const auto other = MakeDocument(m_clip);
    const auto edit = [&] { return m_document->Delete(0, 10, ChannelAll); };
    ASSERT_TRUE(edit() && m_document->OpenFromStore(other->Store()));
    EXPECT_FALSE(m_document->CanUndo());
    ASSERT_TRUE(edit() && m_document->Undo(m_start, m_end));
    m_document->DeleteContents();
    EXPECT_FALSE(m_document->CanRedo());
    EXPECT_EQ(m_folder.TempFileCount(), FilesOf(*m_document) + other->Store().TempFiles().size());
}

TEST_F(EditingTest, TheApplicationTakesTheClipboardWithIt)
{
    {
        const CEkEditorApp app;
    }
    EXPECT_TRUE(CWEDoc::IsClipboardEmpty());
    EXPECT_EQ(m_folder.TempFileCount(), FilesOf(*m_document));
}

} // namespace
} // namespace ek
