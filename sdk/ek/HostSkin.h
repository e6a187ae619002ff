// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <cstdint>

class QWidget;

namespace ek {

class enXml;

/// 0x00BBGGRR, as in the family's skin files: red in the lowest byte.
using SkinColor = uint32_t;

/// Colour identifiers of the editor's own elements. 0 to 28 are the system colours (see skinmanager).
enum EditorColor : uint32_t {
    COLOR_EDITOR_TAB_ACTIVE = 0x100,
    COLOR_EDITOR_TAB_INACTIVE = 0x101,
    COLOR_EDITOR_WAVE = 0x102,
    COLOR_EDITOR_WAVE_HOR_LINES = 0x103,
    COLOR_EDITOR_WAVE_BG = 0x104,
    COLOR_EDITOR_WORKSPACE = 0x105,
    COLOR_EDITOR_POS_SELECTION = 0x106,
    COLOR_EDITOR_PANELS_LINES = 0x107,
    COLOR_EDITOR_GRADIENT1 = 0x108,
    COLOR_EDITOR_GRADIENT2 = 0x109,
};

/// The host's skin. The order of the virtual functions is the contract.
class CHostSkin {
public:
    virtual SkinColor GetColor(uint32_t colorId) = 0; ///< slot 0
    /// slot 1: applies the skin to a window that the module did not create itself.
    virtual void SkinWindow(QWidget* window, int recursive) = 0;
    /// slot 2: the skin's description of one element of a module, or null. Owned by the host, valid until
    /// the next change of skin. The module asks for "Main" and "Effects".
    virtual const enXml* GetSkinXml(const char16_t* moduleName, const char16_t* elementName) = 0;

protected:
    ~CHostSkin() = default;
};

} // namespace ek
