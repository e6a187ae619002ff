// SPDX-License-Identifier: GPL-3.0-or-later
#include "EditModel.h"

#include "waveedit/WEDoc.h"

#include <gtest/gtest.h>

#include <algorithm>

namespace ek {

namespace {

/// Half-way values go away from zero.
int16_t Mean(int left, int right)
{
    const int sum = left + right;
    return static_cast<int16_t>((sum + (sum > 0 ? 1 : -1)) / 2);
}

} // namespace

std::optional<std::vector<int16_t>> ClipModel::As(uint32_t channels) const
{
    if (channels == Channels)
        return Values;
    std::vector<int16_t> values;
    if (Channels == 1) {
        for (const int16_t value : Values)
            values.insert(values.end(), channels, value);
        return values;
    }
    if (Channels != 2 || channels != 1)
        return std::nullopt;
    for (size_t i = 0; i < Values.size(); i += 2)
        values.push_back(Mean(Values[i], Values[i + 1]));
    return values;
}

template <class Change>
void EditModel::Edit(const std::string& name, uint64_t start, uint64_t oldLength, uint64_t newLength, Change change)
{
    std::vector<int16_t> before = Sound.Values;
    change();
    Steps.resize(Done);
    Steps.push_back({name, std::move(before), Sound.Values, start, oldLength, newLength});
    if (Steps.size() > UndoLimit)
        Steps.erase(Steps.begin());
    Done = Steps.size();
}

ClipModel EditModel::Copy(uint32_t channel, uint64_t start, uint64_t end) const
{
    if (channel != SoundModel::AllChannels)
        return {1, Sound.Channel(channel, start, end)};
    const auto frames = Sound.Frames(start, end);
    return {Sound.Channels, {frames.begin(), frames.end()}};
}

void EditModel::Paste(uint32_t channel, uint64_t start, uint64_t end, const std::vector<int16_t>& values)
{
    const uint64_t length = values.size() / Width(channel);
    const uint64_t newLength = channel == SoundModel::AllChannels ? length : std::max(length, end - start);
    Edit("Pasting...", start, end - start, newLength, [&] { Sound.Replace(channel, start, end, values); });
}

void EditModel::Mix(uint32_t channel, uint64_t start, const std::vector<int16_t>& values)
{
    const uint64_t length = values.size() / Width(channel);
    Edit("Paste-Mixing...", start, std::min(length, Sound.FrameCount() - start), length,
         [&] { Sound.Mix(channel, start, values); });
}

void EditModel::Delete(uint32_t channel, uint64_t start, uint64_t end, const std::string& name)
{
    if (channel == SoundModel::AllChannels)
        Edit(name, start, end - start, 0, [&] { Sound.Remove(start, end); });
    else
        Edit(name, start, end - start, end - start, [&] { Sound.Clear(channel, start, end); });
}

const EditModel::Step& EditModel::Undo()
{
    const Step& step = Steps[--Done];
    Sound.Values = step.Before;
    return step;
}

const EditModel::Step& EditModel::Redo()
{
    const Step& step = Steps[Done++];
    Sound.Values = step.After;
    return step;
}

void ExpectSame(CWEDoc& document, const EditModel& model)
{
    ASSERT_NO_FATAL_FAILURE(ExpectSameSound(document.Store(), model.Sound));
    ASSERT_NO_FATAL_FAILURE(ExpectSamePeaks(document.Store(), model.Sound));
    std::vector<std::string> done;
    std::vector<std::string> undone;
    for (size_t i = 0; i < model.Steps.size(); ++i)
        (i < model.Done ? done : undone).push_back(model.Steps[i].Name);
    std::ranges::reverse(done);
    ASSERT_EQ(document.UndoStack().FillUndoList(), done);
    ASSERT_EQ(document.UndoStack().FillRedoList(), undone);
}

} // namespace ek
