// SPDX-License-Identifier: GPL-3.0-or-later
#include "StoreTest.h"

#include <algorithm>
#include <array>
#include <memory>
#include <random>

namespace ek {
namespace {

struct Plan {
    uint32_t Seed;
    uint32_t Channels;
    int Steps;
    uint64_t LargestSound; ///< frames
    uint64_t LargestEdit;  ///< frames
};

std::ostream& operator<<(std::ostream& out, const Plan& plan)
{
    return out << "seed " << plan.Seed << ", " << plan.Channels << " channels";
}

/// Edits a store and a sound in plain memory alike.
class RandomEdits : public StoreTest, public testing::WithParamInterface<Plan> {
protected:
    void SetUp() override
    {
        m_random.seed(GetParam().Seed);
        m_model.Channels = GetParam().Channels;
        m_store = std::make_unique<CWaveData>();
        m_store->SetFormat(MakePcm16Format(44100, m_model.Channels), nullptr);
    }

    uint64_t Below(uint64_t limit) { return std::uniform_int_distribution<uint64_t>(0, limit - 1)(m_random); }
    uint64_t Position() { return Below(m_model.FrameCount() + 1); }
    std::pair<uint64_t, uint64_t> Part(uint64_t longest)
    {
        const uint64_t start = Position();
        return {start, start + Below(std::min(m_model.FrameCount() - start, longest) + 1)};
    }
    /// Most edits are short, some are as long as they may be.
    uint64_t EditLength() { return Below(Below(4) != 0 ? 2000 : GetParam().LargestEdit) + 1; }
    std::vector<int16_t> Noise(uint64_t frames, uint32_t channels)
    {
        return MakeNoise(static_cast<uint32_t>(m_random()), frames * channels);
    }
    uint64_t Bytes(uint64_t frames) const { return frames * m_store->BlockAlign(); }

    /// All channels or a single one.
    uint32_t AnyChannel()
    {
        const uint64_t channel = Below(m_model.Channels + 1);
        return channel == m_model.Channels || m_model.Channels == 1 ? SoundModel::AllChannels
                                                                    : static_cast<uint32_t>(channel);
    }
    ChannelCode CodeOf(uint32_t channel) const
    {
        return channel == SoundModel::AllChannels ? ChannelAll : GetChannelByIndex(m_store->WorkingFormat(), channel);
    }
    SoundBuffer Block(std::vector<int16_t>& values, uint32_t channel)
    {
        const WAVEFORMATEXTENSIBLE& format = m_store->WorkingFormat();
        return BlockOf(values, channel == SoundModel::AllChannels ? format : MakeOneChannelFormat(format),
                       CodeOf(channel));
    }

    void Insert();
    void Remove();
    void Write();
    void Read();
    void Copy();
    void Serialise();
    void Replace();
    void Mix();
    void Delete();
    void Exchange();
    void Step();

    std::mt19937_64 m_random;
    SoundModel m_model;
    std::unique_ptr<CWaveData> m_store;
};

void RandomEdits::Insert()
{
    const uint64_t frame = Position();
    const std::vector<int16_t> values = Noise(EditLength(), m_model.Channels);
    const uint64_t frames = values.size() / m_model.Channels;
    ASSERT_TRUE(m_store->InsertSpace(Bytes(frame), Bytes(frame), Bytes(frames)));
    m_model.Insert(frame, std::vector<int16_t>(values.size()));
    ASSERT_TRUE(ReadFrames(*m_store, frame, frame + frames) == std::vector<int16_t>(values.size()));
    ASSERT_TRUE(m_store->WriteData(values.data(), Bytes(frame), Bytes(frames)));
    m_model.Write(frame, values);
    ASSERT_TRUE(m_store->RebuildPeakCachePart(frame, 0, frames, ChannelAll));
}

void RandomEdits::Remove()
{
    const auto [start, end] = Part(2 * EditLength());
    ASSERT_TRUE(m_store->RemoveData(Bytes(start), Bytes(end)));
    m_model.Remove(start, end);
    ASSERT_TRUE(m_store->RebuildPeakCachePart(start, end - start, 0, ChannelAll));
}

void RandomEdits::Write()
{
    const auto [start, end] = Part(EditLength());
    const std::vector<int16_t> values = Noise(end - start, m_model.Channels);
    ASSERT_TRUE(m_store->WriteData(values.data(), Bytes(start), Bytes(end - start)));
    m_model.Write(start, values);
    Read();
    ASSERT_TRUE(m_store->RebuildPeakCachePart(start, end - start, end - start, ChannelAll));
}

void RandomEdits::Read()
{
    const auto [start, end] = Part(EditLength());
    ASSERT_TRUE(std::ranges::equal(ReadFrames(*m_store, start, end), m_model.Frames(start, end)));
    if (start < m_model.FrameCount()) {
        const uint64_t value = start * m_model.Channels;
        ASSERT_EQ(m_store->SampleAt(value), m_model.Values[value]);
    }
}

void RandomEdits::Copy()
{
    auto copy = std::make_unique<CWaveData>();
    ASSERT_TRUE(copy->CopyFrom(*m_store));
    m_store = std::move(copy);
}

void RandomEdits::Serialise()
{
    if (m_model.Values.empty())
        return;
    File file;
    ASSERT_TRUE(file.CreateNew(m_folder.Path() / "record").Ok());
    uint64_t position = 0;
    ASSERT_TRUE(m_store->WriteToStream(file, position));
    m_store = std::make_unique<CWaveData>();
    position = 0;
    ASSERT_TRUE(m_store->ReadFromStream(file, position));
    ASSERT_TRUE(RemoveFile(m_folder.Path() / "record").Ok());
}

void RandomEdits::Replace()
{
    auto [start, end] = Part(EditLength());
    const uint32_t channel = AnyChannel();
    std::vector<int16_t> values = Noise(EditLength(), channel == SoundModel::AllChannels ? m_model.Channels : 1);
    m_model.Replace(channel, start, end, values);
    const uint64_t length = values.size() / (channel == SoundModel::AllChannels ? m_model.Channels : 1);
    const uint64_t newEnd = start + (channel == SoundModel::AllChannels ? length : std::max(length, end - start));
    ASSERT_EQ(m_store->ReplaceFrames(start, end, Block(values, channel), CodeOf(channel), true, ""),
              WorkResult::Finished);
    ASSERT_EQ(end, newEnd);
}

void RandomEdits::Mix()
{
    const uint64_t start = Position();
    const uint32_t channel = AnyChannel();
    std::vector<int16_t> values = Noise(EditLength(), channel == SoundModel::AllChannels ? m_model.Channels : 1);
    m_model.Mix(channel, start, values);
    ASSERT_EQ(m_store->MixFrames(nullptr, start, Block(values, channel), CodeOf(channel), true, ""),
              WorkResult::Finished);
}

/// Deletes with undo, and sometimes puts back what the undo block holds.
void RandomEdits::Delete()
{
    const auto [start, end] = Part(EditLength());
    const uint32_t channel = AnyChannel();
    if (channel == SoundModel::AllChannels) {
        ASSERT_TRUE(m_store->DeleteFrames(start, end, ChannelAll, "", nullptr));
        m_model.Remove(start, end);
        return;
    }
    std::vector<int16_t> old(end - start);
    SoundBuffer undo = Block(old, channel);
    ASSERT_TRUE(m_store->DeleteFrames(start, end, CodeOf(channel), "", &undo));
    ASSERT_EQ(undo.FillPosition, end - start);
    ASSERT_TRUE(old == m_model.Channel(channel, start, end));
    m_model.Clear(channel, start, end);
    if (Below(2) == 0) {
        uint64_t restoredEnd = end;
        m_model.Replace(channel, start, end, old);
        ASSERT_EQ(m_store->ReplaceFrames(start, restoredEnd, undo, CodeOf(channel), false, ""), WorkResult::Finished);
    }
}

/// Takes frames out to a block, changes them and puts them back.
void RandomEdits::Exchange()
{
    const auto [start, end] = Part(EditLength());
    const uint32_t channel = AnyChannel();
    const bool all = channel == SoundModel::AllChannels;
    std::vector<int16_t> values((end - start) * (all ? m_model.Channels : 1));
    SoundBuffer block = Block(values, channel);
    ASSERT_EQ(m_store->ExchangeFrames(block, start, end - start, CodeOf(channel), CWaveData::Direction::StoreToBlock,
                                      "", false),
              WorkResult::Finished);
    ASSERT_TRUE(all ? std::ranges::equal(values, m_model.Frames(start, end))
                    : values == m_model.Channel(channel, start, end));
    if (!all)
        return;
    std::ranges::reverse(values);
    ASSERT_EQ(
        m_store->ExchangeFrames(block, start, end - start, ChannelAll, CWaveData::Direction::BlockToStore, "", false),
        WorkResult::Finished);
    m_model.Write(start, values);
    ASSERT_TRUE(m_store->RebuildPeakCachePart(start, end - start, end - start, ChannelAll));
}

void RandomEdits::Step()
{
    using Edit = void (RandomEdits::*)();
    static constexpr std::array<Edit, 16> Edits = {
        &RandomEdits::Insert,  &RandomEdits::Insert, &RandomEdits::Insert, &RandomEdits::Insert,
        &RandomEdits::Remove,  &RandomEdits::Remove, &RandomEdits::Remove, &RandomEdits::Write,
        &RandomEdits::Write,   &RandomEdits::Read,   &RandomEdits::Read,   &RandomEdits::Replace,
        &RandomEdits::Replace, &RandomEdits::Mix,    &RandomEdits::Delete, &RandomEdits::Exchange};
    if (m_model.FrameCount() > GetParam().LargestSound)
        Remove();
    else
        (this->*Edits[Below(Edits.size())])();
}

TEST_P(RandomEdits, GiveWhatTheyGiveInPlainMemory)
{
    for (int step = 1; step <= GetParam().Steps && !HasFatalFailure(); ++step) {
        SCOPED_TRACE(testing::Message() << "step " << step);
        Step();
        if (step % 20 == 0) {
            ExpectSameSound(*m_store, m_model);
            ExpectSamePeaks(*m_store, m_model);
        }
        if (step % 50 == 0)
            Copy();
        if (step % 70 == 0)
            Serialise();
    }
    m_store.reset();
    EXPECT_EQ(m_folder.TempFileCount(), 0U);
}

INSTANTIATE_TEST_SUITE_P(Small, RandomEdits,
                         testing::Values(Plan{1, 1, 1000, 60000, 9000}, Plan{2, 2, 1500, 60000, 9000},
                                         Plan{3, 6, 500, 30000, 9000}, Plan{4, 8, 500, 30000, 5000}));
// More pages than are kept in memory.
INSTANTIATE_TEST_SUITE_P(Large, RandomEdits,
                         testing::Values(Plan{5, 2, 200, 6000000, 900000}, Plan{6, 3, 100, 4000000, 900000}));

} // namespace
} // namespace ek
