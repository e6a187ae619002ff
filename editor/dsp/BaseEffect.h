// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "ek/SoundData.h"
#include "ek/WaveFormat.h"

namespace ek {

/// A processing step for blocks of sound in work; here one that does nothing. One thread at a time.
class CBaseEffect {
public:
    CBaseEffect() = default;
    virtual ~CBaseEffect() = default;
    CBaseEffect(const CBaseEffect&) = delete;
    CBaseEffect& operator=(const CBaseEffect&) = delete;

    /// Gets ready for a new stream of this rate and channel count.
    virtual void SetFormat(const WAVEFORMATEXTENSIBLE& format)
    {
        m_sampleRate = format.nSamplesPerSec;
        m_channels = format.nChannels;
    }
    /// Runs the chain of the next effect, if there is one, and then Process; whether that gave nonzero.
    virtual bool ProcessChain(_SOUNDDATAEX_& sound)
    {
        if (m_next)
            m_next->ProcessChain(sound);
        return Process(sound) != 0;
    }
    virtual void FreeState() {}
    /// The effect that comes before this one; null for none. The caller keeps it.
    virtual void SetNext(CBaseEffect* next) { m_next = next; }
    virtual uint32_t Process(_SOUNDDATAEX_&) { return 1; }

protected:
    uint32_t SampleRate() const { return m_sampleRate; }
    uint16_t Channels() const { return m_channels; }

private:
    CBaseEffect* m_next = nullptr;
    uint32_t m_sampleRate = 0;
    uint16_t m_channels = 0;
};

} // namespace ek
