// SPDX-License-Identifier: GPL-3.0-or-later
#include "host/Options.h"

#include "devices/AudioDevices.h"

#include <CLI/CLI.hpp>

#include <algorithm>
#include <charconv>
#include <iterator>

namespace ek {

namespace {

constexpr int BadUsage = 2;

std::string CheckWindowSize(const std::string& text)
{
    return ParseWindowSize(text) ? std::string() : "needs WIDTHxHEIGHT with numbers from 100 to 16384, not " + text;
}

std::string SystemNames(std::string_view between)
{
    std::string names;
    for (const std::string& system : ListAudioSystems())
        names += (names.empty() ? std::string() : std::string(between)) + system;
    return names;
}

std::string CheckAudioSystem(const std::string& text)
{
    const std::vector<std::string> systems = ListAudioSystems();
    return std::ranges::find(systems, text) != systems.end() ? std::string()
                                                             : "needs one of " + SystemNames(", ") + ", not " + text;
}

std::filesystem::path Absolute(const std::filesystem::path& path)
{
    std::error_code error;
    const std::filesystem::path absolute = std::filesystem::absolute(path, error);
    return error || path.empty() ? path : absolute.lexically_normal();
}

void MakePathsAbsolute(Options& options)
{
    for (std::filesystem::path& file : options.Files)
        file = Absolute(file);
    options.Screenshot = Absolute(options.Screenshot);
    options.Tour = Absolute(options.Tour);
    options.MakeDemo = Absolute(options.MakeDemo);
    options.AudioFile = Absolute(options.AudioFile);
}

std::optional<int> ParseSide(std::string_view text)
{
    int value = 0;
    const auto [end, error] = std::from_chars(text.data(), text.data() + text.size(), value);
    if (error != std::errc() || end != text.data() + text.size() || value < 100 || value > 16384)
        return std::nullopt;
    return value;
}

/// The names as plain bytes: a file name need not be valid text.
struct RawOptions {
    std::vector<std::string> Files;
    std::string Screenshot;
    std::string Tour;
    std::string MakeDemo;
    std::string AudioFile;
    std::string Size;
};

void Declare(CLI::App& app, Options& options, RawOptions& raw)
{
    app.set_version_flag("--version", "ek-wave-editor " EK_VERSION);
    app.add_option("files", raw.Files, "Sound files to open; a running editor takes them over")->type_name("");
    app.add_option("--skin", options.Skin, "Use this skin for this run")->type_name("NAME");
    CLI::Option* system =
        app.add_option("--audio-system", options.AudioSystem, "Play to this audio system for this run");
    system->type_name(SystemNames("|"))->check(CheckAudioSystem);
    app.add_option("--audio-file", raw.AudioFile, "Write what is played into a WAV file, as fast as it comes")
        ->type_name("FILE")
        ->excludes(system);
    app.add_flag("--new-instance", options.NewInstance, "Start another editor beside a running one");
    CLI::Option* screenshot = app.add_option("--screenshot", raw.Screenshot, "Draw the window into a PNG and leave");
    screenshot->type_name("FILE");
    app.add_option("--size", raw.Size, "Window size of --screenshot and --tour (1280x800)")
        ->type_name("WxH")
        ->check(CheckWindowSize);
    app.add_option("--tour", raw.Tour, "Walk through the editor, leaving pictures and sounds in the folder, and leave")
        ->type_name("FOLDER")
        ->excludes(screenshot);
    app.add_option("--make-demo", raw.MakeDemo, "Write the demo sound and leave")->type_name("FILE");
    app.add_flag("--check-display", options.CheckDisplay)->group(""); // for scripts, not listed
}

void TakeOver(const RawOptions& raw, Options& options)
{
    std::copy_if(raw.Files.begin(), raw.Files.end(), std::back_inserter(options.Files),
                 [](const std::string& file) { return !file.empty(); });
    options.Screenshot = raw.Screenshot;
    options.Tour = raw.Tour;
    options.MakeDemo = raw.MakeDemo;
    options.AudioFile = raw.AudioFile;
    if (const auto size = ParseWindowSize(raw.Size))
        options.WindowSize = *size;
    MakePathsAbsolute(options);
}

} // namespace

std::optional<std::pair<int, int>> ParseWindowSize(const std::string& text)
{
    const size_t cross = text.find('x');
    if (cross == std::string::npos)
        return std::nullopt;
    const std::optional<int> width = ParseSide(std::string_view(text).substr(0, cross));
    const std::optional<int> height = ParseSide(std::string_view(text).substr(cross + 1));
    if (!width || !height)
        return std::nullopt;
    return std::pair(*width, *height);
}

std::optional<Options> ParseCommandLine(const std::vector<std::string>& arguments, int& exitStatus)
{
    Options options;
    RawOptions raw;
    CLI::App app("Ek Wave Editor: open, see and save sound files of any length.", "ek-wave-editor");
    Declare(app, options, raw);
    try {
        // The parser takes its arguments from the back.
        app.parse(std::vector<std::string>(arguments.rbegin(), std::prev(arguments.rend())));
    } catch (const CLI::ParseError& error) {
        exitStatus = app.exit(error) == 0 ? 0 : BadUsage;
        return std::nullopt;
    }
    TakeOver(raw, options);
    return options;
}

} // namespace ek
