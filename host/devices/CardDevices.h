// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "devices/InputDevice.h"
#include "devices/OutputDevice.h"

#include <memory>
#include <string>

namespace ek {

/// A card of one of the systems "pulse", "jack" and "alsa"; see RtStream. Null: `trouble` says why.
std::unique_ptr<OutputDevice> MakeCardOutput(const std::string& system, const std::string& device,
                                             const StreamWish& wish, std::string& trouble);
std::unique_ptr<InputDevice> MakeCardInput(const std::string& system, const std::string& device, const StreamWish& wish,
                                           std::string& trouble);

} // namespace ek
