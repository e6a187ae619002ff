// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <cstdint>
#include <filesystem>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

namespace ek {

/// What to tell the user when the host is older than version 1.0; nothing when it is new enough. The version has
/// its major part in bits 24-31, the minor in bits 16-23 and the build in bits 0-15.
std::optional<std::string> HostVersionRefusal(uint32_t version);

/// A textual request of the host.
struct PassedRequest {
    bool IsOpen = false; ///< the first word is "Open", in any case
    std::vector<std::filesystem::path> Files;
};

/// The files of an Open request stand in double quotes; a last quote without a partner is passed over, and so is
/// what stands outside of them.
PassedRequest ParsePassedRequest(std::string_view text);

} // namespace ek
