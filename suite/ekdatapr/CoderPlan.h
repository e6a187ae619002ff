// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "ekdatapr/EkDataPr.h"
#include "ekdatapr/StreamProps.h"

#include <cstdint>
#include <filesystem>
#include <optional>
#include <sndfile.h>

namespace ek {

struct SampleCoding;

/// What a new file is going to be.
struct CoderPlan {
    SF_INFO Info{};
    uint32_t Mask = 0; ///< speakers of its channels
    const SampleCoding* Coding = nullptr;
    double Quality = 0;
    uint32_t BitRate = 0;
    uint64_t MaxBytes = 0; ///< the container cannot be longer
    bool OpenAfter = false;
    TagMap Tags;
};

/// Nothing when there is no coder for the extension or it cannot take the format or the length.
std::optional<CoderPlan> MakeCoderPlan(const std::filesystem::path& target, const WAVEFORMATEXTENSIBLE& format,
                                       const StreamProperties* properties, uint64_t frames);

} // namespace ek
