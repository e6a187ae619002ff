// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

namespace ek {

/// The whole program, from its arguments to its exit status.
int RunProgram(int argc, char** argv);

} // namespace ek
