// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <cstddef>
#include <cstdint>

namespace ek {

// Samples in: full scale is 1. Not a number becomes silence, beyond full scale saturates.
//
// A value that the target cannot hold gets triangular noise of one step to each side before it is rounded; a value
// that it can hold stays exact, so that silence stays silent. The noise belongs to the sample's index in the
// sound: the same sound read twice, or in other pieces, gives the same values.

void DitherTo16(const double* samples, size_t count, uint64_t firstIndex, int16_t* out);
/// As 16-bit values whose lower eight bits are zero.
void DitherTo8(const double* samples, size_t count, uint64_t firstIndex, int16_t* out);

/// Rounded to 24 bits, which are the upper ones of `out`.
void RoundTo24(const double* samples, size_t count, int32_t* out);
void RoundTo32(const double* samples, size_t count, int32_t* out);

/// Makes the samples ones of a plain sound: at most full scale, numbers only.
void ClampToFullScale(double* samples, size_t count);

} // namespace ek
