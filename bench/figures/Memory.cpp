// SPDX-License-Identifier: GPL-3.0-or-later
#include "figures/Figures.h"

namespace ek::bench {

void MeasureMemory(Bench& bench)
{
    const std::filesystem::path target = bench.PathFor("saved.wav");
    const ProcessCost cost = RunProcess(OpenAndSaveCommand(bench.Sound(), target));
    std::filesystem::remove(target);
    bench.Report("ekbatch open + save: peak resident memory", cost.PeakMegabytes, 64, "MB");
}

} // namespace ek::bench
