// SPDX-License-Identifier: GPL-3.0-or-later
#include "StoreTest.h"

#include "support/FailingAllocation.h"

#include <functional>

namespace ek {
namespace {

class MemoryTest : public StoreTest {
protected:
    /// Fails every allocation of the calling thread in turn.
    void ExpectDoneOrNothing(const std::function<bool(CWaveData&)>& edit, const std::function<void(SoundModel&)>& apply)
    {
        for (uint64_t nth = 0;; ++nth) {
            SCOPED_TRACE(testing::Message() << "allocation " << nth);
            SoundModel model{2, MakeNoise(1, CWaveData::PageSize / 2 + 20000)};
            CWaveData store;
            Fill(store, model);
            bool done = false;
            bool failed = false;
            {
                const FailingAllocation allocation(nth);
                EXPECT_NO_THROW(done = edit(store));
                failed = allocation.HasFailed();
            }
            if (done)
                apply(model);
            ExpectSameSound(store, model);
            ASSERT_EQ(m_folder.TempFileCount(), store.TempFiles().size());
            if (!failed) {
                EXPECT_TRUE(done);
                EXPECT_GT(nth, 0U);
                return;
            }
        }
    }
};

TEST_F(MemoryTest, AnEditThatMemoryDoesNotSufficeForChangesNothing)
{
    ExpectDoneOrNothing([](CWaveData& store) { return store.InsertSpace(4000, 4000, 8000); },
                        [](SoundModel& model) { model.Insert(1000, std::vector<int16_t>(4000)); });
    ExpectDoneOrNothing([](CWaveData& store) { return store.DeleteFrames(1000, 3000, ChannelAll, "", nullptr); },
                        [](SoundModel& model) { model.Remove(1000, 3000); });
    std::vector<int16_t> frames = MakeNoise(2, 6000);
    ExpectDoneOrNothing(
        [&](CWaveData& store) {
            uint64_t end = 3000;
            return store.ReplaceFrames(1000, end, BlockOf(frames, store.WorkingFormat()), ChannelAll, true, "") ==
                   WorkResult::Finished;
        },
        [&](SoundModel& model) { model.Replace(SoundModel::AllChannels, 1000, 3000, frames); });
    ExpectDoneOrNothing(
        [](CWaveData& store) {
            CWaveData copy;
            const bool done = copy.CopyFrom(store);
            EXPECT_EQ(copy.TempFiles().empty(), !done);
            return done;
        },
        [](SoundModel&) {});
}

} // namespace
} // namespace ek
