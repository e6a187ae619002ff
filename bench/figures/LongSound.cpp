// SPDX-License-Identifier: GPL-3.0-or-later
#include "figures/Figures.h"

#include <algorithm>
#include <cstdio>

namespace ek::bench {

namespace {

constexpr int Rounds = 2;

struct BatchCost {
    double TimeToCopies;
    double Megabytes;
};

/// Opens a sound and saves it elsewhere. Time is told against two copies of the same sound, the second one synced: that
/// asks as much of the machine's memory and disk, so what is left over is the editor's own.
BatchCost OpenAndSave(Bench& bench, const std::filesystem::path& sound)
{
    const std::filesystem::path target = bench.PathFor("saved.wav");
    const std::filesystem::path copy = bench.PathFor("copy.wav");
    const std::string copies = "cp \"$0\" \"$1\" && cp \"$0\" \"$2\" && sync \"$2\"";
    std::vector<double> copyTimes;
    std::vector<double> times;
    double peak = 0;
    for (int round = 0; round < Rounds; ++round) {
        copyTimes.push_back(RunProcess({"sh", "-c", copies, sound.string(), copy.string(), target.string()}).Seconds);
        std::filesystem::remove(copy);
        std::filesystem::remove(target);
        const ProcessCost cost = RunProcess(OpenAndSaveCommand(sound, target));
        std::filesystem::remove(target);
        times.push_back(cost.Seconds);
        peak = std::max(peak, cost.PeakMegabytes);
    }
    const double copying = std::ranges::min(copyTimes);
    const double own = std::ranges::min(times);
    std::fprintf(stderr, "  copies %.3f s, open and save %.3f s, %.1f MB\n", copying, own, peak);
    return {own / copying, peak};
}

} // namespace

void MeasureLongSound(Bench& bench)
{
    const BatchCost one = OpenAndSave(bench, bench.Sound());
    const BatchCost ten = OpenAndSave(bench, bench.LongSound());
    bench.Report("open + save / two cp: ten times the sound / the sound", ten.TimeToCopies / one.TimeToCopies, 1.25);
    bench.Report("memory per hour: ten times the sound / the sound", ten.Megabytes / one.Megabytes / Bench::LongFactor,
                 1);
}

} // namespace ek::bench
