// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "effectmanager/EffectAbstract.h"

#include <utility>

namespace ek {

/// Effects one after the other. Without any of them, or switched off, the sound goes by unchanged.
class CComplexEffect : public CEffectAbstract {
public:
    explicit CComplexEffect(std::string title) : m_title(std::move(title)) {}

    void SetPrev(CAudioAbstract* previous) override;
    uint32_t GetData(_SOUNDDATAEX_* sound) override;
    bool IsStreamOpened() const override { return m_isOpen; }
    const std::string& GetTitle() const override { return m_title; }
    bool IsComplex() const override { return true; }
    void CloseStream() override;
    /// The error of the first effect that refuses; one that is switched off may, and is then passed over.
    tEffError OpenStream(const WAVEFORMATEXTENSIBLE* format) override;
    int32_t GetPresetIndex() const override { return NoPreset; }
    void SetPresetIndex(int32_t) override {}
    void Initialize() override; ///< each of its effects
    uint32_t Latency() const override;
    void Restart() override;
    bool TakeSwitches(bool isChainOn) override;

    void SetTitle(std::string title) { m_title = std::move(title); }
    /// Not owned, in the order in which the sound goes through them; those that are left out are closed.
    void SetEffects(std::vector<CEffectAbstract*> effects);
    const std::vector<CEffectAbstract*>& GetEffects() const { return m_effects; }

private:
    void Link();

    std::string m_title;
    std::vector<CEffectAbstract*> m_effects;
    bool m_isOpen = false;
};

} // namespace ek
