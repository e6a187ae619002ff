// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "dsp/NspError.h"

#include <cstdint>
#include <memory>

namespace ek {

// Signal processing on 32-bit floats: vectors, transforms of real signals, recursive filters. Arguments are checked in
// the order of the checks named here; the first violation is reported with that text and BadArgument, and nothing else
// happens (see NspError.h). Any thread, several at once on different buffers and states. Nothing throws.

struct ComplexFloat {
    float Re = 0;
    float Im = 0;
};

// Vectors of n values. Checks: "dst==0", "src==0" (where there is a source), "n<=0".

void nspsbMpy1(float value, float* dst, int32_t n);                    ///< dst[i] *= value
void nspsbAdd2(const float* src, float* dst, int32_t n);               ///< dst[i] += src[i]
void nspcbMpy2(const ComplexFloat* src, ComplexFloat* dst, int32_t n); ///< dst[i] = dst[i] * src[i]

// Discrete Fourier transforms between a real signal of N = 2^order values and the bins 0 .. N/2 of its spectrum
// (N/2 + 1 complex values; the other bins are their conjugates). The input stays as it is, unless `outSamps` begins at
// `inSamps`; other overlaps are not allowed. Buffers aligned to 16 bytes save a copy. The function decides about the
// direction, the flags about the scale: the result is divided by N when NspInverse is set and NspNoScale is not.
// Checks: "inSamps==0", "outSamps==0", "order<0", "order>31", "(flags & 1)==0 && (flags & 2)==0",
// "(flags & 1) && (flags & 2)". An order has tables of about the size of the signal, which it keeps for good; where
// there is no memory for them the status is OutOfMemory and the output is left as it was.
// Not for a sound card's thread: the first transform of an order makes these tables under a lock that all orders share,
// buffers that are not aligned are copied to allocated ones, and FFTW takes work memory for most orders. An order that
// is set up ahead takes no lock, and on aligned buffers nothing but that work memory.

/// Makes the tables of an order ahead. Locks and allocates. Checks: "order<0", "order>31"; OutOfMemory.
void nspsFftSetup(int32_t order);

inline constexpr int32_t NspForward = 1;
inline constexpr int32_t NspInverse = 2;
inline constexpr int32_t NspNoScale = 16;

/// outSamps[k] = sum of inSamps[n] * e^(-2 pi i k n / N)
void nspsRealFftNip(const float* inSamps, ComplexFloat* outSamps, int32_t order, int32_t flags);
/// outSamps[n] = sum over all N bins of inSamps[k] * e^(2 pi i k n / N), scaled. The imaginary parts of the bins 0 and
/// N/2, which a real signal does not have, are not looked at.
void nspsCcsFftNip(const ComplexFloat* inSamps, float* outSamps, int32_t order, int32_t flags);

/// A recursive filter and the past of the one stream that runs through it. One thread at a time. It is not copied or
/// moved, which would leave a mark without its filter behind.
struct NspIirState {
    NspIirState() = default;
    NspIirState(const NspIirState&) = delete;
    NspIirState& operator=(const NspIirState&) = delete;

    static constexpr uint32_t InitialisedMark = 31725;

    int32_t Order = 0;
    int32_t Kind = 0;
    std::unique_ptr<float[]> Taps;  ///< b0 .. b_order, a0 .. a_order, divided by a0
    std::unique_ptr<float[]> Delay; ///< d1 .. d_order, and a 0 that ends the line
    uint32_t Mark = 0;              ///< InitialisedMark, or not initialised
};

/// Copies the taps b0 .. b_order, a0 .. a_order and starts with an empty past. `kind` is 0 or 1 and changes nothing.
/// Checks: "statePtr==0", "tapVals==0", "order < 0", "iirType is out of range", "IIR filter state structure is already
/// initialized! Use nspIirFree to free it", "taps[order+1] equals zero". Without memory: OutOfMemory, "insufficiency of
/// memory for IIR filter state", not initialised.
void nspsIirInit(int32_t kind, const float* tapVals, int32_t order, NspIirState* statePtr);
/// Checks: "statePtr==0", "IIR filter wasn't initialized".
void nspIirFree(NspIirState* statePtr);
/// Filters `numIters` values, none when it is not positive; `outSamps` may be `inSamps`. A stream gives the same values
/// however it is cut into calls. Checks: as nspIirFree.
///
/// y = b0 x + d1; d_k = b_k x - a_k y + d_(k+1): the transposed direct form (Oppenheim and Schafer, Discrete-Time
/// Signal Processing, section 6.3). A past below 1e-30, 600 dB under full scale, is 0: silence never decays into
/// denormal numbers, which are slow. So is a past that is no finite number, which would otherwise stay for ever.
void nspsbIir(NspIirState* statePtr, const float* inSamps, float* outSamps, int32_t numIters);

} // namespace ek
