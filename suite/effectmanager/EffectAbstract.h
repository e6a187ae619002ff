// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "effectmanager/AudioAbstract.h"

#include <atomic>
#include <cstdint>
#include <string>
#include <vector>

namespace ek {

enum tEffError : uint32_t {
    EffectSuccess = 0,
    EffectFailed = 1,
    EffectMonoOrStereoOnly = 3,
    EffectStereoOnly = 4,
};

/// How an effect is set: one value for each of its parameters, and what a plug-in keeps besides, as text.
struct EffectSettings {
    std::vector<float> Values;
    std::string State;

    bool operator==(const EffectSettings&) const = default;
};

inline constexpr int32_t NoPreset = -1; ///< the settings that an effect begins with

/// An effect as a link of a chain: it pulls from the link before it. The order of the virtual functions is the
/// contract. One thread at a time, but for SetActive and IsActive.
class CEffectAbstract : public CAudioAbstract {
public:
    virtual bool IsStreamOpened() const = 0;
    virtual const std::string& GetTitle() const = 0;
    virtual bool IsComplex() const = 0;
    virtual void CloseStream() = 0;
    /// Opens anew when it is open already. On failure the stream is closed.
    virtual tEffError OpenStream(const WAVEFORMATEXTENSIBLE* format) = 0;
    virtual int32_t GetPresetIndex() const = 0; ///< the preset that the user chose last, or NoPreset
    virtual void SetPresetIndex(int32_t index) = 0;
    virtual void Initialize() = 0; ///< back to the settings that an effect begins with

    /// How many frames the open stream has pulled and not given out, once it has given out any.
    virtual uint32_t Latency() const = 0;
    /// Forgets the sound of the open stream: what is pulled next comes out next.
    virtual void Restart() = 0;
    /// An effect that was switched on or off takes that up here, between two blocks, so that its latency is the same
    /// throughout a block. `isChainOn`: whether what it is part of is on. True: something has changed.
    virtual bool TakeSwitches(bool isChainOn) = 0;

    /// Switched off, the sound goes by unchanged. A new effect is on.
    void SetActive(bool active) { m_isActive = active; }
    bool IsActive() const { return m_isActive; }

protected:
    /// All of the sound, unchanged; without a link before this one there is none.
    uint32_t PassThrough(_SOUNDDATAEX_* sound) { return Prev() ? Prev()->GetData(sound) : 0; }

private:
    std::atomic<bool> m_isActive{true};
};

} // namespace ek
