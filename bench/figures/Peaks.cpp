// SPDX-License-Identifier: GPL-3.0-or-later
#include "figures/Figures.h"

#include "storage/WaveData.h"

namespace ek::bench {

void MeasurePeaks(Bench& bench)
{
    CWaveData store;
    if (!store.OpenFile(bench.Sound()))
        Fail("cannot open the sound");
    const double ratio = bench.RatioToCopy({}, [&] { store.BuildPeakCache(); });
    bench.Report("peak cache of the whole store / cp", ratio, 0.4);
}

} // namespace ek::bench
