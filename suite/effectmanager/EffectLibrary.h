// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "effectmanager/EffectProcessor.h"

#include <memory>
#include <span>
#include <string>
#include <vector>

class QWidget;

namespace ek {

struct EffectParameter {
    std::string Name; ///< for a person, and in library files: never changed once an effect has been given out
    std::string Unit = {};
    float Least = 0;
    float Greatest = 1;
    float Initial = 0;
};

struct EffectPreset {
    std::string Name;
    EffectSettings Settings;
};

/// An effect that the library offers: what all its uses have in common.
class LibraryEffect {
public:
    virtual ~LibraryEffect() = default;
    virtual const std::string& LibraryName() const = 0; ///< in library files, unique
    virtual const std::string& Title() const = 0;       ///< for a person
    virtual std::span<const EffectParameter> Parameters() const = 0;
    virtual std::span<const EffectPreset> GetPresetsArray() const { return {}; }
    virtual std::unique_ptr<EffectProcessor> MakeProcessor() const = 0;

    /// A window that edits `settings` in place, owned by `parent`; null: this effect has none.
    virtual QWidget* CreateSettingsWindow(QWidget* /*parent*/, EffectSettings& /*settings*/,
                                          const WAVEFORMATEXTENSIBLE& /*format*/) const
    {
        return nullptr;
    }
    /// Whether changed settings have to be given to the tree; otherwise the window does that itself.
    virtual bool NeedUpdate() const { return true; }
    virtual bool HasHelp(const QWidget* /*settingsWindow*/) const { return false; }
    virtual void ShowHelp(QWidget* /*settingsWindow*/) const {}

    EffectSettings InitialSettings() const;
    /// As they can be used: a value for each parameter, the initial one where there is none, within its limits.
    EffectSettings Corrected(EffectSettings settings) const;
};

using LibraryEffectPtr = std::shared_ptr<const LibraryEffect>;

/// An effect of the program itself is a file with one of these and its processor, and a line in the table of those
/// that its provider offers.
class BuiltInEffect final : public LibraryEffect {
public:
    struct Description {
        std::string LibraryName;
        std::string Title;
        std::vector<EffectParameter> Parameters;
        std::unique_ptr<EffectProcessor> (*Make)() = nullptr;
        std::vector<EffectPreset> Presets;
    };

    explicit BuiltInEffect(Description description) : m_description(std::move(description)) {}
    const std::string& LibraryName() const override { return m_description.LibraryName; }
    const std::string& Title() const override { return m_description.Title; }
    std::span<const EffectParameter> Parameters() const override { return m_description.Parameters; }
    std::span<const EffectPreset> GetPresetsArray() const override { return m_description.Presets; }
    std::unique_ptr<EffectProcessor> MakeProcessor() const override { return m_description.Make(); }

private:
    Description m_description;
};

enum class EffectFamily { VoiceMorphs, SpecialEffects, DirectX, VST };

/// Where effects come from: the program itself, or one plug-in format.
class EffectProvider {
public:
    virtual ~EffectProvider() = default;
    virtual EffectFamily Family() const = 0;
    virtual std::string FolderTitle() const = 0; ///< the library shows the effects in a folder of this name
    virtual std::vector<LibraryEffectPtr> Scan() = 0;
};

} // namespace ek
