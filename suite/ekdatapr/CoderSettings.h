// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <cstdint>
#include <string_view>

namespace ek {

struct CoderType;

/// What was last chosen for an extension; what was never chosen is the default of the type.
struct CoderSettings {
    int Subtype = 0;
    double Quality = 0;
    uint32_t BitRate = 0; ///< kbit/s
    uint32_t Channels = 0;
    bool OpenAfter = false;
};

CoderSettings LoadCoderSettings(const CoderType& type, std::string_view extension);

} // namespace ek
