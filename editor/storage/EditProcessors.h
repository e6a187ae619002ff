// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "background/WaveDataProcessor.h"
#include "storage/Replacement.h"
#include "storage/SoundBuffer.h"

#include <cstdint>
#include <string>

namespace ek {

/// The frames that an edit runs over, the channel it concerns, and how it is shown.
struct EditRange {
    uint64_t Start = 0;
    uint64_t Count = 0;
    ChannelCode Code = ChannelAll;
    std::string Caption;
    bool Cancellable = false;
};

/// What an edit finds in its range: the frames of a sound up to one of them, silence from there on. Nothing of what
/// lies behind that frame is read.
class FramesBefore final : public FrameSource {
public:
    FramesBefore(FrameSource& sound, uint64_t endFrame) : m_sound(sound), m_end(endFrame * sound.BlockAlign()) {}
    uint32_t BlockAlign() const override { return m_sound.BlockAlign(); }
    bool ReadData(void* buffer, uint64_t offsetBytes, uint64_t lengthBytes) override;

private:
    FrameSource& m_sound;
    const uint64_t m_end; ///< bytes
};

/// A processor that makes the new frames of a range, chunk by chunk, and appends them to the replacement of that range.
class EditProcessor : public CWaveDataProcessor {
protected:
    EditProcessor(FrameSource& source, const WAVEFORMATEXTENSIBLE& format, EditRange range, Replacement* target);
    ~EditProcessor() override = default;

    /// One chunk of the source, which may be changed; `first` is relative to the range. False ends the run with Failed.
    virtual bool Process(int16_t* frames, uint64_t first, uint64_t count) = 0;

    bool AllChannels() const; ///< the edit concerns whole frames
    bool Append(const void* frames, uint64_t count);

    const WAVEFORMATEXTENSIBLE& m_format; ///< of the source
    const EditRange m_range;

private:
    Replacement* m_target;
};

/// Copies frames into a block, or, with a target, out of it: whole frames only.
class CXchgWaveDataProgress final : public EditProcessor {
public:
    CXchgWaveDataProgress(FrameSource& source, const WAVEFORMATEXTENSIBLE& format, EditRange range, SoundBuffer& block,
                          Replacement* target);

private:
    bool Process(int16_t* frames, uint64_t first, uint64_t count) override;

    SoundBuffer& m_block;
    const bool m_outOfBlock;
};

/// Silences frames; the old ones go into an undo block (may be null) from its fill position on.
class CClearWaveDataProgress final : public EditProcessor {
public:
    CClearWaveDataProgress(FrameSource& source, const WAVEFORMATEXTENSIBLE& format, EditRange range,
                           Replacement& target, SoundBuffer* undo);

private:
    bool Process(int16_t* frames, uint64_t first, uint64_t count) override;

    SoundBuffer* m_undo;
};

/// Mixes a block in; the old frames go into an undo block (may be null) as far as it has room.
class CMixWaveDataProgress final : public EditProcessor {
public:
    CMixWaveDataProgress(FrameSource& source, const WAVEFORMATEXTENSIBLE& format, EditRange range, Replacement& target,
                         const SoundBuffer& block, SoundBuffer* undo);

private:
    bool Process(int16_t* frames, uint64_t first, uint64_t count) override;

    const SoundBuffer& m_block;
    SoundBuffer* m_undo;
};

/// Puts a block in the place of the range: of the frames, or of one channel, which is silent behind the block's end.
class CSubstituteWaveDataProgress final : public EditProcessor {
public:
    CSubstituteWaveDataProgress(FrameSource& source, const WAVEFORMATEXTENSIBLE& format, EditRange range,
                                Replacement& target, const SoundBuffer& block);

private:
    bool Process(int16_t* frames, uint64_t first, uint64_t count) override;

    const SoundBuffer& m_block;
};

} // namespace ek
