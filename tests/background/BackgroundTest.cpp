// SPDX-License-Identifier: GPL-3.0-or-later
#include "background/WaveDataProcessor.h"
#include "debugmanager/DebugManager.h"
#include "support/TestFolder.h"

#include <gtest/gtest.h>
#include <new>
#include <stdexcept>
#include <thread>
#include <vector>

namespace ek::test {
namespace {

/// Every byte of a frame is the low byte of the frame's number.
struct CountingSource : FrameSource {
    explicit CountingSource(uint32_t frameBytes) : FrameBytes(frameBytes) {}
    uint32_t BlockAlign() const override { return FrameBytes; }
    bool ReadData(void* buffer, uint64_t offsetBytes, uint64_t lengthBytes) override
    {
        if (offsetBytes >= FailFrom)
            return false;
        for (uint64_t i = 0; i < lengthBytes; ++i)
            static_cast<uint8_t*>(buffer)[i] = static_cast<uint8_t>((offsetBytes + i) / FrameBytes);
        return true;
    }
    uint32_t FrameBytes;
    uint64_t FailFrom = UINT64_MAX;
};

/// Shows by doing: `During` runs while the work does, between Begin and the wait for its end.
struct ScriptedPresenter : ProgressPresenter {
    ScriptedPresenter() { SetProgressPresenter(this); }
    ~ScriptedPresenter() { SetProgressPresenter(nullptr); }
    WorkResult Show(CProgressDlg& progress) override
    {
        progress.OnFinish([&] { NotifiedWithResult = progress.HasResult(); });
        progress.Begin();
        During(progress);
        const WorkResult result = progress.WaitResult();
        WasNotifiedBeforeEnd = NotifiedWithResult;
        progress.End();
        return result;
    }
    std::function<void(CProgressDlg&)> During = [](CProgressDlg&) {};
    std::atomic<bool> NotifiedWithResult = false;
    bool WasNotifiedBeforeEnd = false;
};

struct Chunk {
    uint64_t FirstFrame;
    uint64_t Frames;
    bool operator==(const Chunk&) const = default;
};

std::vector<Chunk> ChunksOf(uint32_t frameBytes, uint64_t start, uint64_t count)
{
    CountingSource source(frameBytes);
    std::vector<Chunk> chunks;
    CWaveDataProcessor processor(source, start, count, "", false, [&](uint8_t* data, uint64_t first, uint64_t frames) {
        EXPECT_EQ(data[0], static_cast<uint8_t>(first));
        EXPECT_EQ(data[frames * frameBytes - 1], static_cast<uint8_t>(first + frames - 1));
        chunks.push_back({first, frames});
        return true;
    });
    EXPECT_EQ(processor.Run(), WorkResult::Finished);
    return chunks;
}

TEST(WaveDataProcessorTest, TheRangeIsCutIntoChunksOfWholeFrames)
{
    using Chunks = std::vector<Chunk>;
    EXPECT_EQ(ChunksOf(2, 0, 6721), Chunks({{0, 6720}, {6720, 1}}));
    EXPECT_EQ(ChunksOf(4, 100, 6720), Chunks({{100, 3360}, {3460, 3360}}));
    EXPECT_EQ(ChunksOf(16, 7, 1), Chunks({{7, 1}}));
    EXPECT_EQ(ChunksOf(4, 5, 0), Chunks());
    EXPECT_EQ(ChunksOf(20000, 3, 2), Chunks({{3, 1}, {4, 1}})) << "a frame larger than a chunk";
}

TEST(WaveDataProcessorTest, CancellingEndsARunAfterTheChunkInHand)
{
    ScriptedPresenter presenter;
    for (const bool cancellable : {true, false}) {
        CountingSource source(2);
        ManualResetEvent inChunk;
        ManualResetEvent cancelled;
        int calls = 0;
        presenter.During = [&](CProgressDlg& progress) {
            inChunk.Wait();
            progress.Cancel();
            cancelled.Set();
        };
        CWaveDataProcessor processor(source, 0, 20000, "", cancellable, [&](uint8_t*, uint64_t, uint64_t) {
            ++calls;
            inChunk.Set();
            cancelled.Wait();
            return true;
        });
        EXPECT_EQ(processor.Run(), cancellable ? WorkResult::Cancelled : WorkResult::Finished);
        EXPECT_EQ(calls, cancellable ? 1 : 3);
    }
}

TEST(WaveDataProcessorTest, AFailingReadOrCallbackEndsARunAsFailed)
{
    CountingSource source(2);
    int calls = 0;
    const auto run = [&](bool answer) {
        calls = 0;
        return CWaveDataProcessor(source, 0, 20000, "", true,
                                  [&](uint8_t*, uint64_t, uint64_t) {
                                      ++calls;
                                      return answer;
                                  })
            .Run();
    };
    EXPECT_EQ(run(false), WorkResult::Failed);
    EXPECT_EQ(calls, 1);
    source.FailFrom = CWaveDataProcessor::ChunkBytes;
    EXPECT_EQ(run(true), WorkResult::Failed);
    EXPECT_EQ(calls, 1);
    source.FrameBytes = 0;
    EXPECT_EQ(run(true), WorkResult::Failed);
}

TEST(WaveDataProcessorTest, ThePositionIsThePercentageDoneBeforeTheChunk)
{
    ScriptedPresenter presenter;
    uint32_t last = 0;
    presenter.During = [&](CProgressDlg& progress) {
        progress.WaitResult();
        last = progress.Position();
    };
    CountingSource source(2);
    CWaveDataProcessor(source, 9999, 4 * 6720, "", true, [](uint8_t*, uint64_t, uint64_t) { return true; }).Run();
    EXPECT_EQ(last, 75u);
}

TEST(BackgroundTest, WorkRunsOnItsOwnThreadBehindAProgressThatIsUp)
{
    ScriptedPresenter presenter;
    bool isUp = false;
    std::thread::id worker;
    presenter.During = [&](CProgressDlg& progress) {
        EXPECT_EQ(progress.Caption(), "Saving");
        EXPECT_TRUE(progress.IsCancellable());
        EXPECT_FALSE(progress.IsCancelled());
        EXPECT_TRUE(IsWorkRunning());
        presenter.During = [](CProgressDlg&) {};
        RunInBackground("", false, [](CProgressDlg&) { return WorkResult::Finished; });
        EXPECT_TRUE(IsWorkRunning()) << "the inner work has ended, not the outer";
    };
    EXPECT_FALSE(IsWorkRunning());
    const WorkResult result = RunInBackground("Saving", true, [&](CProgressDlg& progress) {
        progress.WaitStarted();
        isUp = true;
        worker = std::this_thread::get_id();
        return WorkResult::Cancelled;
    });
    EXPECT_FALSE(IsWorkRunning());
    EXPECT_EQ(result, WorkResult::Cancelled);
    EXPECT_TRUE(isUp);
    EXPECT_NE(worker, std::this_thread::get_id());
    EXPECT_TRUE(presenter.WasNotifiedBeforeEnd) << "the notification has the result and comes before the end";
}

TEST(BackgroundTest, WorkThatThrowsHasFailedAndTheLogSaysWhy)
{
    const TestFolder folder;
    enDebugManager().CollectLines();
    EXPECT_EQ(RunInBackground("Saving", false, [](CProgressDlg&) -> WorkResult { throw std::runtime_error("no"); }),
              WorkResult::Failed);
    EXPECT_EQ(RunInBackground("", false, [](CProgressDlg&) -> WorkResult { throw 5; }), WorkResult::Failed);
    const std::vector<CDebugManager::Line> lines = enDebugManager().TakeLines();
    ASSERT_EQ(lines.size(), 2u);
    EXPECT_EQ(lines[0].Text, "Error: Work \"Saving\" failed: no");
    EXPECT_EQ(lines[0].Level, LogError);
}

TEST(BackgroundTest, WorkThatCannotBeShownIsWaitedFor)
{
    struct ThrowingPresenter : ProgressPresenter {
        WorkResult Show(CProgressDlg&) override { throw std::bad_alloc(); }
    } presenter;
    const TestFolder folder;
    SetProgressPresenter(&presenter);
    EXPECT_EQ(RunInBackground("", true, [](CProgressDlg&) { return WorkResult::Finished; }), WorkResult::Finished);
    SetProgressPresenter(nullptr);
}

TEST(BackgroundTest, BeginningClearsAnOldWishToCancel)
{
    CProgressDlg progress;
    progress.SetCancellable(true);
    progress.Cancel();
    std::thread worker([&] {
        progress.WaitStarted();
        progress.Finish(progress.IsCancelled() ? WorkResult::Cancelled : WorkResult::Finished);
    });
    EXPECT_EQ(progress.DoModal(), WorkResult::Finished);
    worker.join();
}

} // namespace
} // namespace ek::test
