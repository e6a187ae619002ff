// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <QPoint>

#include <cstdint>
#include <functional>

class QWidget;

namespace ek {

class CCmdTarget;

/// Shows a menu of the resources at a place of the screen and lets the target run what is chosen. Lines that the
/// target disables, or for which `offers` (may be empty) answers false, are shown disabled. Returns at once.
void PopUpCommandMenu(QWidget& parent, CCmdTarget& target, uint32_t menuId, QPoint place,
                      const std::function<bool(uint32_t)>& offers = {});

} // namespace ek
