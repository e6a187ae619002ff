// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "ek/Module.h"

class QKeyEvent;
class QWidget;

namespace ek {

/// The entry of the table for the key, or null.
const Accelerator* FindAccelerator(const AcceleratorTable& table, const QKeyEvent& key);

/// Whether `focus` (may be null) is a field for typing and the key means something to it: a character, or one of the
/// usual keys of text editing.
bool IsKeyOfTextEntry(const QWidget* focus, const QKeyEvent& key);

} // namespace ek
