// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "ek/HostSkin.h"

#include <QColor>
#include <QIcon>
#include <QPalette>
#include <QString>

namespace ek {

/// The skin that this library draws with; null: the default light colours. Set by the module when it gets its
/// host, by tests, and by the host for its own windows. User-interface thread.
void SetCurrentSkin(CHostSkin* skin);
CHostSkin* CurrentSkin();

QColor SkinColorOf(uint32_t colorId);

/// A palette of the skin's system colours, for standard widgets.
QPalette SkinPalette();

/// An icon from an SVG whose strokes and fills say currentColor: drawn in `color`, and paler when disabled, sharp at
/// every display scale. An empty icon when the file cannot be read.
QIcon MakeIcon(const QString& svgFile, const QColor& color);

} // namespace ek
