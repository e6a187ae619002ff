// SPDX-License-Identifier: GPL-3.0-or-later
#include "dsp/Nsp.h"
#include "dsp/NspChecks.h"

namespace ek {

void nspsbMpy1(float value, float* dst, int32_t n)
{
    if (NspRefused(__func__, {{dst == nullptr, "dst==0"}, {n <= 0, "n<=0"}}))
        return;
    for (int32_t i = 0; i < n; ++i)
        dst[i] *= value;
}

void nspsbAdd2(const float* src, float* dst, int32_t n)
{
    if (NspRefused(__func__, {{dst == nullptr, "dst==0"}, {src == nullptr, "src==0"}, {n <= 0, "n<=0"}}))
        return;
    for (int32_t i = 0; i < n; ++i)
        dst[i] += src[i];
}

void nspcbMpy2(const ComplexFloat* src, ComplexFloat* dst, int32_t n)
{
    if (NspRefused(__func__, {{dst == nullptr, "dst==0"}, {src == nullptr, "src==0"}, {n <= 0, "n<=0"}}))
        return;
    for (int32_t i = 0; i < n; ++i) {
        const ComplexFloat a = dst[i];
        const ComplexFloat b = src[i];
        dst[i] = {a.Re * b.Re - a.Im * b.Im, a.Re * b.Im + a.Im * b.Re};
    }
}

} // namespace ek
