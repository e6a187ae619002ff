// SPDX-License-Identifier: GPL-3.0-or-later
#include "EditTest.h"

#include <algorithm>
#include <array>
#include <random>

namespace ek {
namespace {

struct Plan {
    uint32_t Seed;
    std::vector<uint32_t> Channels; ///< of the documents
    int Steps;
    uint64_t LargestSound; ///< frames
    uint64_t LargestEdit;  ///< frames
};

std::ostream& operator<<(std::ostream& out, const Plan& plan)
{
    return out << "seed " << plan.Seed;
}

/// Edits documents, which share a clipboard, and sounds in plain memory alike.
class RandomEditing : public EditTest, public testing::WithParamInterface<Plan> {
protected:
    struct Pair {
        EditModel Model;
        std::unique_ptr<CWEDoc> Document;
    };
    struct Range {
        uint64_t Start;
        uint64_t End;
    };

    void SetUp() override
    {
        m_random.seed(GetParam().Seed);
        for (const uint32_t channels : GetParam().Channels) {
            Pair pair{Noise(channels, channels, GetParam().LargestSound / 2), nullptr};
            pair.Document = MakeDocument(pair.Model);
            m_pairs.push_back(std::move(pair));
        }
    }
    uint64_t Below(uint64_t limit) { return std::uniform_int_distribution<uint64_t>(0, limit - 1)(m_random); }
    uint32_t AnyChannel(const Pair& pair)
    {
        const uint64_t channel = Below(pair.Model.Sound.Channels * 2);
        return channel >= pair.Model.Sound.Channels || pair.Model.Sound.Channels == 1 ? All
                                                                                      : static_cast<uint32_t>(channel);
    }
    /// Most are short, some empty, some as long as they may be; many lie at an end of the sound.
    Range Part(const Pair& pair)
    {
        const uint64_t frames = pair.Model.Sound.FrameCount();
        const uint64_t longest = Below(4) != 0 ? 2000 : GetParam().LargestEdit;
        const uint64_t length = Below(8) == 0 ? 0 : Below(std::min(frames, longest) + 1);
        const std::array<uint64_t, 3> starts = {0, frames - length, Below(frames - length + 1)};
        const uint64_t start = starts[std::min<uint64_t>(Below(8), 2)];
        return {start, start + length};
    }

    void Copy(Pair& pair);
    void Cut(Pair& pair);
    void Paste(Pair& pair);
    void Mix(Pair& pair);
    void Delete(Pair& pair);
    void Undo(Pair& pair);
    void Redo(Pair& pair);
    void Step();
    void ExpectRefused(bool done)
    {
        ASSERT_FALSE(done);
        m_refused += m_clip.Values.empty() ? 0 : 1;
    }

    std::mt19937_64 m_random;
    std::vector<Pair> m_pairs;
    ClipModel m_clip;
    size_t m_refused = 0; ///< pastes of a sound that has no conversion
};

void RandomEditing::Copy(Pair& pair)
{
    const auto [start, end] = Part(pair);
    const uint32_t channel = AnyChannel(pair);
    m_clip = pair.Model.Copy(channel, start, end);
    ASSERT_TRUE(pair.Document->Copy(start, end, CodeOf(*pair.Document, channel)));
    ASSERT_EQ(ClipboardValues(), m_clip.Values);
    ASSERT_EQ(CWEDoc::IsClipboardEmpty(), start == end);
}

void RandomEditing::Cut(Pair& pair)
{
    const auto [start, end] = Part(pair);
    const uint32_t channel = AnyChannel(pair);
    const ChannelCode code = CodeOf(*pair.Document, channel);
    m_clip = pair.Model.Copy(channel, start, end);
    ASSERT_TRUE(pair.Document->Copy(start, end, code));
    ASSERT_EQ(pair.Document->Delete(start, end, code, "Cut"), start != end);
    if (start != end)
        pair.Model.Delete(channel, start, end, "Cut");
}

void RandomEditing::Paste(Pair& pair)
{
    auto [start, end] = Part(pair);
    const uint32_t channel = AnyChannel(pair);
    const auto values = m_clip.As(pair.Model.Width(channel));
    const uint64_t oldEnd = end;
    const bool done = pair.Document->Paste(start, end, CodeOf(*pair.Document, channel));
    if (!values || m_clip.Values.empty())
        return ExpectRefused(done);
    ASSERT_TRUE(done);
    pair.Model.Paste(channel, start, oldEnd, *values);
    ASSERT_EQ(end, start + pair.Model.Steps.back().NewLength);
}

void RandomEditing::Mix(Pair& pair)
{
    auto [start, end] = Part(pair);
    const uint32_t channel = AnyChannel(pair);
    const auto values = m_clip.As(pair.Model.Width(channel));
    const bool done = pair.Document->PasteMix(start, end, CodeOf(*pair.Document, channel));
    if (!values || m_clip.Values.empty())
        return ExpectRefused(done);
    ASSERT_TRUE(done);
    pair.Model.Mix(channel, start, *values);
    ASSERT_EQ(end, start + pair.Model.Steps.back().NewLength);
}

void RandomEditing::Delete(Pair& pair)
{
    const auto [start, end] = Part(pair);
    const uint32_t channel = AnyChannel(pair);
    ASSERT_EQ(pair.Document->Delete(start, end, CodeOf(*pair.Document, channel)), start != end);
    if (start != end)
        pair.Model.Delete(channel, start, end, "Deleting...");
}

void RandomEditing::Undo(Pair& pair)
{
    uint64_t start = 0;
    uint64_t end = 0;
    ASSERT_EQ(pair.Document->Undo(start, end), pair.Model.Done > 0);
    if (pair.Model.Done == 0)
        return;
    const EditModel::Step& step = pair.Model.Undo();
    ASSERT_EQ(start, step.Start);
    ASSERT_EQ(end, step.Start + step.OldLength);
}

void RandomEditing::Redo(Pair& pair)
{
    uint64_t start = 0;
    uint64_t end = 0;
    const bool canRedo = pair.Model.Done < pair.Model.Steps.size();
    ASSERT_EQ(pair.Document->Redo(start, end), canRedo);
    if (!canRedo)
        return;
    const EditModel::Step& step = pair.Model.Redo();
    ASSERT_EQ(start, step.Start);
    ASSERT_EQ(end, step.Start + step.NewLength);
}

void RandomEditing::Step()
{
    using Edit = void (RandomEditing::*)(Pair&);
    static constexpr std::array<Edit, 16> Edits = {
        &RandomEditing::Copy,   &RandomEditing::Copy,   &RandomEditing::Copy, &RandomEditing::Cut,
        &RandomEditing::Paste,  &RandomEditing::Paste,  &RandomEditing::Mix,  &RandomEditing::Mix,
        &RandomEditing::Delete, &RandomEditing::Delete, &RandomEditing::Undo, &RandomEditing::Undo,
        &RandomEditing::Undo,   &RandomEditing::Redo,   &RandomEditing::Redo, &RandomEditing::Paste};
    Pair& pair = m_pairs[Below(m_pairs.size())];
    if (pair.Model.Sound.FrameCount() > GetParam().LargestSound)
        Delete(pair);
    else
        (this->*Edits[Below(Edits.size())])(pair);
    if (!HasFatalFailure())
        ExpectSame(*pair.Document, pair.Model);
}

TEST_P(RandomEditing, GivesWhatItGivesInPlainMemory)
{
    for (int step = 1; step <= GetParam().Steps && !HasFatalFailure(); ++step) {
        SCOPED_TRACE(testing::Message() << "step " << step);
        Step();
        ASSERT_EQ(m_prompts.Messages(), std::vector<std::string>(m_refused, "Can't resample data"));
    }
    size_t files = SoundClipboard().Data ? 1 : 0;
    for (const Pair& pair : m_pairs)
        files += pair.Document->Store().TempFiles().size() + pair.Document->UndoStack().Count();
    EXPECT_EQ(m_folder.TempFileCount(), files);
}

INSTANTIATE_TEST_SUITE_P(SmallSounds, RandomEditing,
                         testing::Values(Plan{1, {1, 2}, 2000, 12000, 6000}, Plan{2, {2, 2, 3}, 2000, 12000, 6000},
                                         Plan{3, {6, 1, 4}, 1000, 8000, 4000},
                                         Plan{4, {8, 5, 7, 2}, 1000, 5000, 3000}));
// More than a page, more than a file.
INSTANTIATE_TEST_SUITE_P(LargeSounds, RandomEditing,
                         testing::Values(Plan{5, {2}, 250, 1500000, 600000}, Plan{6, {3, 1}, 150, 800000, 400000}));

} // namespace
} // namespace ek
