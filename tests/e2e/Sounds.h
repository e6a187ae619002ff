// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <cstdint>
#include <filesystem>
#include <vector>

namespace ek {

inline constexpr int Rate = 44100; ///< of all sounds here, which are 16-bit and stereo

std::vector<int16_t> MakeSound(unsigned seed); ///< noise of two seconds; no limiter changes it
bool WriteSound(const std::filesystem::path& path, const std::vector<int16_t>& samples);
/// Empty when the file is not a complete 16-bit stereo sound of the type, an SF_FORMAT.
std::vector<int16_t> ReadSound(const std::filesystem::path& path, int type);

} // namespace ek
