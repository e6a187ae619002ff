// SPDX-License-Identifier: GPL-3.0-or-later
#include "storage/EditProcessors.h"
#include "storage/WaveData.h"

#include <algorithm>

namespace ek {

bool CWaveData::EditsOneChannel(ChannelCode code) const
{
    return code != ChannelAll && WorkingFormat().nChannels > 1;
}

WorkResult CWaveData::ExchangeFrames(SoundBuffer& block, uint64_t start, uint64_t count, ChannelCode code,
                                     Direction direction, const std::string& caption, bool cancellable)
{
    const EditRange range{start, count, code, caption, cancellable};
    return CXchgWaveDataProgress(*this, range, block, direction == Direction::BlockToStore).Run();
}

bool CWaveData::ClearFrames(uint64_t start, uint64_t count, ChannelCode code, const std::string& caption,
                            bool cancellable, SoundBuffer* undo)
{
    const EditRange range{start, count, code, caption, cancellable};
    return CClearWaveDataProgress(*this, range, undo).Run() != WorkResult::Failed;
}

bool CWaveData::DeleteFrames(uint64_t start, uint64_t end, ChannelCode code, const std::string& caption,
                             SoundBuffer* undo)
{
    const uint64_t length = end - start;
    if (EditsOneChannel(code)) {
        const bool cleared = ClearFrames(start, length, code, caption, false, undo);
        RebuildPeakCachePart(start, length, length, code);
        return cleared;
    }
    if (!RemoveData(start * BlockAlign(), end * BlockAlign()))
        return false;
    RebuildPeakCachePart(start, length, 0, ChannelAll);
    return true;
}

/// Turns the frames [start, end) into `newLength` frames, whose content is the caller's.
bool CWaveData::MakeRoomFor(uint64_t start, uint64_t end, uint64_t newLength, ChannelCode code)
{
    const uint64_t blockAlign = BlockAlign();
    const uint64_t oldLength = end - start;
    if (newLength < oldLength)
        return RemoveData(start * blockAlign, (end - newLength) * blockAlign);
    if (newLength == oldLength)
        return true;
    // Where the other channels keep their frames, the room must lie exactly behind them; it is silent in them then.
    const uint64_t earliest = EditsOneChannel(code) ? end : start;
    return InsertSpace(earliest * blockAlign, end * blockAlign, (newLength - oldLength) * blockAlign);
}

WorkResult CWaveData::ReplaceFrames(uint64_t start, uint64_t& end, const SoundBuffer& block, ChannelCode code,
                                    bool cancellable, const std::string& caption)
{
    const uint64_t oldLength = end - start;
    const uint64_t length = EditsOneChannel(code) ? std::max(block.FrameCount, oldLength) : block.FrameCount;
    if (!MakeRoomFor(start, end, length, code) || !FlushPages())
        return WorkResult::Failed;
    const EditRange range{start, length, code, caption, cancellable};
    const WorkResult result = CSubstituteWaveDataProgress(*this, range, block).Run();
    end = start + length;
    if (result == WorkResult::Finished)
        BuildPeakCache();
    return result;
}

WorkResult CWaveData::MixFrames(SoundBuffer* undo, uint64_t start, const SoundBuffer& block, ChannelCode code,
                                bool cancellable, const std::string& caption)
{
    const uint64_t length = block.FrameCount;
    const uint64_t mixed = std::min(FrameCount() - start, length);
    const bool grows = length > mixed;
    // New room at the end is silence, which every mix starts from.
    if (grows && !InsertSpace(ByteLength(), ByteLength(), (length - mixed) * BlockAlign()))
        return WorkResult::Failed;
    const EditRange range{start, length, code, caption, cancellable};
    const WorkResult result = CMixWaveDataProgress(*this, range, block, undo).Run();
    if (result == WorkResult::Finished)
        RebuildPeakCachePart(start, mixed, length, grows ? ChannelAll : code);
    return result;
}

} // namespace ek
