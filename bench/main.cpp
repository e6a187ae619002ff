// SPDX-License-Identifier: GPL-3.0-or-later
#include "figures/Figures.h"

#include "platform/File.h"

#include <CLI/CLI.hpp>

#include <algorithm>
#include <cstring>
#include <string>
#include <vector>

using namespace ek::bench;

namespace {

struct Figure {
    const char* Name;
    void (*Measure)(Bench&);
};

// The long sound late: file systems are slower to make files for a while after thousands were deleted.
constexpr Figure Figures[] = {{"memory", MeasureMemory},   {"window", MeasureWindow},  {"open", MeasureOpen},
                              {"save", MeasureSave},       {"peaks", MeasurePeaks},    {"edits", MeasureEdits},
                              {"space", MeasureTempSpace}, {"long", MeasureLongSound}, {"columns", MeasureColumns},
                              {"play", MeasurePlay},       {"dsp", MeasureDsp}};

} // namespace

int main(int argc, char** argv)
{
    if (argc > 3 && std::strcmp(argv[1], RunMeasuredOption) == 0)
        return RunMeasured({argv + 2, argv + argc});
    Options options;
    bool quick = false;
    std::vector<std::string> only;
    CLI::App app("Measures the speed and memory of the editor against its bars.");
    app.add_option("--hours", options.Hours, "length of the sound; the long one is ten times that")
        ->check(CLI::PositiveNumber);
    app.add_flag("--quick", quick, "six minutes instead of an hour");
    app.add_option("--folder", options.Folder, "where sounds and temporary files go")->check(CLI::ExistingDirectory);
    app.add_option("--only", only,
                   "these figures only: memory, window, open, save, peaks, edits, space, long, columns, play, dsp");
    CLI11_PARSE(app, argc, argv);
    if (quick)
        options.Hours = 0.1;

    ek::RaiseOpenFileLimit();
    Bench bench(options);
    for (const Figure& figure : Figures) {
        if (only.empty() || std::ranges::find(only, figure.Name) != only.end())
            figure.Measure(bench);
    }
    return bench.PrintTable() ? 0 : 1;
}
