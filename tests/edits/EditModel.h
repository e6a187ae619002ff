// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "support/SoundModel.h"

#include <optional>
#include <string>
#include <vector>

namespace ek {

class CWEDoc;

/// The sound of a clipboard in plain memory.
struct ClipModel {
    uint32_t Channels = 0;
    std::vector<int16_t> Values;

    /// As so many channels at the same rate; none when there is no rule for that.
    std::optional<std::vector<int16_t>> As(uint32_t channels) const;
};

/// A sound in plain memory with its history: what a document is compared with. `channel` is a position or
/// SoundModel::AllChannels; values for one channel are mono.
struct EditModel {
    static constexpr size_t UndoLimit = 10;
    struct Step {
        std::string Name;
        std::vector<int16_t> Before;
        std::vector<int16_t> After;
        uint64_t Start;
        uint64_t OldLength;
        uint64_t NewLength;
    };

    SoundModel Sound;
    std::vector<Step> Steps; ///< oldest first
    size_t Done = 0;         ///< steps that are not undone

    ClipModel Copy(uint32_t channel, uint64_t start, uint64_t end) const;
    void Paste(uint32_t channel, uint64_t start, uint64_t end, const std::vector<int16_t>& values);
    void Mix(uint32_t channel, uint64_t start, const std::vector<int16_t>& values);
    void Delete(uint32_t channel, uint64_t start, uint64_t end, const std::string& name);
    const Step& Undo();
    const Step& Redo();

    uint32_t Width(uint32_t channel) const { return channel == SoundModel::AllChannels ? Sound.Channels : 1; }

private:
    template <class Change>
    void Edit(const std::string& name, uint64_t start, uint64_t oldLength, uint64_t newLength, Change change);
};

/// Test assertions: same samples, same peaks, same history.
void ExpectSame(CWEDoc& document, const EditModel& model);

} // namespace ek
