// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <cstdint>
#include <filesystem>
#include <vector>

namespace ek {

inline constexpr uint32_t DemoRate = 44100;

/// Twelve seconds of 16-bit stereo, interleaved: a plucked melody that moves between the sides, a chord that swells
/// and fades, drum-like bursts. The same samples at every call.
std::vector<int16_t> MakeDemoSound();

/// Writes it as a WAV file, over an existing one in one step. False when that failed.
bool WriteDemoSound(const std::filesystem::path& file);

} // namespace ek
