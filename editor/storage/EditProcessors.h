// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "background/WaveDataProcessor.h"
#include "storage/SoundBuffer.h"

#include <cstdint>
#include <string>

namespace ek {

class CWaveData;

/// The frames that an edit runs over, the channel it concerns, and how it is shown.
struct EditRange {
    uint64_t Start = 0;
    uint64_t Count = 0;
    ChannelCode Code = ChannelAll;
    std::string Caption;
    bool Cancellable = false;
};

/// A processor that changes the sample data of a store chunk by chunk.
class EditProcessor : public CWaveDataProcessor {
protected:
    EditProcessor(CWaveData& store, EditRange range);
    ~EditProcessor() override = default;

    /// One chunk of the store, changed in place; `first` is relative to the range. False ends the run with Failed.
    virtual bool Process(int16_t* frames, uint64_t first, uint64_t count) = 0;

    const WAVEFORMATEXTENSIBLE& StoreFormat() const;
    bool AllChannels() const; ///< the edit concerns whole frames
    bool WriteBack(const void* frames, uint64_t first, uint64_t count);

    CWaveData& m_store;
    const EditRange m_range;
};

/// Copies frames between the store and a block.
class CXchgWaveDataProgress final : public EditProcessor {
public:
    CXchgWaveDataProgress(CWaveData& store, EditRange range, SoundBuffer& block, bool intoStore);

private:
    bool Process(int16_t* frames, uint64_t first, uint64_t count) override;

    SoundBuffer& m_block;
    const bool m_intoStore;
};

/// Silences frames; the old ones go into an undo block (may be null) from its fill position on.
class CClearWaveDataProgress final : public EditProcessor {
public:
    CClearWaveDataProgress(CWaveData& store, EditRange range, SoundBuffer* undo);

private:
    bool Process(int16_t* frames, uint64_t first, uint64_t count) override;

    SoundBuffer* m_undo;
};

/// Mixes a block in; the old frames go into an undo block (may be null) as far as it has room.
class CMixWaveDataProgress final : public EditProcessor {
public:
    CMixWaveDataProgress(CWaveData& store, EditRange range, const SoundBuffer& source, SoundBuffer* undo);

private:
    bool Process(int16_t* frames, uint64_t first, uint64_t count) override;

    const SoundBuffer& m_source;
    SoundBuffer* m_undo;
};

/// Puts a block in the place of the range: of the frames, or of one channel, which is silent behind the block's end.
class CSubstituteWaveDataProgress final : public EditProcessor {
public:
    CSubstituteWaveDataProgress(CWaveData& store, EditRange range, const SoundBuffer& source);

private:
    bool Process(int16_t* frames, uint64_t first, uint64_t count) override;

    const SoundBuffer& m_source;
};

} // namespace ek
