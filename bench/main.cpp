// SPDX-License-Identifier: GPL-3.0-or-later
#include "figures/Figures.h"

#include "platform/File.h"

#include <CLI/CLI.hpp>

using namespace ek::bench;

int main(int argc, char** argv)
{
    Options options;
    bool quick = false;
    CLI::App app("Measures the speed and memory of the editor against its bars.");
    app.add_option("--hours", options.Hours, "length of the sound; the long one is ten times that")
        ->check(CLI::PositiveNumber);
    app.add_flag("--quick", quick, "six minutes instead of an hour");
    app.add_option("--folder", options.Folder, "where sounds and temporary files go")->check(CLI::ExistingDirectory);
    CLI11_PARSE(app, argc, argv);
    if (quick)
        options.Hours = 0.1;

    ek::RaiseOpenFileLimit();
    Bench bench(options);
    // Memory first: a program that this one starts is never told smaller than this one was.
    constexpr void (*Figures[])(Bench&) = {MeasureBatch, MeasureOpen,      MeasureSave,
                                           MeasurePeaks, MeasureTempSpace, MeasureColumns};
    for (const auto measure : Figures)
        measure(bench);
    return bench.PrintTable() ? 0 : 1;
}
