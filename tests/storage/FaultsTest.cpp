// SPDX-License-Identifier: GPL-3.0-or-later
#include "StoreTest.h"
#include "support/FaultyFileCalls.h"

#include <algorithm>
#include <cerrno>
#include <functional>
#include <memory>
#include <optional>

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

    /// A fault leaves a done edit, perhaps without peaks, or one that is done up to some frame.
    void ExpectDoneOrPartly(const Edit& edit, const std::function<void(SoundModel&)>& apply, bool renewsPeaks = true)
    {
        FaultyFileCalls calls(".eke", DiskFaults);
        int withoutPeaks = 0;
        for (uint64_t nth = 1;; ++nth) {
            SCOPED_TRACE(testing::Message() << "fault " << nth);
            SoundModel old;
            const std::unique_ptr<CWaveData> store = MakeStore(old);
            SoundModel edited = old;
            apply(edited);
            calls.FailCall(nth, EIO);
            const bool done = edit(*store);
            const bool failed = calls.HasFailed();
            calls.StopFailing();
            const std::vector<int16_t> values = ReadAll(*store);
            ASSERT_TRUE(done ? values == edited.Values : IsBetween(values, old.Values, edited.Values));
            if (done && store->Peaks().IsEmpty()) {
                ++withoutPeaks;
                ASSERT_TRUE(store->RebuildPeakCachePart(5000, 1, 1, ChannelLeft)); // makes all of them
                ExpectSamePeaks(*store, edited);
            }
            if (!failed) {
                ASSERT_TRUE(done);
                EXPECT_EQ(withoutPeaks > 0, renewsPeaks);
                return;
            }
        }
    }

    static bool IsBetween(const std::vector<int16_t>& values, const std::vector<int16_t>& old,
                          const std::vector<int16_t>& edited)
    {
        const size_t done = static_cast<size_t>(std::ranges::mismatch(values, edited).in1 - values.begin());
        return values == old || (values.size() == edited.size() && values.size() == old.size() &&
                                 std::equal(values.begin() + static_cast<ptrdiff_t>(done), values.end(),
                                            old.begin() + static_cast<ptrdiff_t>(done)));
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
                       FaultyFileCalls::Reads | FaultyFileCalls::Writes, false);
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

/// Every write fails half-way: to one file, as at a bad place of a disk, or to all.
class FailingWrites final : public FileCalls {
public:
    explicit FailingWrites(std::optional<int> descriptor) : m_descriptor(descriptor), m_installed(*this) {}
    ssize_t PWrite(int descriptor, const void* data, size_t length, off_t position) override
    {
        if (m_descriptor && descriptor != *m_descriptor)
            return FileCalls::PWrite(descriptor, data, length, position);
        (void)FileCalls::PWrite(descriptor, data, length / 2, position);
        errno = EIO;
        return -1;
    }

private:
    const std::optional<int> m_descriptor;
    ScopedFileCalls m_installed;
};

TEST_F(FaultsTest, BytesThatCannotBePutBackGoToANewFileOrAreLoggedAsLost)
{
    for (const bool everywhere : {false, true}) {
        SoundModel model;
        const std::unique_ptr<CWaveData> store = MakeStore(model);
        ASSERT_TRUE(store->FlushPages());
        const TempFileEntry& entry = *std::next(store->TempFiles().begin(), 2);
        const std::filesystem::path name = entry.Name;
        ASSERT_TRUE(entry.Start < 40000 && entry.Start + entry.Length > 50000);
        {
            const FailingWrites calls(everywhere ? std::nullopt : std::optional(entry.Handle.Descriptor()));
            EXPECT_FALSE(store->RemoveData(40000, 50000));
        }
        if (everywhere) {
            EXPECT_EQ(LoggedTexts().back(),
                      "Error! Lost a part of the sound in temporary file \"" + name.string() + "\".");
        } else {
            EXPECT_NE(entry.Name, name);
            ExpectSameSound(*store, model);
        }
        EXPECT_EQ(m_folder.TempFileCount(), store->TempFiles().size());
    }
}

TEST_F(FaultsTest, AnEditIsDoneOrEndsWhereItStopped)
{
    constexpr uint64_t Start = 100;
    constexpr uint64_t End = 440900; // over two pages
    std::vector<int16_t> frames = MakeNoise(5, 2 * (End - Start));
    std::vector<int16_t> one = MakeNoise(6, End - Start);
    const auto both = [&](CWaveData& store) { return BlockOf(frames, store.WorkingFormat()); };
    const auto left = [&](CWaveData& store) {
        return BlockOf(one, MakeOneChannelFormat(store.WorkingFormat()), ChannelLeft);
    };
    ExpectDoneOrPartly([](CWaveData& s) { return s.ClearFrames(Start, End - Start, ChannelLeft, "", true, nullptr); },
                       [](SoundModel& model) { model.Clear(0, Start, End); }, false);
    ExpectDoneOrPartly(
        [&](CWaveData& store) {
            SoundBuffer block = both(store);
            return store.ExchangeFrames(block, Start, End - Start, ChannelAll, CWaveData::Direction::BlockToStore, "",
                                        true) == WorkResult::Finished;
        },
        [&](SoundModel& model) { model.Write(Start, frames); }, false);
    ExpectDoneOrPartly(
        [&](CWaveData& store) {
            uint64_t end = End;
            return store.ReplaceFrames(Start, end, left(store), ChannelLeft, true, "") == WorkResult::Finished;
        },
        [&](SoundModel& model) { model.Replace(0, Start, End, one); });
    ExpectDoneOrPartly(
        [&](CWaveData& s) {
            return s.MixFrames(nullptr, Start, both(s), ChannelAll, true, "") == WorkResult::Finished;
        },
        [&](SoundModel& model) { model.Mix(SoundModel::AllChannels, Start, frames); });
    ExpectDoneOrPartly([](CWaveData& store) { return store.DeleteFrames(Start, 20000, ChannelAll, "", nullptr); },
                       [](SoundModel& model) { model.Remove(Start, 20000); });
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
