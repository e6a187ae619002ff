// SPDX-License-Identifier: GPL-3.0-or-later
#include "dsp/Nsp.h"
#include "dsp/NspChecks.h"

#include <cmath>
#include <limits>
#include <new>

namespace ek {

namespace {

constexpr float Smallest = 1e-30F;

/// Written so that what is no number is 0 as well.
float Settled(float past)
{
    const float size = std::fabs(past);
    return size >= Smallest && size <= std::numeric_limits<float>::max() ? past : 0.0F;
}

void FilterSecondOrder(const float* b, const float* a, float* delay, const float* in, float* out, int32_t count)
{
    float d1 = delay[0];
    float d2 = delay[1];
    for (int32_t i = 0; i < count; ++i) {
        const float x = in[i];
        const float y = b[0] * x + d1;
        d1 = Settled(b[1] * x - a[1] * y + d2);
        d2 = Settled(b[2] * x - a[2] * y);
        out[i] = y;
    }
    delay[0] = d1;
    delay[1] = d2;
}

void FilterAnyOrder(const NspIirState& state, const float* in, float* out, int32_t count)
{
    const float* b = state.Taps.get();
    const float* a = b + state.Order + 1;
    float* delay = state.Delay.get();
    for (int32_t i = 0; i < count; ++i) {
        const float x = in[i];
        const float y = b[0] * x + delay[0];
        for (int32_t k = 1; k <= state.Order; ++k)
            delay[k - 1] = Settled(b[k] * x - a[k] * y + delay[k]);
        out[i] = y;
    }
}

bool Uninitialised(const NspIirState* state)
{
    return state && state->Mark != NspIirState::InitialisedMark;
}

} // namespace

void nspsIirInit(int32_t kind, const float* tapVals, int32_t order, NspIirState* statePtr)
{
    const bool readable = tapVals && order >= 0;
    const size_t length = readable ? size_t(order) + 1 : 0;
    if (NspRefused(__func__, {{statePtr == nullptr, "statePtr==0"},
                              {tapVals == nullptr, "tapVals==0"},
                              {order < 0, "order < 0"},
                              {kind < 0 || kind > 1, "iirType is out of range"},
                              {statePtr && !Uninitialised(statePtr),
                               "IIR filter state structure is already initialized! Use nspIirFree to free it"},
                              {readable && tapVals[length] == 0.0F, "taps[order+1] equals zero"}}))
        return;
    std::unique_ptr<float[]> taps(new (std::nothrow) float[2 * length]);
    std::unique_ptr<float[]> delay(new (std::nothrow) float[length]());
    if (!taps || !delay)
        return NspReport(NspStatusOutOfMemory, __func__, "insufficiency of memory for IIR filter state");
    for (size_t i = 0; i < 2 * length; ++i)
        taps[i] = tapVals[i] / tapVals[length];
    statePtr->Order = order;
    statePtr->Kind = kind;
    statePtr->Taps = std::move(taps);
    statePtr->Delay = std::move(delay);
    statePtr->Mark = NspIirState::InitialisedMark;
}

void nspIirFree(NspIirState* statePtr)
{
    if (NspRefused(__func__,
                   {{statePtr == nullptr, "statePtr==0"}, {Uninitialised(statePtr), "IIR filter wasn't initialized"}}))
        return;
    statePtr->Mark = 0;
    statePtr->Taps.reset();
    statePtr->Delay.reset();
}

void nspsbIir(NspIirState* statePtr, const float* inSamps, float* outSamps, int32_t numIters)
{
    if (NspRefused(__func__,
                   {{statePtr == nullptr, "statePtr==0"}, {Uninitialised(statePtr), "IIR filter wasn't initialized"}}))
        return;
    const NspIirState& state = *statePtr;
    if (state.Order == 2)
        FilterSecondOrder(&state.Taps[0], &state.Taps[3], &state.Delay[0], inSamps, outSamps, numIters);
    else
        FilterAnyOrder(state, inSamps, outSamps, numIters);
}

} // namespace ek
