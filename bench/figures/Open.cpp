// SPDX-License-Identifier: GPL-3.0-or-later
#include "figures/Figures.h"

#include "storage/WaveData.h"

namespace ek::bench {

void MeasureOpen(Bench& bench)
{
    CWaveData store;
    const double ratio = bench.RatioToCopy([&] { store.Close(); },
                                           [&] {
                                               if (!store.OpenFile(bench.Sound()))
                                                   Fail("cannot open the sound");
                                           });
    bench.Report("open, peaks included / cp", ratio, 2);
}

} // namespace ek::bench
