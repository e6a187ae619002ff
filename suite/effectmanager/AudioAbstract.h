// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "ek/SoundData.h"

namespace ek {

/// A link of a chain of sound: an input, an effect, or what stands for a whole chain. The order of the virtual
/// functions is the contract.
class CAudioAbstract {
public:
    virtual ~CAudioAbstract() = default;
    virtual void SetNext(CAudioAbstract* next) { m_next = next; }         ///< who pulls from this one; not owned
    virtual void SetPrev(CAudioAbstract* previous) { m_prev = previous; } ///< whom this one pulls from; not owned
    /// Fills the record's buffers from their beginning; returns the frames filled. Fewer than FrameCount: that was all.
    virtual uint32_t GetData(_SOUNDDATAEX_* sound) = 0;

protected:
    CAudioAbstract* Next() const { return m_next; }
    CAudioAbstract* Prev() const { return m_prev; }

private:
    CAudioAbstract* m_next = nullptr;
    CAudioAbstract* m_prev = nullptr;
};

} // namespace ek
