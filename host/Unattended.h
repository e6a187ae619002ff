// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

namespace ek {

class HostWindow;
struct Options;

/// Makes the picture or walks the tour that the options ask for, with the window's module started. 0, or 1 when
/// something did not succeed; stderr says what.
int RunUnattended(HostWindow& window, const Options& options);

} // namespace ek
