// SPDX-License-Identifier: GPL-3.0-or-later
#include "effectmanager/ComplexEffect.h"

#include <algorithm>

namespace ek {

void CComplexEffect::SetPrev(CAudioAbstract* previous)
{
    CEffectAbstract::SetPrev(previous);
    Link();
}

void CComplexEffect::SetEffects(std::vector<CEffectAbstract*> effects)
{
    for (CEffectAbstract* effect : m_effects) {
        if (std::find(effects.begin(), effects.end(), effect) != effects.end())
            continue;
        effect->CloseStream();
        effect->SetPrev(nullptr);
        effect->SetNext(nullptr);
    }
    m_effects = std::move(effects);
    Link();
}

void CComplexEffect::Link()
{
    CAudioAbstract* previous = Prev();
    for (CEffectAbstract* effect : m_effects) {
        effect->SetPrev(previous);
        if (previous)
            previous->SetNext(effect);
        previous = effect;
    }
}

uint32_t CComplexEffect::GetData(_SOUNDDATAEX_* sound)
{
    return m_effects.empty() ? PassThrough(sound) : m_effects.back()->GetData(sound);
}

tEffError CComplexEffect::OpenStream(const WAVEFORMATEXTENSIBLE* format)
{
    CloseStream();
    Link(); // an effect that was used on its own in the meantime has other neighbours
    for (CEffectAbstract* effect : m_effects) {
        const tEffError error = effect->OpenStream(format);
        if (error != EffectSuccess && effect->IsActive()) {
            CloseStream();
            return error;
        }
    }
    m_isOpen = true;
    TakeSwitches(true);
    return EffectSuccess;
}

void CComplexEffect::CloseStream()
{
    for (CEffectAbstract* effect : m_effects)
        effect->CloseStream();
    m_isOpen = false;
}

void CComplexEffect::Initialize()
{
    for (CEffectAbstract* effect : m_effects)
        effect->Initialize();
}

uint32_t CComplexEffect::Latency() const
{
    uint32_t latency = 0;
    for (const CEffectAbstract* effect : m_effects)
        latency += effect->Latency();
    return latency;
}

void CComplexEffect::Restart()
{
    for (CEffectAbstract* effect : m_effects)
        effect->Restart();
}

bool CComplexEffect::TakeSwitches(bool isChainOn)
{
    bool hasChanged = false;
    for (CEffectAbstract* effect : m_effects)
        hasChanged |= effect->TakeSwitches(isChainOn && IsActive());
    return hasChanged;
}

} // namespace ek
