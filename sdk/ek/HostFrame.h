// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <cstdint>

namespace ek {

class CHostPlayer;
class CHostRecorder;
class CHostSkin;

/// The host's settings store and its shared user interface. Strings are UTF-16, zero-terminated. The order of
/// the virtual functions is the contract.
class CHostServices {
public:
    /// slot 0: stores the value persistently.
    virtual void WriteSetting(const char16_t* section, const char16_t* key, const char16_t* value) = 0;
    /// slot 1: 1 and the value (cut to maxChars including the terminating zero) when the key exists, else 0 and
    /// the buffer untouched.
    virtual int ReadSetting(const char16_t* section, const char16_t* key, char16_t* buffer, uint32_t maxChars) = 0;
    virtual void RefreshMenu(const char16_t* moduleName) = 0; ///< slot 2: rebuild the menu bar from EkGetMenu
    virtual void Reserved3() {}
    virtual void Reserved4() {}
    virtual void Reserved5() {}
    virtual void Reserved6() {}
    virtual void Reserved7() {}
    virtual void Reserved8() {}
    virtual void Reserved9() {}
    virtual void ShowStatusText(const char16_t* text, uint32_t milliseconds) = 0; ///< slot 10

protected:
    ~CHostServices() = default;
};

/// What the host hands to EkInitialize. It lives until EkFree has returned. Each accessor may return null:
/// the module then does without that service. The order of the virtual functions is the contract.
class CHostFrame {
public:
    /// slot 0: major in bits 24-31, minor in bits 16-23, build in bits 0-15.
    virtual uint32_t GetVersion() = 0;
    virtual CHostServices* GetServices() = 0;     ///< slot 1
    virtual CHostPlayer* GetPlayer() = 0;         ///< slot 2
    virtual CHostRecorder* GetRecorder() = 0;     ///< slot 3
    virtual void* Reserved4() { return nullptr; } ///< slot 4; never called by the module
    virtual CHostSkin* GetSkin() = 0;             ///< slot 5

protected:
    ~CHostFrame() = default;
};

} // namespace ek
