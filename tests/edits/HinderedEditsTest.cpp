// SPDX-License-Identifier: GPL-3.0-or-later
#include "EditTest.h"
#include "debugmanager/DebugManager.h"
#include "support/CancelAt.h"
#include "support/FailingAllocation.h"
#include "support/FaultyFileCalls.h"

#include <atomic>
#include <cerrno>

namespace ek {
namespace {

enum class Kind { Paste, Mix, Delete, Undo, Redo };

struct Operation {
    const char* Name;
    Kind What;
    uint32_t Channel;
    uint64_t Start;
    uint64_t End;
};

std::ostream& operator<<(std::ostream& out, const Operation& operation)
{
    return out << operation.Name;
}

/// Presses Cancel at the n-th reading of a file while a progress is shown: in the same chunk every time.
class CancelAtRead : public ProgressPresenter, public FileCalls {
public:
    explicit CancelAtRead(int nth) : m_nth(nth), m_installed(*this) { SetProgressPresenter(this); }
    ~CancelAtRead() override { SetProgressPresenter(nullptr); }
    CancelAtRead(const CancelAtRead&) = delete;
    CancelAtRead& operator=(const CancelAtRead&) = delete;

    WorkResult Show(CProgressDlg& progress) override
    {
        m_progress = &progress;
        progress.Begin();
        const WorkResult result = progress.WaitResult();
        m_progress = nullptr;
        progress.End();
        return result;
    }
    ssize_t PRead(int descriptor, void* buffer, size_t length, off_t position) override
    {
        CProgressDlg* const progress = m_progress;
        if (progress && ++m_count == m_nth)
            progress->Cancel();
        return FileCalls::PRead(descriptor, buffer, length, position);
    }
    bool IsReached() const { return m_count >= m_nth; }

private:
    const int m_nth;
    std::atomic<int> m_count = 0;
    std::atomic<CProgressDlg*> m_progress = nullptr;
    ScopedFileCalls m_installed;
};

/// A document with a history in both directions, and an edit that something comes in the way of.
class HinderedEdit : public EditTest, public testing::WithParamInterface<Operation> {
protected:
    /// All lengths and positions are so many times those of the operation.
    void Prepare(uint64_t scale = 1)
    {
        m_operation = GetParam();
        m_start = m_operation.Start *= scale;
        m_end = m_operation.End *= scale;
        m_model = Noise(1, 2, 30000 * scale);
        m_document = MakeDocument(m_model);
        SetClipboard(500 * scale, All);
        for (const uint64_t frame : {2000 * scale, 21000 * scale, 27000 * scale}) {
            uint64_t start = frame;
            uint64_t end = frame + 1000 * scale;
            ASSERT_TRUE(m_document->Paste(start, end, ChannelAll));
            m_model.Paste(All, frame, frame + 1000 * scale, ClipboardValues());
        }
        uint64_t start = 0;
        uint64_t end = 0;
        ASSERT_TRUE(m_document->Undo(start, end));
        m_model.Undo();
        SetClipboard(10000 * scale, m_operation.Channel);
        ASSERT_TRUE(m_document->Store().FlushPages());
        m_document->SetModified(false);
        m_messages = m_prompts.Messages().size();
    }
    void SetClipboard(uint64_t frames, uint32_t channel)
    {
        const WAVEFORMATEXTENSIBLE& format = m_document->Format();
        ASSERT_TRUE(SoundClipboard().Create(frames, channel == All ? format : MakeOneChannelFormat(format),
                                            MakeNoise(7, frames * 2).data(), CodeOf(*m_document, channel)));
    }
    bool Run()
    {
        const ChannelCode code = CodeOf(*m_document, m_operation.Channel);
        switch (m_operation.What) {
        case Kind::Paste:
            return m_document->Paste(m_start, m_end, code);
        case Kind::Mix:
            return m_document->PasteMix(m_start, m_end, code);
        case Kind::Delete:
            return m_document->Delete(m_start, m_end, code);
        case Kind::Undo:
            return m_document->Undo(m_start, m_end);
        default:
            return m_document->Redo(m_start, m_end);
        }
    }
    void Apply()
    {
        switch (m_operation.What) {
        case Kind::Paste:
            return m_model.Paste(m_operation.Channel, m_operation.Start, m_operation.End, ClipboardValues());
        case Kind::Mix:
            return m_model.Mix(m_operation.Channel, m_operation.Start, ClipboardValues());
        case Kind::Delete: // one channel may be silent up to where it was cancelled
            return m_model.Delete(m_operation.Channel, m_operation.Start,
                                  m_operation.Channel == All ? m_operation.End
                                                             : m_document->UndoStack().UndoBlock().RangeEnd(),
                                  "Deleting...");
        case Kind::Undo:
            return (void)m_model.Undo();
        default:
            return (void)m_model.Redo();
        }
    }
    /// A done edit is done, one that is not has touched nothing; the history leads back and forth in either case.
    void ExpectDoneOrUntouched(bool done)
    {
        if (done)
            Apply();
        else
            EXPECT_TRUE(m_start == m_operation.Start && m_end == m_operation.End);
        EXPECT_EQ(m_document->IsModified(), done);
        if (done && m_document->Store().Peaks().IsEmpty()) { // they could not be computed, which is no failure
            ASSERT_TRUE(m_document->Store().BuildPeakCache());
        }
        ASSERT_NO_FATAL_FAILURE(ExpectSame(*m_document, m_model));
        EXPECT_EQ(m_folder.TempFileCount(), FilesOf(*m_document));
        ASSERT_NO_FATAL_FAILURE(ExpectSoundHistory());
    }
    void ExpectSoundHistory()
    {
        const size_t done = m_model.Done;
        uint64_t start = 0;
        uint64_t end = 0;
        for (; m_model.Done > 0; m_model.Undo())
            ASSERT_TRUE(m_document->Undo(start, end));
        ASSERT_NO_FATAL_FAILURE(ExpectSame(*m_document, m_model));
        for (; m_model.Done < m_model.Steps.size(); m_model.Redo())
            ASSERT_TRUE(m_document->Redo(start, end));
        ASSERT_NO_FATAL_FAILURE(ExpectSame(*m_document, m_model));
        for (; m_model.Done > done; m_model.Undo())
            ASSERT_TRUE(m_document->Undo(start, end));
        ASSERT_NO_FATAL_FAILURE(ExpectSame(*m_document, m_model));
    }
    void FailEachCall(uint32_t kinds, bool lasting);

    Operation m_operation{};
    EditModel m_model;
    std::unique_ptr<CWEDoc> m_document;
    size_t m_messages = 0;
    uint64_t m_start = 0;
    uint64_t m_end = 0;
};

/// What a disk that is bad or full does. A file that cannot be deleted stays, whoever it belongs to.
constexpr uint32_t FullDisk =
    FaultyFileCalls::Opens | FaultyFileCalls::Writes | FaultyFileCalls::Allocations | FaultyFileCalls::Copies;
constexpr uint32_t BadDisk = FullDisk | FaultyFileCalls::Reads | FaultyFileCalls::Truncations |
                             FaultyFileCalls::Queries | FaultyFileCalls::Mappings;

void HinderedEdit::FailEachCall(uint32_t kinds, bool lasting)
{
    FaultyFileCalls calls(".eke", kinds);
    size_t refused = 0;
    for (uint64_t nth = 1;; ++nth) {
        SCOPED_TRACE(testing::Message() << "fault " << nth);
        ASSERT_NO_FATAL_FAILURE(Prepare());
        if (lasting)
            calls.FailFrom(nth, ENOSPC);
        else
            calls.FailCall(nth, EIO);
        const bool done = Run();
        const bool failed = calls.HasFailed();
        calls.StopFailing();
        const size_t told = m_prompts.Messages().size() - m_messages;
        ASSERT_EQ(told, done ? 0U : 1U);
        if (told == 1) {
            EXPECT_EQ(m_prompts.Icons().back(), MessageIcon::Error);
            EXPECT_NE(m_prompts.Messages().back().find(m_folder.TempPath().string()), std::string::npos);
        }
        ASSERT_NO_FATAL_FAILURE(ExpectDoneOrUntouched(done));
        refused += done ? 0 : 1;
        if (!failed) {
            EXPECT_TRUE(done);
            EXPECT_GT(refused, 0U);
            return;
        }
    }
}

TEST_P(HinderedEdit, IsDoneOrNotBegunWhicheverFileCallFails)
{
    FailEachCall(BadDisk, false);
}

TEST_P(HinderedEdit, IsRefusedWhereverTheDiskBecomesFull)
{
    FailEachCall(FullDisk, true);
}

TEST_P(HinderedEdit, IsDoneOrNotBegunWhicheverAllocationFails)
{
    bool failed = true;
    for (uint64_t nth = 0; failed; ++nth) {
        SCOPED_TRACE(testing::Message() << "allocation " << nth);
        ASSERT_NO_FATAL_FAILURE(Prepare());
        bool done = false;
        {
            const FailingAllocation allocation(nth);
            done = Run();
            failed = allocation.HasFailed();
        }
        ASSERT_EQ(m_prompts.Messages().size() - m_messages, done ? 0U : 1U);
        ASSERT_NO_FATAL_FAILURE(ExpectDoneOrUntouched(done));
        ASSERT_TRUE(done || failed);
    }
}

TEST_P(HinderedEdit, IsDoneOrNotBegunWhereverItIsCancelled)
{
    const auto expectRight = [this](const ProgressPresenter&) {
        const bool done = Run();
        SetProgressPresenter(nullptr);
        EXPECT_EQ(m_prompts.Messages().size(), m_messages);
        ExpectDoneOrUntouched(done);
    };
    for (int file = 1; file <= 3 && !HasFailure(); ++file) {
        Prepare(10);
        expectRight(CancelAt(".eke", file, CancelAt::Call::Write));
    }
    for (int nth = 1, reached = 1; reached != 0 && !HasFailure(); ++nth) {
        Prepare();
        CancelAtRead cancel(nth);
        expectRight(cancel);
        reached = cancel.IsReached();
    }
}

INSTANTIATE_TEST_SUITE_P(Each, HinderedEdit,
                         testing::Values(Operation{"PasteLonger", Kind::Paste, SoundModel::AllChannels, 9000, 9100},
                                         Operation{"PasteShorter", Kind::Paste, SoundModel::AllChannels, 1000, 28000},
                                         Operation{"PasteOnAChannelAtTheEnd", Kind::Paste, 0, 28000, 29000},
                                         Operation{"PasteInAChannel", Kind::Paste, 1, 1000, 28000},
                                         Operation{"Mix", Kind::Mix, SoundModel::AllChannels, 100, 7},
                                         Operation{"MixInAChannelBeyondTheEnd", Kind::Mix, 0, 22000, 7},
                                         Operation{"Delete", Kind::Delete, SoundModel::AllChannels, 5000, 20000},
                                         Operation{"Silence", Kind::Delete, 1, 5000, 25000},
                                         Operation{"Undo", Kind::Undo, SoundModel::AllChannels, 1, 2},
                                         Operation{"Redo", Kind::Redo, SoundModel::AllChannels, 1, 2}),
                         [](const auto& info) { return info.param.Name; });

/// The clipboard holds 100 frames of a document of 30,000.
class HinderedCopy : public EditTest {
protected:
    void CopyShort()
    {
        ASSERT_TRUE(m_document->Copy(0, 100, ChannelAll));
        ASSERT_TRUE(m_document->Store().FlushPages());
        m_messages = m_prompts.Messages().size();
    }
    /// Nothing is lost and nothing left over, and what went wrong was told once.
    void ExpectCopied(bool copied, uint64_t otherwise, bool told)
    {
        ASSERT_EQ(SoundClipboard().FrameCount, copied ? 30000U : otherwise);
        ASSERT_EQ(m_prompts.Messages().size() - m_messages, told ? 1U : 0U);
        ASSERT_EQ(m_folder.TempFileCount(), FilesOf(*m_document));
        ExpectSame(*m_document, m_model);
    }

    const EditModel m_model = Noise(1, 2, 30000);
    const std::unique_ptr<CWEDoc> m_document = MakeDocument(m_model);
    size_t m_messages = 0;
};

TEST_F(HinderedCopy, KeepsTheOldSoundWhicheverFileCallFailsOrWhereverItIsCancelled)
{
    FaultyFileCalls calls(".eke", BadDisk);
    bool failed = true;
    for (uint64_t nth = 1; failed; ++nth) {
        SCOPED_TRACE(testing::Message() << "fault " << nth);
        ASSERT_NO_FATAL_FAILURE(CopyShort());
        calls.FailCall(nth, EIO);
        const bool copied = m_document->Copy(0, 30000, ChannelLeft);
        failed = calls.HasFailed();
        calls.StopFailing();
        ASSERT_NO_FATAL_FAILURE(ExpectCopied(copied, 100, !copied));
        ASSERT_TRUE(copied || failed);
    }
    for (int nth = 1, reached = 1; reached != 0; ++nth) {
        ASSERT_NO_FATAL_FAILURE(CopyShort());
        const CancelAtRead cancel(nth);
        const bool copied = m_document->Copy(0, 30000, ChannelAll);
        reached = cancel.IsReached();
        ASSERT_NO_FATAL_FAILURE(ExpectCopied(copied, 100, false));
        ASSERT_NE(copied, reached);
    }
}

TEST_F(HinderedCopy, KeepsTheOldSoundWhicheverAllocationFails)
{
    bool failed = true;
    for (uint64_t nth = 0; failed; ++nth) {
        SCOPED_TRACE(testing::Message() << "allocation " << nth);
        ASSERT_NO_FATAL_FAILURE(CopyShort());
        bool copied = false;
        {
            const FailingAllocation allocation(nth);
            copied = m_document->Copy(0, 30000, ChannelAll);
            failed = allocation.HasFailed();
        }
        ASSERT_NO_FATAL_FAILURE(ExpectCopied(copied, 100, !copied));
        ASSERT_TRUE(copied || failed);
    }
}

TEST_F(HinderedCopy, GivesUpTheOldSoundOnlyWhereThereIsNoRoomForBothAndSaysSo)
{
    struct RoomForOneSound : CancelAtRead {
        using CancelAtRead::CancelAtRead;
        int FAllocate(int descriptor, off_t size) override
        {
            return Full || SoundClipboard().Data ? ENOSPC : FileCalls::FAllocate(descriptor, size);
        }
        bool Full = false;
    };
    CopyShort();
    {
        RoomForOneSound disk(1);
        ASSERT_FALSE(m_document->Copy(0, 30000, ChannelAll));
    }
    ASSERT_NO_FATAL_FAILURE(ExpectCopied(false, 0, true));
    EXPECT_EQ(m_prompts.Messages().back(), "The clipboard is empty now.");
    CopyShort();
    RoomForOneSound disk(1000);
    EXPECT_TRUE(m_document->Copy(0, 30000, ChannelAll));
    ASSERT_NO_FATAL_FAILURE(ExpectCopied(true, 0, false));
    disk.Full = true;
    EXPECT_FALSE(m_document->Copy(0, 30000, ChannelAll));
    ASSERT_NO_FATAL_FAILURE(ExpectCopied(false, 0, true));
    EXPECT_TRUE(m_prompts.Messages().back().ends_with(" The clipboard is empty now."));
}

TEST_F(HinderedCopy, ABlockNamesNoFileWhileItHasNoneAndTheLogSaysWhy)
{
    CSoundBlock block;
    enDebugManager().CollectLines();
    FaultyFileCalls disk(".ekesb", FaultyFileCalls::Allocations | FaultyFileCalls::Opens);
    disk.FailFrom(1, EIO);
    EXPECT_FALSE(block.Create(1000, m_document->Format(), nullptr, ChannelAll));
    EXPECT_TRUE(block.FileName().empty());
    const auto lines = enDebugManager().TakeLines();
    ASSERT_EQ(lines.size(), 2U);
    EXPECT_TRUE(lines[0].Text.starts_with("Error: Failed to create temporary file \"" + m_folder.TempPath().string()));
    EXPECT_NE(lines[1].Text.find("folder \"" + m_folder.TempPath().string() + "\": " + IoStatus(EIO).Text()),
              std::string::npos);
    disk.StopFailing();
    ASSERT_TRUE(block.Create(1000, m_document->Format(), nullptr, ChannelAll));
    const std::filesystem::path file = block.FileName();
    EXPECT_TRUE(IsFile(file));
    block.Free();
    EXPECT_TRUE(block.FileName().empty());
    EXPECT_FALSE(block.OpenFile(file, m_document->Format()));
    EXPECT_TRUE(block.FileName().empty());
}

} // namespace
} // namespace ek
