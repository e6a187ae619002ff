// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <cstddef>
#include <cstdint>
#include <filesystem>
#include <span>
#include <vector>

namespace ek {

/// Values over the whole 16-bit range, the same for the same seed.
std::vector<int16_t> MakeNoise(uint32_t seed, size_t values);

/// first, first + step, ... wrapping around at the ends of the 16-bit range.
std::vector<int16_t> MakeRamp(size_t values, int first = 0, int step = 1);

/// A plain PCM WAV file of interleaved 16-bit values.
void WriteWav(const std::filesystem::path& path, uint32_t channels, std::span<const int16_t> values,
              uint32_t rate = 44100);
/// The same of 8-bit unsigned values.
void WriteWav8(const std::filesystem::path& path, uint32_t channels, std::span<const uint8_t> values,
               uint32_t rate = 44100);

std::vector<char> ReadBytes(const std::filesystem::path& path);

} // namespace ek
