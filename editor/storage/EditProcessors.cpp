// SPDX-License-Identifier: GPL-3.0-or-later
#include "storage/EditProcessors.h"

#include "servicefuncs/SampleBuffers.h"

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

bool FramesBefore::ReadData(void* buffer, uint64_t offsetBytes, uint64_t lengthBytes)
{
    const uint64_t present = CountBelow(m_end, offsetBytes, lengthBytes);
    std::memset(static_cast<uint8_t*>(buffer) + present, 0, lengthBytes - present);
    return m_sound.ReadData(buffer, offsetBytes, present);
}

EditProcessor::EditProcessor(FrameSource& source, const WAVEFORMATEXTENSIBLE& format, EditRange range,
                             Replacement* target)
    : CWaveDataProcessor(source, range.Start, range.Count, range.Caption, range.Cancellable,
                         [this](uint8_t* frames, uint64_t first, uint64_t count) {
                             return Process(reinterpret_cast<int16_t*>(frames), first - m_range.Start, count);
                         }),
      m_format(format), m_range(std::move(range)), m_target(target)
{
}

bool EditProcessor::AllChannels() const
{
    return m_range.Code == ChannelAll || m_format.nChannels == 1;
}

bool EditProcessor::Append(const void* frames, uint64_t count)
{
    return m_target->Append(frames, count * m_format.nBlockAlign);
}

CXchgWaveDataProgress::CXchgWaveDataProgress(FrameSource& source, const WAVEFORMATEXTENSIBLE& format, EditRange range,
                                             SoundBuffer& block, Replacement* target)
    : EditProcessor(source, format, std::move(range), target), m_block(block), m_outOfBlock(target != nullptr)
{
}

bool CXchgWaveDataProgress::Process(int16_t* frames, uint64_t first, uint64_t count)
{
    uint8_t* place = m_block.FrameAt(first);
    if (m_outOfBlock)
        return Append(place, count);
    if (AllChannels())
        std::memcpy(place, frames, count * m_format.nBlockAlign);
    else
        SplitChannel(reinterpret_cast<int16_t*>(place), frames, m_format, count,
                     GetIndexByChannel(m_format, m_range.Code));
    return true;
}

CClearWaveDataProgress::CClearWaveDataProgress(FrameSource& source, const WAVEFORMATEXTENSIBLE& format, EditRange range,
                                               Replacement& target, SoundBuffer* undo)
    : EditProcessor(source, format, std::move(range), &target), m_undo(undo)
{
}

bool CClearWaveDataProgress::Process(int16_t* frames, uint64_t, uint64_t count)
{
    if (m_undo)
        AppendTo(*m_undo, frames, count, m_format);
    ClearWaveData(frames, m_format, count, m_range.Code);
    return Append(frames, count);
}

CMixWaveDataProgress::CMixWaveDataProgress(FrameSource& source, const WAVEFORMATEXTENSIBLE& format, EditRange range,
                                           Replacement& target, const SoundBuffer& block, SoundBuffer* undo)
    : EditProcessor(source, format, std::move(range), &target), m_block(block), m_undo(undo)
{
}

bool CMixWaveDataProgress::Process(int16_t* frames, uint64_t first, uint64_t count)
{
    if (m_undo)
        AppendTo(*m_undo, frames, count, m_format);
    const uint64_t mixed = CountBelow(m_block.FrameCount, first, count);
    MixWaveData(frames, frames, count, SamplesAt(m_block, first), mixed, m_format, m_range.Code);
    return Append(frames, count);
}

CSubstituteWaveDataProgress::CSubstituteWaveDataProgress(FrameSource& source, const WAVEFORMATEXTENSIBLE& format,
                                                         EditRange range, Replacement& target, const SoundBuffer& block)
    : EditProcessor(source, format, std::move(range), &target), m_block(block)
{
}

bool CSubstituteWaveDataProgress::Process(int16_t* frames, uint64_t first, uint64_t count)
{
    if (AllChannels())
        return Append(SamplesAt(m_block, first), count);
    const uint64_t copied = CountBelow(m_block.FrameCount, first, count);
    CopyWaveData(frames, SamplesAt(m_block, first), m_format, copied, m_range.Code);
    ClearWaveData(frames + copied * m_format.nChannels, m_format, count - copied, m_range.Code);
    return Append(frames, count);
}

} // namespace ek
