// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "servicefuncs/Channels.h"

#include <QCursor>

#include <cstdint>

namespace ek {

/// The id of the pointer shape over the lanes where a press would select that channel, or all.
uint32_t CursorOfChannel(ChannelCode code);

/// The pointer shape, sharp at `scale` device pixels per unit; the arrow for an unknown id.
QCursor LoadCursor(uint32_t id, double scale);

} // namespace ek
