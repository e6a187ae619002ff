// SPDX-License-Identifier: GPL-3.0-or-later
#include "StoreTest.h"
#include "support/FaultyFileCalls.h"

#include <algorithm>
#include <cerrno>
#include <functional>
#include <memory>
#include <string>
#include <tuple>
#include <vector>

namespace ek {
namespace {

constexpr uint64_t PageValues = CWaveData::PageSize / 2;

constexpr uint32_t DiskFaults = FaultyFileCalls::Opens | FaultyFileCalls::Reads | FaultyFileCalls::Writes |
                                FaultyFileCalls::Allocations | FaultyFileCalls::Copies;

/// Runs an edit again and again, each time with the next of its file calls failing, until none was left to fail.
class FaultsTest : public StoreTest {
protected:
    using Edit = std::function<bool(CWaveData&)>;

    /// A store with a few files and a change that is in memory only.
    std::unique_ptr<CWaveData> MakeStore(SoundModel& model)
    {
        model = {2, MakeNoise(1, PageValues + 20000)};
        auto store = std::make_unique<CWaveData>();
        Fill(*store, model);
        EXPECT_TRUE(store->InsertSpace(8000, 8000, 4000));
        model.Insert(2000, std::vector<int16_t>(2000));
        const std::vector<int16_t> late = MakeRamp(1000);
        EXPECT_TRUE(store->WriteData(late.data(), 16000, 2000));
        model.Write(4000, late);
        EXPECT_TRUE(store->BuildPeakCache());
        EXPECT_TRUE(store->WriteData(late.data(), 16000, 2000)); // again, so that it is in memory only
        return store;
    }

    /// A fault must be answered with false and the old sound, no fault with true.
    void ExpectAllOrNothing(const Edit& edit, uint32_t kinds, bool lasting)
    {
        FaultyFileCalls calls(".eke", kinds);
        for (uint64_t nth = 1;; ++nth) {
            SCOPED_TRACE(testing::Message() << "fault " << nth);
            SoundModel model;
            const std::unique_ptr<CWaveData> store = MakeStore(model);
            if (lasting)
                calls.FailFrom(nth, ENOSPC);
            else
                calls.FailCall(nth, EIO);
            const bool done = edit(*store);
            const bool failed = calls.HasFailed();
            calls.StopFailing();
            ASSERT_EQ(done, !failed);
            if (done) {
                EXPECT_GT(nth, 1U);
                return;
            }
            ExpectSameSound(*store, model);
            ASSERT_EQ(m_folder.TempFileCount(), store->TempFiles().size());
        }
    }

    /// A fault of any call leaves a done edit, perhaps without peaks, or nothing is changed.
    void ExpectDoneOrNothing(const Edit& edit, const std::function<void(SoundModel&)>& apply, bool renewsPeaks = true)
    {
        ExpectDoneOrNothing(edit, apply, renewsPeaks, false);
        ExpectDoneOrNothing(edit, apply, renewsPeaks, true);
    }

    void ExpectDoneOrNothing(const Edit& edit, const std::function<void(SoundModel&)>& apply, bool renewsPeaks,
                             bool lasting)
    {
        FaultyFileCalls calls(".eke", DiskFaults);
        for (uint64_t nth = 1;; ++nth) {
            SCOPED_TRACE(testing::Message() << "fault " << nth << (lasting ? " and all after it" : ""));
            SoundModel model;
            const std::unique_ptr<CWaveData> store = MakeStore(model);
            const FileList oldFiles = FilesOf(*store);
            lasting ? calls.FailFrom(nth, ENOSPC) : calls.FailCall(nth, EIO);
            const bool done = edit(*store);
            const bool failed = calls.HasFailed();
            calls.StopFailing();
            if (done)
                apply(model);
            else
                ASSERT_EQ(FilesOf(*store), oldFiles);
            ExpectSameSound(*store, model);
            ASSERT_EQ(m_folder.TempFileCount(), store->TempFiles().size());
            if (store->Peaks().IsEmpty()) {
                ASSERT_TRUE(done);
                ASSERT_TRUE(store->RebuildPeakCachePart(5000, 1, 1, ChannelLeft)); // makes all of them
            }
            if (renewsPeaks || !done)
                ExpectSamePeaks(*store, model);
            if (!failed) {
                ASSERT_TRUE(done);
                EXPECT_GT(nth, 1U);
                return;
            }
        }
    }

    using FileList = std::vector<std::tuple<uint64_t, uint64_t, std::string>>;
    static FileList FilesOf(const CWaveData& store)
    {
        FileList files;
        for (const TempFileEntry& entry : store.TempFiles())
            files.emplace_back(entry.Start, entry.Length, entry.Name.string());
        return files;
    }
};

TEST_F(FaultsTest, RoomIsMadeWhollyOrNotAtAll)
{
    const Edit split = [](CWaveData& store) { return store.InsertSpace(40000, 40000, 3 * CWaveData::PageSize); };
    ExpectAllOrNothing(split, DiskFaults, false);
    ExpectAllOrNothing(split, DiskFaults, true);
}

TEST_F(FaultsTest, ARangeIsRemovedWhollyOrNotAtAll)
{
    const Edit insideOneFile = [](CWaveData& store) { return store.RemoveData(40000, 50000); };
    ExpectAllOrNothing(insideOneFile, DiskFaults, false);
    const Edit overSeveral = [](CWaveData& store) { return store.RemoveData(4000, 40000); };
    ExpectAllOrNothing(overSeveral, DiskFaults, false);
}

TEST_F(FaultsTest, AFailedCopyLeavesTheSourceAndGoesWithoutLitter)
{
    const Edit copyAndDrop = [](CWaveData& store) {
        CWaveData copy;
        const bool copied = copy.CopyFrom(store);
        EXPECT_EQ(copy.FrameCount(), copied ? store.FrameCount() : 0);
        return copied;
    };
    ExpectAllOrNothing(copyAndDrop, DiskFaults, false);
    ExpectAllOrNothing(copyAndDrop, DiskFaults, true);
}

TEST_F(FaultsTest, PeaksThatCannotBeReadAreAFailure)
{
    ExpectAllOrNothing([](CWaveData& store) { return store.BuildPeakCache(); },
                       FaultyFileCalls::Reads | FaultyFileCalls::Writes, true);
}

TEST_F(FaultsTest, ARecordIsWrittenAndReadWhollyOrNot)
{
    File file;
    ASSERT_TRUE(file.CreateNew(m_folder.Path() / ".ekerecord").Ok());
    ASSERT_TRUE(file.Close().Ok());
    const auto open = [&] { return file.Open(m_folder.Path() / ".ekerecord", File::Access::ReadWrite).Ok(); };
    ExpectAllOrNothing(
        [&](CWaveData& store) {
            uint64_t position = 0;
            return open() && store.WriteToStream(file, position);
        },
        DiskFaults, false);
    ExpectAllOrNothing(
        [&](CWaveData&) {
            CWaveData loaded;
            uint64_t position = 0;
            const bool done = open() && loaded.ReadFromStream(file, position);
            EXPECT_EQ(loaded.FrameCount() != 0, done);
            return done;
        },
        DiskFaults, false);
}

TEST_F(FaultsTest, AnEditIsDoneOrNothingHasChanged)
{
    constexpr uint64_t Start = 424000;
    constexpr uint64_t End = 439000; // over two pages, and some of their files
    std::vector<int16_t> frames = MakeNoise(5, 2 * (End - Start));
    std::vector<int16_t> one = MakeNoise(6, End - Start);
    const auto both = [&](CWaveData& store) { return BlockOf(frames, store.WorkingFormat()); };
    const auto left = [&](CWaveData& store) {
        return BlockOf(one, MakeOneChannelFormat(store.WorkingFormat()), ChannelLeft);
    };
    const auto replace = [](CWaveData& store, uint64_t end, const SoundBuffer& block) {
        const uint64_t wanted = end;
        const bool done = store.ReplaceFrames(Start, end, block, block.Code, true, "") == WorkResult::Finished;
        EXPECT_TRUE(done || end == wanted);
        return done;
    };
    ExpectDoneOrNothing([](CWaveData& s) { return s.DeleteFrames(Start, End, ChannelLeft, "", nullptr); },
                        [](SoundModel& model) { model.Clear(0, Start, End); });
    ExpectDoneOrNothing(
        [&](CWaveData& store) {
            SoundBuffer block = both(store);
            return store.ExchangeFrames(block, Start, End - Start, ChannelAll, CWaveData::Direction::BlockToStore, "",
                                        true) == WorkResult::Finished;
        },
        [&](SoundModel& model) { model.Write(Start, frames); }, false);
    ExpectDoneOrNothing([&](CWaveData& store) { return replace(store, End - 7000, left(store)); },
                        [&](SoundModel& model) { model.Replace(0, Start, End - 7000, one); });
    ExpectDoneOrNothing([&](CWaveData& store) { return replace(store, Start, both(store)); },
                        [&](SoundModel& model) { model.Insert(Start, frames); });
    ExpectDoneOrNothing(
        [&](CWaveData& s) {
            return s.MixFrames(nullptr, Start + 5000, both(s), ChannelAll, true, "") == WorkResult::Finished;
        },
        [&](SoundModel& model) { model.Mix(SoundModel::AllChannels, Start + 5000, frames); });
    ExpectDoneOrNothing([](CWaveData& store) { return store.DeleteFrames(3000, 20000, ChannelAll, "", nullptr); },
                        [](SoundModel& model) { model.Remove(3000, 20000); });
    ExpectDoneOrNothing(
        [&](CWaveData& store) {
            std::vector<int16_t> saved(End - Start);
            SoundBuffer undo = BlockOf(saved, MakeOneChannelFormat(store.WorkingFormat()), ChannelRight);
            const bool done = store.ClearFrames(Start, End - Start, ChannelRight, "", true, &undo);
            EXPECT_EQ(undo.FillPosition, done ? End - Start : 0);
            return done;
        },
        [](SoundModel& model) { model.Clear(1, Start, End); }, false);
}

TEST_F(FaultsTest, AnOldFileThatCannotBeDeletedIsLoggedAndTheEditDone)
{
    SoundModel model;
    const std::unique_ptr<CWaveData> store = MakeStore(model);
    FaultyFileCalls calls(".eke", FaultyFileCalls::Removals);
    calls.FailCall(1, EIO);
    EXPECT_TRUE(store->DeleteFrames(100, 20000, ChannelAll, "", nullptr));
    model.Remove(100, 20000);
    ExpectSameSound(*store, model);
    ExpectSamePeaks(*store, model);
    const std::vector<std::string> texts = LoggedTexts();
    EXPECT_EQ(std::ranges::count_if(
                  texts, [](const std::string& text) { return text.starts_with("Error: Failed to delete"); }),
              1);
}

TEST_F(FaultsTest, AFileThatCannotBeClosedOrDeletedIsLoggedAndTheRestGoesOn)
{
    for (const auto kind : {FaultyFileCalls::Closes, FaultyFileCalls::Removals}) {
        FaultyFileCalls calls(".eke", kind);
        SoundModel model;
        const std::unique_ptr<CWaveData> store = MakeStore(model);
        LoggedTexts();
        calls.FailCall(1, EIO);
        store->Close();
        const std::vector<std::string> texts = LoggedTexts();
        ASSERT_EQ(texts.size(), 1U);
        const bool stays = kind == FaultyFileCalls::Removals;
        EXPECT_TRUE(texts[0].starts_with(stays ? "Error: Failed to delete temporary file \""
                                               : "Error: Failed to close temporary file \""));
        EXPECT_EQ(m_folder.TempFileCount(), stays ? 1U : 0U);
    }
}

} // namespace
} // namespace ek
