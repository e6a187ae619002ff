// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <cstdint>

namespace ek {

/// What the module says of itself to the host. The name is also its section of the settings, its name as an owner of
/// devices and the key of its skin elements.
inline constexpr char16_t ModuleNameUtf16[] = u"Ek Wave Editor";
inline constexpr char16_t ModuleVersion[] = u"5.0.58";
inline constexpr char16_t ModuleCompany[] = u"Ek Wave Editor project";
inline constexpr uint32_t ModuleKind = 2;

} // namespace ek
