// SPDX-License-Identifier: GPL-3.0-or-later
#include "effectmanager/EffectLibrary.h"

#include <algorithm>
#include <cmath>

namespace ek {

EffectSettings LibraryEffect::InitialSettings() const
{
    return Corrected({});
}

EffectSettings LibraryEffect::Corrected(EffectSettings settings) const
{
    const std::span<const EffectParameter> parameters = Parameters();
    const size_t given = std::min(settings.Values.size(), parameters.size());
    settings.Values.resize(parameters.size());
    for (size_t i = 0; i < parameters.size(); ++i) {
        float& value = settings.Values[i];
        const bool isUsable = i < given && std::isfinite(value);
        value = isUsable ? std::clamp(value, parameters[i].Least, parameters[i].Greatest) : parameters[i].Initial;
    }
    return settings;
}

} // namespace ek
