// SPDX-License-Identifier: GPL-3.0-or-later
#include "figures/Figures.h"

#include "storage/WaveData.h"

namespace ek::bench {

void MeasureSave(Bench& bench)
{
    const std::filesystem::path target = bench.PathFor("saved.wav");
    CWaveData store;
    if (!store.OpenFile(bench.Sound()))
        Fail("cannot open the sound");
    const double ratio = bench.RatioToCopy([&] { std::filesystem::remove(target); },
                                           [&] {
                                               if (!store.SaveFile(target, true, nullptr))
                                                   Fail("cannot save the sound");
                                           });
    bench.Report("save as WAV, sync included / cp", ratio, 2);
    std::filesystem::remove(target);
}

} // namespace ek::bench
