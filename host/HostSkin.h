// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "host/SkinFile.h"

namespace ek {

/// The skin in force, as the module asks for it and as the host's own windows wear it.
class HostSkin final : public CHostSkin {
public:
    HostSkin() = default;
    ~HostSkin();
    HostSkin(const HostSkin&) = delete;
    HostSkin& operator=(const HostSkin&) = delete;

    SkinColor GetColor(uint32_t colorId) override { return m_skin.Color(colorId); }
    void SkinWindow(QWidget* window, int recursive) override;
    const enXml* GetSkinXml(const char16_t* moduleName, const char16_t* elementName) override;

    /// Dresses the whole application. Elements that GetSkinXml gave out are gone afterwards.
    void Use(Skin skin);

private:
    Skin m_skin;
};

} // namespace ek
