// SPDX-License-Identifier: GPL-3.0-or-later
#include "StoreTest.h"
#include "support/CancelAt.h"

#include <functional>
#include <memory>

namespace ek {
namespace {

constexpr uint64_t PageFrames = CWaveData::PageSize / 4;
constexpr uint64_t Start = PageFrames / 2;
constexpr uint64_t Count = 5 * PageFrames / 2;

class CancelTest : public StoreTest {
protected:
    using Edit = std::function<WorkResult(CWaveData&)>;
    using Apply = std::function<void(SoundModel&)>;

    std::unique_ptr<CWaveData> MakeStore(SoundModel& model) const
    {
        model = m_sound;
        auto store = std::make_unique<CWaveData>();
        Fill(*store, model);
        return store;
    }

    /// Cancels at every file that the edit makes, until it makes no more.
    void ExpectUnchangedWhenCancelled(const Edit& edit, const Apply& apply)
    {
        for (int nth = 1;; ++nth) {
            SCOPED_TRACE(testing::Message() << "cancelled at file " << nth);
            SoundModel model;
            const std::unique_ptr<CWaveData> store = MakeStore(model);
            WorkResult result = WorkResult::Failed;
            {
                CancelAt cancel("ekewdme", nth);
                result = edit(*store);
            }
            if (result == WorkResult::Finished)
                apply(model);
            ExpectSameSound(*store, model);
            ExpectSamePeaks(*store, model);
            ASSERT_EQ(m_folder.TempFileCount(), store->TempFiles().size());
            if (result == WorkResult::Finished) {
                EXPECT_GT(nth, 2);
                return;
            }
            ASSERT_EQ(result, WorkResult::Cancelled);
        }
    }

    const SoundModel m_sound{2, MakeNoise(1, 2 * 4 * PageFrames)};
    std::vector<int16_t> m_frames = MakeNoise(2, 2 * Count);
    std::vector<int16_t> m_samples = MakeNoise(3, Count);
};

TEST_F(CancelTest, AReplacementOrAMixLeavesEverythingAsItWas)
{
    const auto replace = [](CWaveData& store, uint64_t end, const SoundBuffer& block) {
        const uint64_t oldEnd = end;
        const WorkResult result = store.ReplaceFrames(Start, end, block, block.Code, true, "");
        EXPECT_EQ(end, result == WorkResult::Finished ? Start + block.FrameCount : oldEnd);
        return result;
    };
    ExpectUnchangedWhenCancelled(
        [&](CWaveData& store) { return replace(store, Start + 1000, BlockOf(m_frames, store.WorkingFormat())); },
        [&](SoundModel& model) { model.Replace(SoundModel::AllChannels, Start, Start + 1000, m_frames); });
    ExpectUnchangedWhenCancelled(
        [&](CWaveData& store) {
            const WAVEFORMATEXTENSIBLE mono = MakeOneChannelFormat(store.WorkingFormat());
            return replace(store, Start + PageFrames, BlockOf(m_samples, mono, ChannelRight));
        },
        [&](SoundModel& model) { model.Replace(1, Start, Start + PageFrames, m_samples); });
    ExpectUnchangedWhenCancelled(
        [&](CWaveData& store) {
            std::vector<int16_t> old(m_frames.size());
            SoundBuffer undo = BlockOf(old, store.WorkingFormat());
            const SoundBuffer block = BlockOf(m_frames, store.WorkingFormat());
            const WorkResult result = store.MixFrames(&undo, 2 * PageFrames, block, ChannelAll, true, "");
            EXPECT_EQ(undo.FillPosition != 0, result == WorkResult::Finished);
            return result;
        },
        [&](SoundModel& model) { model.Mix(SoundModel::AllChannels, 2 * PageFrames, m_frames); });
}

TEST_F(CancelTest, AOneChannelDeletionKeepsThePartThatItsUndoBlockHolds)
{
    for (int nth = 1; nth <= 3; ++nth) {
        SoundModel model;
        const std::unique_ptr<CWaveData> store = MakeStore(model);
        std::vector<int16_t> old(Count);
        SoundBuffer undo = BlockOf(old, MakeOneChannelFormat(store->WorkingFormat()), ChannelLeft);
        {
            CancelAt cancel("ekewdme", nth, CancelAt::Call::Open);
            ASSERT_TRUE(store->DeleteFrames(Start, Start + Count, ChannelLeft, "", &undo));
        }
        const uint64_t done = undo.FillPosition;
        ASSERT_GT(done, 0U);
        ASSERT_LT(done, Count);
        old.resize(done);
        EXPECT_TRUE(old == model.Channel(0, Start, Start + done));
        model.Clear(0, Start, Start + done);
        ExpectSameSound(*store, model);
        ExpectSamePeaks(*store, model);
        EXPECT_EQ(m_folder.TempFileCount(), store->TempFiles().size());
    }
}

} // namespace
} // namespace ek
