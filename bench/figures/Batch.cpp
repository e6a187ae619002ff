// SPDX-License-Identifier: GPL-3.0-or-later
#include "figures/Figures.h"

#include "platform/Paths.h"

namespace ek::bench {

namespace {

constexpr int Rounds = 3;

/// Opens a sound and saves it elsewhere.
ProcessCost OpenAndSave(Bench& bench, const std::filesystem::path& sound)
{
    const std::filesystem::path target = bench.PathFor("saved.wav");
    std::vector<double> seconds;
    std::vector<double> megabytes;
    for (int round = 0; round < Rounds; ++round) {
        const ProcessCost cost =
            RunProcess({(ExecutableFolder() / "ekbatch").string(), "-e", "open \"" + sound.string() + "\"", "-e",
                        "save \"" + target.string() + "\""});
        std::filesystem::remove(target);
        seconds.push_back(cost.Seconds);
        megabytes.push_back(cost.PeakMegabytes);
    }
    return {Median(seconds), Median(megabytes)};
}

} // namespace

void MeasureBatch(Bench& bench)
{
    const ProcessCost one = OpenAndSave(bench, bench.Sound());
    bench.Report("ekbatch open + save: peak resident memory", one.PeakMegabytes, 64, "MB");
    const ProcessCost ten = OpenAndSave(bench, bench.LongSound());
    bench.Report("ten times the sound: time per hour / time per hour", ten.Seconds / one.Seconds / Bench::LongFactor,
                 1.25);
    bench.Report("ten times the sound: memory per hour / memory per hour",
                 ten.PeakMegabytes / one.PeakMegabytes / Bench::LongFactor, 1);
}

} // namespace ek::bench
