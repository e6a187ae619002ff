// SPDX-License-Identifier: GPL-3.0-or-later
#include "effectmanager/SimpleEffect.h"

#include <exception>
#include <utility>

namespace ek {

CSimpleEffect::CSimpleEffect(LibraryEffectPtr effect)
    : m_effect(std::move(effect)), m_settings(m_effect->InitialSettings())
{
}

uint32_t CSimpleEffect::GetData(_SOUNDDATAEX_* sound)
{
    return m_processor && m_isOn && Prev() ? m_processor->Produce(*Prev(), *sound) : PassThrough(sound);
}

tEffError CSimpleEffect::OpenStream(const WAVEFORMATEXTENSIBLE* format)
{
    CloseStream();
    tEffError error = EffectFailed;
    try {
        std::unique_ptr<EffectProcessor> processor = m_effect->MakeProcessor();
        if (processor) {
            processor->SetSettings(m_settings);
            error = processor->Open(*format);
        }
        if (error == EffectSuccess)
            m_processor = std::move(processor);
    } catch (const std::exception&) { // no memory, or a plug-in's own
        error = EffectFailed;
    }
    TakeSwitches(true);
    return error;
}

void CSimpleEffect::SetPresetIndex(int32_t index)
{
    const auto count = static_cast<int32_t>(m_effect->GetPresetsArray().size());
    m_presetIndex = index >= 0 && index < count ? index : NoPreset;
}

void CSimpleEffect::Initialize()
{
    LoadPreset(NoPreset);
}

uint32_t CSimpleEffect::Latency() const
{
    return m_processor && m_isOn ? m_processor->Latency() : 0;
}

void CSimpleEffect::Restart()
{
    if (m_processor)
        m_processor->Restart();
}

bool CSimpleEffect::TakeSwitches(bool isChainOn)
{
    const bool isOn = isChainOn && IsActive();
    return std::exchange(m_isOn, isOn) != isOn;
}

void CSimpleEffect::SetSettings(const EffectSettings& settings)
{
    m_settings = m_effect->Corrected(settings);
    if (m_processor)
        m_processor->SetSettings(m_settings);
}

bool CSimpleEffect::LoadPresetSettings(int32_t index, EffectSettings& settings) const
{
    const std::span<const EffectPreset> presets = m_effect->GetPresetsArray();
    if (index < NoPreset || index >= static_cast<int32_t>(presets.size()))
        return false;
    settings = index == NoPreset ? m_effect->InitialSettings() : m_effect->Corrected(presets[index].Settings);
    return true;
}

bool CSimpleEffect::LoadPreset(int32_t index)
{
    EffectSettings settings;
    if (!LoadPresetSettings(index, settings))
        return false;
    SetSettings(settings);
    m_presetIndex = index;
    return true;
}

} // namespace ek
