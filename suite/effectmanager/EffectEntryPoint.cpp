// SPDX-License-Identifier: GPL-3.0-or-later
#include "effectmanager/EffectEntryPoint.h"

#include <algorithm>

namespace ek {

CEffectEntryPoint::CEffectEntryPoint(std::recursive_mutex& lock) : CComplexEffect({}), m_lock(lock)
{
    SetPrev(&m_input);
}

tEffError CEffectEntryPoint::OpenStream(const WAVEFORMATEXTENSIBLE* format)
{
    const tEffError error = CComplexEffect::OpenStream(format);
    m_format = *format;
    m_input.Open(format->nChannels);
    m_input.Remember(Latency());
    m_position = 0;
    return error;
}

uint32_t CEffectEntryPoint::GetData(_SOUNDDATAEX_* sound)
{
    const std::lock_guard lock(m_lock);
    const uint32_t held = Held();
    if (TakeSwitches(true))
        GoOn(held);
    const uint32_t given = std::min(CComplexEffect::GetData(sound), sound->FrameCount);
    m_position += given;
    return given;
}

void CEffectEntryPoint::Restart()
{
    CComplexEffect::Restart();
    m_input.Restart();
    m_position = 0;
}

tEffError CEffectEntryPoint::Use(CEffectAbstract* effect)
{
    tEffError error = EffectSuccess;
    Change([&] {
        SetEffects(effect ? std::vector{effect} : std::vector<CEffectAbstract*>());
        if (effect && IsStreamOpened())
            error = effect->OpenStream(&m_format);
        if (error != EffectSuccess)
            SetEffects({});
    });
    return error;
}

void CEffectEntryPoint::Change(const std::function<void()>& change)
{
    const uint32_t held = Held();
    change();
    SetPrev(&m_input); // links anew, all the way down
    TakeSwitches(true);
    if (IsStreamOpened())
        GoOn(held);
}

/// An effect that changes the length has no latency and no frame to give back: what comes in is not what goes out.
uint32_t CEffectEntryPoint::Held() const
{
    const uint64_t pulled = m_input.Position();
    return pulled > m_position ? static_cast<uint32_t>(std::min<uint64_t>(pulled - m_position, Latency())) : 0;
}

void CEffectEntryPoint::GoOn(uint32_t held)
{
    m_input.Rewind(held);
    m_position = m_input.Position();
    m_input.Remember(Latency());
    CComplexEffect::Restart();
}

} // namespace ek
