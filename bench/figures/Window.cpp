// SPDX-License-Identifier: GPL-3.0-or-later
#include "figures/Figures.h"

#include "platform/Paths.h"

#include <cstdlib>

namespace ek::bench {

/// The whole editor, its window drawn once with the sound open.
void MeasureWindow(Bench& bench)
{
    setenv("QT_QPA_PLATFORM", "offscreen", 1);
    const ProcessCost cost =
        RunProcess({(ExecutableFolder() / "ek-wave-editor").string(), "--screenshot",
                    bench.PathFor("window.png").string(), "--size", "1920x1080", bench.Sound().string()});
    bench.Report("the window with the sound open: peak resident memory", cost.PeakMegabytes, 160, "MB");
}

} // namespace ek::bench
