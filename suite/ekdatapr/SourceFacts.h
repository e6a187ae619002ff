// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "ekdatapr/SoundSource.h"
#include "ekdatapr/StreamProps.h"

#include <string>

namespace ek {

/// What is to be remembered of a file. Quality and bit rate are those in its encoder name when this program wrote it,
/// otherwise they are estimated.
StreamFacts ReadFacts(const SoundSource& source);

/// The encoder's name as files with such a coding carry it: with the setting that decided their size, so that a later
/// save can repeat it. Empty for codings without such a setting.
std::string MakeEncoderName(int sfFormat, double quality, uint32_t bitRate);

} // namespace ek
