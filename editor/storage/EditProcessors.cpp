// SPDX-License-Identifier: GPL-3.0-or-later
#include "storage/EditProcessors.h"

#include "servicefuncs/SampleBuffers.h"
#include "storage/WaveData.h"

#include <algorithm>
#include <cstring>

namespace ek {

namespace {

/// How many of [first, first + count) lie below the limit.
uint64_t CountBelow(uint64_t limit, uint64_t first, uint64_t count)
{
    return first < limit ? std::min(count, limit - first) : 0;
}

/// Appends frames of the store to a block, as whole frames or as the block's channel, as far as it has room.
void AppendTo(SoundBuffer& block, const int16_t* frames, uint64_t count, const WAVEFORMATEXTENSIBLE& format)
{
    const uint64_t taken = std::min(count, block.FrameCount - block.FillPosition);
    uint8_t* place = block.FrameAt(block.FillPosition);
    if (!place || taken == 0)
        return;
    if (block.Code == ChannelAll)
        std::memcpy(place, frames, taken * format.nBlockAlign);
    else
        SplitChannel(reinterpret_cast<int16_t*>(place), frames, format, taken, GetIndexByChannel(format, block.Code));
    block.Advance(taken);
}

const int16_t* SamplesAt(const SoundBuffer& block, uint64_t frame)
{
    return reinterpret_cast<const int16_t*>(block.FrameAt(frame));
}

} // namespace

EditProcessor::EditProcessor(CWaveData& store, EditRange range)
    : CWaveDataProcessor(store.Frames(), range.Start, range.Count, range.Caption, range.Cancellable,
                         [this](uint8_t* frames, uint64_t first, uint64_t count) {
                             return Process(reinterpret_cast<int16_t*>(frames), first - m_range.Start, count);
                         }),
      m_store(store), m_range(std::move(range))
{
}

const WAVEFORMATEXTENSIBLE& EditProcessor::StoreFormat() const
{
    return m_store.WorkingFormat();
}

bool EditProcessor::AllChannels() const
{
    return m_range.Code == ChannelAll || StoreFormat().nChannels == 1;
}

bool EditProcessor::WriteBack(const void* frames, uint64_t first, uint64_t count)
{
    const uint64_t blockAlign = StoreFormat().nBlockAlign;
    return m_store.WriteData(frames, (m_range.Start + first) * blockAlign, count * blockAlign);
}

CXchgWaveDataProgress::CXchgWaveDataProgress(CWaveData& store, EditRange range, SoundBuffer& block, bool intoStore)
    : EditProcessor(store, std::move(range)), m_block(block), m_intoStore(intoStore)
{
}

bool CXchgWaveDataProgress::Process(int16_t* frames, uint64_t first, uint64_t count)
{
    uint8_t* place = m_block.FrameAt(first);
    if (!AllChannels()) {
        // One channel goes back through a replacement, never from here.
        if (!m_intoStore)
            SplitChannel(reinterpret_cast<int16_t*>(place), frames, StoreFormat(), count,
                         GetIndexByChannel(StoreFormat(), m_range.Code));
        return true;
    }
    if (m_intoStore)
        return WriteBack(place, first, count);
    std::memcpy(place, frames, count * StoreFormat().nBlockAlign);
    return true;
}

CClearWaveDataProgress::CClearWaveDataProgress(CWaveData& store, EditRange range, SoundBuffer* undo)
    : EditProcessor(store, std::move(range)), m_undo(undo)
{
}

bool CClearWaveDataProgress::Process(int16_t* frames, uint64_t first, uint64_t count)
{
    if (m_undo)
        AppendTo(*m_undo, frames, count, StoreFormat());
    ClearWaveData(frames, StoreFormat(), count, m_range.Code);
    return WriteBack(frames, first, count);
}

CMixWaveDataProgress::CMixWaveDataProgress(CWaveData& store, EditRange range, const SoundBuffer& source,
                                           SoundBuffer* undo)
    : EditProcessor(store, std::move(range)), m_source(source), m_undo(undo)
{
}

bool CMixWaveDataProgress::Process(int16_t* frames, uint64_t first, uint64_t count)
{
    if (m_undo)
        AppendTo(*m_undo, frames, count, StoreFormat());
    const uint64_t mixed = CountBelow(m_source.FrameCount, first, count);
    MixWaveData(frames, frames, count, SamplesAt(m_source, first), mixed, StoreFormat(), m_range.Code);
    return WriteBack(frames, first, count);
}

CSubstituteWaveDataProgress::CSubstituteWaveDataProgress(CWaveData& store, EditRange range, const SoundBuffer& source)
    : EditProcessor(store, std::move(range)), m_source(source)
{
}

bool CSubstituteWaveDataProgress::Process(int16_t* frames, uint64_t first, uint64_t count)
{
    if (AllChannels())
        return WriteBack(SamplesAt(m_source, first), first, count);
    const uint64_t copied = CountBelow(m_source.FrameCount, first, count);
    CopyWaveData(frames, SamplesAt(m_source, first), StoreFormat(), copied, m_range.Code);
    ClearWaveData(frames + copied * StoreFormat().nChannels, StoreFormat(), count - copied, m_range.Code);
    return WriteBack(frames, first, count);
}

} // namespace ek
