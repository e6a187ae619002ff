// SPDX-License-Identifier: GPL-3.0-or-later
#include "StoreTest.h"
#include "support/FaultyFileCalls.h"

#include <cerrno>
#include <functional>
#include <memory>

namespace ek {
namespace {

constexpr uint64_t PageValues = CWaveData::PageSize / 2;

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
};

constexpr uint32_t DiskFaults = FaultyFileCalls::Opens | FaultyFileCalls::Reads | FaultyFileCalls::Writes |
                                FaultyFileCalls::Allocations | FaultyFileCalls::Copies;

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

TEST_F(FaultsTest, AFileThatCannotBeDeletedOrClosedIsLoggedAndTheRestGoesOn)
{
    SoundModel model;
    const std::unique_ptr<CWaveData> store = MakeStore(model);
    FaultyFileCalls calls(".eke", FaultyFileCalls::Removals);
    LoggedTexts();
    calls.FailCall(1, EACCES);
    store->Close();
    const std::vector<std::string> texts = LoggedTexts();
    ASSERT_EQ(texts.size(), 1U);
    EXPECT_TRUE(texts[0].starts_with("Error: Failed to delete temporary file \""));
    EXPECT_EQ(m_folder.TempFileCount(), 1U);
}

} // namespace
} // namespace ek
