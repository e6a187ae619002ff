// SPDX-License-Identifier: GPL-3.0-or-later
#include "Bench.h"

#include "ekdatapr/EkDataPr.h"
#include "servicefuncs/Channels.h"

#include <algorithm>
#include <random>

namespace ek::bench {

void MakeSound(const std::filesystem::path& path, double hours)
{
    constexpr uint32_t Rate = 44100;
    constexpr uint64_t BlockFrames = 10 * Rate;
    std::mt19937 random(1);
    std::vector<int16_t> block(BlockFrames * 2);
    for (int16_t& value : block)
        value = static_cast<int16_t>(random() >> 16);

    const auto frames = static_cast<uint64_t>(hours * 3600 * Rate);
    const WAVEFORMATEXTENSIBLE format = MakePcm16Format(Rate, 2);
    const CoderHandle coder = EkCoderCreateFile(path, format, nullptr, nullptr, frames);
    bool ok = coder != 0;
    for (uint64_t done = 0; ok && done < frames; done += BlockFrames) {
        const uint64_t count = std::min(BlockFrames, frames - done);
        ok = EkCoderAddFileData(coder, count, block.data(), count * format.nBlockAlign);
    }
    if (coder == 0 || !EkCoderCloseFile(coder) || !ok)
        Fail("cannot write " + path.string());
}

} // namespace ek::bench
