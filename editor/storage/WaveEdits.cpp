// SPDX-License-Identifier: GPL-3.0-or-later
#include "storage/EditProcessors.h"
#include "storage/WaveData.h"

#include <algorithm>

namespace ek {

namespace {

/// The frames as the files hold them. Edits run through them once and in order: the pages, which are for those who come
/// back, stay out of it, and so does their lock.
class StoredFrames final : public FrameSource {
public:
    StoredFrames(TempFileList& files, uint32_t blockAlign) : m_files(files), m_blockAlign(blockAlign) {}
    uint32_t BlockAlign() const override { return m_blockAlign; }
    bool ReadData(void* buffer, uint64_t offsetBytes, uint64_t lengthBytes) override
    {
        return m_files.Read(buffer, offsetBytes, lengthBytes);
    }

private:
    TempFileList& m_files;
    const uint32_t m_blockAlign;
};

} // namespace

bool CWaveData::EditsOneChannel(ChannelCode code) const
{
    return code != ChannelAll && WorkingFormat().nChannels > 1;
}

/// The processor reads the files, which get what is still only in pages before.
WorkResult CWaveData::Apply(Replacement& replacement, CWaveDataProcessor& processor)
{
    if (!replacement.IsValid() || !FlushPages())
        return WorkResult::Failed;
    const WorkResult result = processor.Run();
    if (result != WorkResult::Finished)
        return result;
    return Commit(replacement) ? WorkResult::Finished : WorkResult::Failed;
}

WorkResult CWaveData::TakeFromBlock(const EditRange& range, SoundBuffer& block)
{
    // One channel goes back through ReplaceFrames, never from here.
    if (EditsOneChannel(range.Code))
        return WorkResult::Finished;
    const uint64_t end = range.Start + range.Count;
    Replacement replacement(m_files, range.Start * BlockAlign(), end * BlockAlign(), range.Count * BlockAlign());
    StoredFrames stored(m_files, BlockAlign());
    FramesBefore nothing(stored, 0);
    CXchgWaveDataProgress processor(nothing, WorkingFormat(), range, block, &replacement);
    return Apply(replacement, processor);
}

WorkResult CWaveData::ExchangeFrames(SoundBuffer& block, uint64_t start, uint64_t count, ChannelCode code,
                                     Direction direction, const std::string& caption, bool cancellable)
{
    const EditRange range{start, count, code, caption, cancellable};
    if (direction == Direction::BlockToStore)
        return TakeFromBlock(range, block);
    if (!FlushPages())
        return WorkResult::Failed;
    StoredFrames stored(m_files, BlockAlign());
    return CXchgWaveDataProgress(stored, WorkingFormat(), range, block, nullptr).Run();
}

bool CWaveData::ClearFrames(uint64_t start, uint64_t count, ChannelCode code, const std::string& caption,
                            bool cancellable, SoundBuffer* undo)
{
    const uint64_t fill = undo ? undo->FillPosition : 0;
    const EditRange range{start, count, code, caption, cancellable};
    Replacement silence(m_files, start * BlockAlign(), (start + count) * BlockAlign(), count * BlockAlign());
    StoredFrames stored(m_files, BlockAlign());
    CClearWaveDataProgress processor(stored, WorkingFormat(), range, silence, undo);
    WorkResult result = Apply(silence, processor);
    if (result == WorkResult::Cancelled) {
        silence.EndAtProgress();
        result = Commit(silence) ? WorkResult::Finished : WorkResult::Failed;
    }
    if (result == WorkResult::Failed && undo)
        undo->FillPosition = fill;
    return result == WorkResult::Finished;
}

bool CWaveData::DeleteFrames(uint64_t start, uint64_t end, ChannelCode code, const std::string& caption,
                             SoundBuffer* undo)
{
    const uint64_t length = end - start;
    if (EditsOneChannel(code)) {
        if (!ClearFrames(start, length, code, caption, true, undo))
            return false;
        RebuildPeakCachePart(start, length, length, code);
        return true;
    }
    if (!RemoveData(start * BlockAlign(), end * BlockAlign()))
        return false;
    RebuildPeakCachePart(start, length, 0, ChannelAll);
    return true;
}

WorkResult CWaveData::ReplaceFrames(uint64_t start, uint64_t& end, const SoundBuffer& block, ChannelCode code,
                                    bool cancellable, const std::string& caption)
{
    const uint64_t oldLength = end - start;
    const uint64_t length = EditsOneChannel(code) ? std::max(block.FrameCount, oldLength) : block.FrameCount;
    const EditRange range{start, length, code, caption, cancellable};
    Replacement replacement(m_files, start * BlockAlign(), end * BlockAlign(), length * BlockAlign());
    // Room behind the old range is silent in the other channels; whole frames need nothing of the old ones.
    StoredFrames stored(m_files, BlockAlign());
    FramesBefore old(stored, EditsOneChannel(code) ? end : 0);
    CSubstituteWaveDataProgress processor(old, WorkingFormat(), range, replacement, block);
    const WorkResult result = Apply(replacement, processor);
    if (result != WorkResult::Finished)
        return result;
    end = start + length;
    RebuildPeakCachePart(start, oldLength, length, EditsOneChannel(code) ? code : ChannelAll);
    return result;
}

WorkResult CWaveData::MixFrames(SoundBuffer* undo, uint64_t start, const SoundBuffer& block, ChannelCode code,
                                bool cancellable, const std::string& caption)
{
    const uint64_t length = block.FrameCount;
    const uint64_t mixed = std::min(FrameCount() - start, length);
    const uint64_t fill = undo ? undo->FillPosition : 0;
    const EditRange range{start, length, code, caption, cancellable};
    Replacement replacement(m_files, start * BlockAlign(), (start + mixed) * BlockAlign(), length * BlockAlign());
    StoredFrames stored(m_files, BlockAlign());
    FramesBefore old(stored, FrameCount()); // new room at the end is silence, which every mix starts from
    CMixWaveDataProgress processor(old, WorkingFormat(), range, replacement, block, undo);
    const WorkResult result = Apply(replacement, processor);
    if (result == WorkResult::Finished)
        RebuildPeakCachePart(start, mixed, length, length > mixed ? ChannelAll : code);
    else if (undo)
        undo->FillPosition = fill;
    return result;
}

} // namespace ek
