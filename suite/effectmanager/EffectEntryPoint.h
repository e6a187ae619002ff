// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "effectmanager/ComplexEffect.h"
#include "effectmanager/RewindableInput.h"

#include <functional>
#include <mutex>

namespace ek {

/// Where sound enters the tree: the input, and the effect in use as a chain of one. It holds `lock` while it produces
/// sound; every other call is made with it held. Effects may be exchanged, edited and switched in the middle of a
/// stream: no frame is lost or comes twice.
class CEffectEntryPoint final : public CComplexEffect {
public:
    explicit CEffectEntryPoint(std::recursive_mutex& lock);

    void SetAudioInput(CAudioAbstract* input) { m_input.SetPrev(input); }
    tEffError OpenStream(const WAVEFORMATEXTENSIBLE* format) override;
    uint32_t GetData(_SOUNDDATAEX_* sound) override;
    void Restart() override;
    /// On another effect than the one before, or again on the same one when it is composed anew. Null: none. On
    /// failure, which is only possible with an open stream, there is no effect in use.
    tEffError Use(CEffectAbstract* effect);
    CEffectAbstract* InUse() const { return GetEffects().empty() ? nullptr : GetEffects().front(); }
    /// Runs what changes the links between effects, or their composition.
    void Change(const std::function<void()>& change);
    uint32_t Ahead() const { return m_input.Again() + Latency(); } ///< frames pulled and not given out

private:
    uint32_t Held() const; ///< frames that the effects hold
    void GoOn(uint32_t held);

    std::recursive_mutex& m_lock;
    RewindableInput m_input;
    WAVEFORMATEXTENSIBLE m_format;
    uint64_t m_position = 0; ///< of the next frame that comes out, counted as the input counts
};

} // namespace ek
