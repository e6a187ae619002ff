// SPDX-License-Identifier: GPL-3.0-or-later
#include "Batch.h"
#include "Interruption.h"
#include "platform/File.h"
#include "platform/ProductSettings.h"

#include <CLI/CLI.hpp>

#include <fstream>
#include <iostream>

namespace {

enum ExitStatus { ExitDone = 0, ExitFailed = 1, ExitUsage = 2 };

struct Options {
    std::vector<std::string> Commands;
    std::string Script;
};

int Complain(const std::string& text, int status)
{
    std::cerr << text << "\n";
    return status;
}

/// The commands of the -e options, then those of the script.
int Collect(const Options& options, std::vector<ek::ScriptCommand>& commands)
{
    std::string error;
    for (size_t i = 0; i < options.Commands.size(); ++i) {
        auto words = ek::SplitWords(options.Commands[i]);
        const std::string origin = "-e:" + std::to_string(i + 1);
        if (!words)
            return Complain(origin + ": a double quote is not closed", ExitUsage);
        if (!words->empty())
            commands.push_back({origin, std::move(*words)});
    }
    if (options.Script == "-")
        return ek::ReadScript(std::cin, "-", commands, error) ? ExitDone : Complain(error, ExitUsage);
    if (options.Script.empty())
        return ExitDone;
    std::ifstream file(options.Script);
    if (!file || !ek::IsFile(options.Script))
        return Complain("ekbatch: cannot read script " + options.Script, ExitUsage);
    return ek::ReadScript(file, options.Script, commands, error) ? ExitDone : Complain(error, ExitUsage);
}

int RunAll(const std::vector<ek::ScriptCommand>& commands)
{
    ek::ConsolePrompts prompts;
    ek::InterruptibleProgress progress;
    ek::SetPrompts(&prompts);
    ek::SetProgressPresenter(&progress);
    ek::Batch batch(prompts, std::cout, std::cerr);
    for (const ek::ScriptCommand& command : commands) {
        if (ek::IsInterrupted())
            return Complain(command.Origin + ": interrupted", ExitFailed);
        std::string error;
        const ek::Batch::Outcome outcome = batch.Run(command, error);
        if (outcome != ek::Batch::Outcome::Done)
            return Complain(command.Origin + ": " + error,
                            outcome == ek::Batch::Outcome::BadUsage ? ExitUsage : ExitFailed);
    }
    return ExitDone;
}

int Run(int argc, char** argv)
{
    Options options;
    CLI::App app("Edits sound without a screen: runs the commands given with -e, then those of a script.", "ekbatch");
    app.add_option("-e", options.Commands, "Run COMMAND; may be given several times")
        ->type_name("COMMAND")
        ->allow_extra_args(false);
    app.add_option("SCRIPT", options.Script, "A file of commands, one a line; - is the standard input");
    app.set_version_flag("--version", "ekbatch 5.0.58");
    try {
        app.parse(argc, argv);
    } catch (const CLI::ParseError& error) {
        return app.exit(error) == 0 ? ExitDone : ExitUsage;
    }
    if (options.Commands.empty() && options.Script.empty())
        return Complain("ekbatch: nothing to do; see ekbatch --help", ExitUsage);

    ek::RaiseOpenFileLimit();
    ek::KeepProductSettingsInMemory();
    std::vector<ek::ScriptCommand> commands;
    const int collected = Collect(options, commands);
    // Not earlier: waiting for a script that is typed in, the program may just end.
    ek::CatchInterruptions();
    return collected == ExitDone ? RunAll(commands) : collected;
}

} // namespace

int main(int argc, char** argv)
{
    try {
        return Run(argc, argv);
    } catch (const std::exception& error) {
        return Complain(std::string("ekbatch: ") + error.what(), ExitFailed);
    }
}
