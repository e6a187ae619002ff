// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "effectmanager/EffectAbstract.h"

namespace ek {

/// An effect at work on one stream of sound: made, opened once, and thrown away with the stream.
class EffectProcessor {
public:
    virtual ~EffectProcessor() = default;
    virtual tEffError Open(const WAVEFORMATEXTENSIBLE& format) = 0;
    /// Called before Open, and between blocks when the user changes something.
    virtual void SetSettings(const EffectSettings& settings) = 0;
    virtual uint32_t Latency() const { return 0; } ///< frames; known once open, the same until the end
    virtual void Restart() = 0;                    ///< forgets the sound
    /// Fills the record with what becomes of `source`'s sound; returns the frames filled, and restarts itself when
    /// these are fewer than wanted: that was all. Allocates nothing.
    virtual uint32_t Produce(CAudioAbstract& source, _SOUNDDATAEX_& sound) = 0;
};

/// A processor that gives a frame for each frame that it gets, some frames late or at once. It need not care for its
/// delay: so many frames are pulled ahead, the first ones that it gives are dropped, and at the end it is fed silence
/// until it has given back what it holds. So each frame comes out at its place.
class FrameProcessor : public EffectProcessor {
public:
    tEffError Open(const WAVEFORMATEXTENSIBLE& format) final;
    void Restart() final;
    uint32_t Produce(CAudioAbstract& source, _SOUNDDATAEX_& sound) final;

protected:
    virtual tEffError OpenFrames(const WAVEFORMATEXTENSIBLE& format) = 0;
    virtual void RestartFrames() = 0;
    /// `channels` has as many buffers as the format has channels; they hold what goes in, and then what comes out.
    virtual void Process(float* const* channels, uint32_t frames) = 0;

private:
    void Pull(CAudioAbstract& source, _SOUNDDATAEX_& sound);
    void PullAhead(CAudioAbstract& source);

    uint32_t m_channels = 0;
    std::vector<float> m_ahead;   ///< room for the frames that are pulled ahead, one channel after the other
    bool m_isFirst = true;        ///< nothing has been pulled yet
    bool m_isSourceEnded = false; ///< and silence is fed instead
    uint64_t m_held = 0;          ///< frames pulled and not given out
};

} // namespace ek
