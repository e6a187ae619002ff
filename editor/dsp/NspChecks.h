// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "dsp/NspError.h"

#include <initializer_list>

namespace ek {

// For the primitives themselves. The place in the source is that of the call.

/// Takes the error path.
void NspReport(NspStatus status, const char* function, const char* text, const char* file = __builtin_FILE(),
               int line = __builtin_LINE());

struct NspCheck {
    bool Violated;
    const char* Text;
};

/// Reports the first violated check as a bad argument; whether there was one.
bool NspRefused(const char* function, std::initializer_list<NspCheck> checks, const char* file = __builtin_FILE(),
                int line = __builtin_LINE());

} // namespace ek
