// SPDX-License-Identifier: GPL-3.0-or-later
#include "figures/Figures.h"

#include "platform/Paths.h"

#include <algorithm>
#include <cstdio>

namespace ek::bench {

namespace {

constexpr int Rounds = 3;

struct BatchCost {
    double TimeToCopy; ///< in units of the time of copying the same sound
    double Megabytes;
};

/// Opens a sound and saves it elsewhere. Time is told against a copy of the same length, because that is what shows
/// whether the editor, and not the machine's memory or disk, makes a long sound dearer.
BatchCost OpenAndSave(Bench& bench, const std::filesystem::path& sound)
{
    const std::filesystem::path target = bench.PathFor("saved.wav");
    std::vector<double> copyTimes;
    std::vector<double> times;
    std::vector<double> megabytes;
    for (int round = 0; round < Rounds; ++round) {
        copyTimes.push_back(RunProcess({"cp", sound.string(), target.string()}).Seconds);
        std::filesystem::remove(target);
        const ProcessCost cost =
            RunProcess({(ExecutableFolder() / "ekbatch").string(), "-e", "open \"" + sound.string() + "\"", "-e",
                        "save \"" + target.string() + "\""});
        std::filesystem::remove(target);
        times.push_back(cost.Seconds);
        megabytes.push_back(cost.PeakMegabytes);
    }
    const double copy = std::ranges::min(copyTimes);
    const double own = std::ranges::min(times);
    const double peak = std::ranges::max(megabytes);
    std::fprintf(stderr, "  copy %.3f s, open and save %.3f s, %.1f MB\n", copy, own, peak);
    return {own / copy, peak};
}

} // namespace

void MeasureBatch(Bench& bench)
{
    const BatchCost one = OpenAndSave(bench, bench.Sound());
    bench.Report("ekbatch open + save: peak resident memory", one.Megabytes, 64, "MB");
    const BatchCost ten = OpenAndSave(bench, bench.LongSound());
    bench.Report("open + save / cp: ten times the sound / the sound", ten.TimeToCopy / one.TimeToCopy, 1.25);
    bench.Report("memory per hour: ten times the sound / the sound", ten.Megabytes / one.Megabytes / Bench::LongFactor,
                 1);
}

} // namespace ek::bench
