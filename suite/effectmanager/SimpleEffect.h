// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "effectmanager/EffectLibrary.h"

namespace ek {

/// One use of an effect of the library, with settings of its own.
class CSimpleEffect final : public CEffectAbstract {
public:
    explicit CSimpleEffect(LibraryEffectPtr effect); ///< not null

    uint32_t GetData(_SOUNDDATAEX_* sound) override;
    bool IsStreamOpened() const override { return m_processor != nullptr; }
    const std::string& GetTitle() const override { return m_effect->Title(); }
    bool IsComplex() const override { return false; }
    void CloseStream() override { m_processor.reset(); }
    tEffError OpenStream(const WAVEFORMATEXTENSIBLE* format) override;
    int32_t GetPresetIndex() const override { return m_presetIndex; }
    void SetPresetIndex(int32_t index) override; ///< any that the library has no preset for is NoPreset
    void Initialize() override;
    uint32_t Latency() const override;
    void Restart() override;
    bool TakeSwitches(bool isChainOn) override;

    const std::string& GetLibraryName() const { return m_effect->LibraryName(); }
    const LibraryEffectPtr& GetLibraryEffect() const { return m_effect; }
    const EffectSettings& GetSettings() const { return m_settings; }
    /// Heard from the next block on. A stream that is being pulled: CEffectTree::SetSoundEffectSettings.
    void SetSettings(const EffectSettings& settings);
    /// The settings of a preset, or of NoPreset; false, and nothing changes, when there is no such preset.
    bool LoadPresetSettings(int32_t index, EffectSettings& settings) const;
    bool LoadPreset(int32_t index); ///< sets them, and the index

    QWidget* CreateSettingsWindow(QWidget* parent, EffectSettings& settings, const WAVEFORMATEXTENSIBLE& format) const
    {
        return m_effect->CreateSettingsWindow(parent, settings, format);
    }
    bool NeedUpdate() const { return m_effect->NeedUpdate(); }
    bool HasHelp(const QWidget* settingsWindow) const { return m_effect->HasHelp(settingsWindow); }
    void ShowHelp(QWidget* settingsWindow) const { m_effect->ShowHelp(settingsWindow); }

private:
    LibraryEffectPtr m_effect;
    EffectSettings m_settings;
    int32_t m_presetIndex = NoPreset;
    std::unique_ptr<EffectProcessor> m_processor; ///< null: no stream is open
    bool m_isOn = true;
};

} // namespace ek
