// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <cstdint>
#include <span>
#include <string_view>

namespace ek {

/// What a coder of samples is given.
enum class SampleKind { Bits8, Bits16, Bits24, Bits32, Real };

/// A way to encode samples that this library writes.
struct SampleCoding {
    const char* Name; ///< as settings and scripts know it
    const char* Label;
    int SfSubtype;
    SampleKind Kind;
    double BytesPerSample; ///< rounded up; 0 for codings whose rate is a setting
};

/// What besides the coding decides the size of a file.
enum class RateSetting { None, Quality, BitRate };

/// A type of file that this library writes.
struct CoderType {
    const char* Label;
    std::span<const std::string_view> Extensions; ///< lower case; the usual one first
    std::span<const int> Containers;              ///< of the sound library; the usual one first
    std::span<const int> Subtypes;                ///< offered codings; the usual one first
    RateSetting Rate = RateSetting::None;
    std::span<const uint32_t> BitRates = {}; ///< kbit/s; empty: any up to MaxBitRate
    uint32_t MaxChannels = 8;
};

inline constexpr uint32_t MinBitRate = 16;
inline constexpr uint32_t MaxBitRate = 512;

std::span<const CoderType> CoderTypes();
/// Any case, without dot; null for an extension that is not written.
const CoderType* FindCoderType(std::string_view extension);

const SampleCoding* FindCoding(int sfFormat); ///< null when it is not written
const SampleCoding* FindCoding(std::string_view name);

/// What decides the size of a file with this coding.
RateSetting RateSettingOf(int sfFormat);

/// The rate nearest above that the coding can hold, else the highest one.
uint32_t WritableRate(int sfFormat, uint32_t rate);

} // namespace ek
