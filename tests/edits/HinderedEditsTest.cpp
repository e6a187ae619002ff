// SPDX-License-Identifier: GPL-3.0-or-later
#include "EditTest.h"
#include "support/CancelAt.h"
#include "support/FaultyFileCalls.h"

#include <atomic>
#include <cerrno>
#include <random>
#include <thread>

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

/// What every cancelling presenter does: shows a progress plainly and knows it while it is shown.
class ShownProgress : public ProgressPresenter {
public:
    ShownProgress() { SetProgressPresenter(this); }
    ~ShownProgress() override { SetProgressPresenter(nullptr); }
    ShownProgress(const ShownProgress&) = delete;
    ShownProgress& operator=(const ShownProgress&) = delete;

    WorkResult Show(CProgressDlg& progress) override
    {
        m_progress = &progress;
        progress.Begin();
        Watch(progress);
        const WorkResult result = progress.WaitResult();
        m_progress = nullptr;
        progress.End();
        return result;
    }

protected:
    virtual void Watch(CProgressDlg&) {}

    std::atomic<CProgressDlg*> m_progress = nullptr;
};

/// Presses Cancel when a progress has come so far, which is anywhere in long work.
class CancelBetween final : public ShownProgress {
public:
    explicit CancelBetween(uint32_t seed) : m_random(seed) {}

private:
    void Watch(CProgressDlg& progress) override
    {
        const uint32_t position = std::uniform_int_distribution<uint32_t>(0, 150)(m_random); // some never
        while (!progress.HasResult() && progress.Position() < position)
            std::this_thread::yield();
        progress.Cancel();
    }

    std::mt19937 m_random;
};

/// Presses Cancel at the n-th reading of a file while a progress is shown: in the same chunk every time.
class CancelAtRead final : public ShownProgress, public FileCalls {
public:
    explicit CancelAtRead(int nth) : m_nth(nth), m_installed(*this) {}

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
    for (uint32_t seed = 1; seed <= 5 && !HasFailure(); ++seed) {
        Prepare(10);
        expectRight(CancelBetween(seed));
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

class HinderedDocument : public EditTest {};

TEST_F(HinderedDocument, SilencingThatIsCancelledCountsAsFarAsItGot)
{
    EditModel model = Noise(1, 2, 30000);
    const auto document = MakeDocument(model);
    ASSERT_TRUE(document->Store().FlushPages());
    {
        const CancelAtRead cancel(1);
        ASSERT_TRUE(document->Delete(1000, 29000, ChannelRight, "Cut"));
    }
    constexpr uint64_t Chunk = CWaveDataProcessor::ChunkBytes / 4;
    model.Delete(1, 1000, 1000 + Chunk, "Cut");
    ExpectSame(*document, model);
    uint64_t start = 0;
    uint64_t end = 0;
    ASSERT_TRUE(document->Undo(start, end));
    model.Undo();
    EXPECT_EQ(end - start, Chunk);
    ExpectSame(*document, model);
}

TEST_F(HinderedDocument, ACopyThatFailsLeavesAnEmptyClipboardAndTheSoundAsItWas)
{
    const EditModel model = Noise(1, 2, 30000);
    const auto document = MakeDocument(model);
    FaultyFileCalls calls(".eke", BadDisk);
    for (uint64_t nth = 1;; ++nth) {
        ASSERT_TRUE(document->Copy(0, 100, ChannelAll));
        ASSERT_TRUE(document->Store().FlushPages());
        const size_t told = m_prompts.Messages().size();
        calls.FailCall(nth, EIO);
        const bool copied = document->Copy(0, 30000, ChannelLeft);
        const bool failed = calls.HasFailed();
        calls.StopFailing();
        ASSERT_EQ(CWEDoc::IsClipboardEmpty(), !copied);
        ASSERT_EQ(m_prompts.Messages().size() - told, copied ? 0U : 1U);
        ExpectSame(*document, model);
        if (!failed)
            break;
    }
    for (uint32_t seed = 0; seed < 20; ++seed) {
        const CancelBetween cancel(seed);
        const bool copied = document->Copy(0, 30000, ChannelAll);
        ASSERT_EQ(SoundClipboard().FrameCount, copied ? 30000U : 0U);
    }
}

} // namespace
} // namespace ek
