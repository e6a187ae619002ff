// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "ek/Module.h"

namespace ek {

/// The key table of the main frame (1008). It is never translated into another language.
const AcceleratorTable& MainAccelerators();

/// Further keys that only the module itself translates, after those of the main frame. They are no part of the
/// contract with hosts.
const AcceleratorTable& ViewAccelerators();

} // namespace ek
