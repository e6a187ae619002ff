// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <cstdint>

namespace ek {

// How the signal-processing primitives refuse a call: nothing is done, the status becomes the last one, and the current
// error handler is called on the same thread. A call that succeeds leaves the last status as it is.

enum NspStatus : int32_t {
    NspStatusOk = 0,
    NspStatusOutOfMemory = -4,
    NspStatusBadArgument = -5,
};

/// `function` is the refusing primitive, `file` (without its folders) and `line` the place in its source. All texts
/// are static. Called on any thread that uses primitives; must not throw.
using NspErrorHandler = void (*)(NspStatus status, const char* function, const char* text, const char* file, int line);

/// The status of the library's last refused call, on whichever thread, since the last reset.
NspStatus nspLastStatus();
void nspResetStatus();

/// Returns the handler so far; null stands for the one that does nothing, which is the first.
NspErrorHandler nspSetErrorHandler(NspErrorHandler handler);

} // namespace ek
