// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <filesystem>
#include <optional>
#include <string>
#include <utility>
#include <vector>

namespace ek {

/// What the command line asks for. Paths are absolute.
struct Options {
    std::vector<std::filesystem::path> Files;
    std::string Skin;                ///< empty: the stored choice
    std::string AudioSystem;         ///< one of ListAudioSystems; empty: the stored choice
    std::filesystem::path AudioFile; ///< not empty: what is played goes into this WAV file
    bool NewInstance = false;
    std::filesystem::path Screenshot;          ///< not empty: draw the window into this PNG and leave
    std::filesystem::path Tour;                ///< not empty: walk through the editor, leave the results here
    std::filesystem::path MakeDemo;            ///< not empty: write the demo sound to this file and leave
    bool CheckDisplay = false;                 ///< say by the exit status whether a display can be reached
    std::pair<int, int> WindowSize{1280, 800}; ///< of a screenshot or tour, in logical pixels

    /// Nobody sits at the screen: no questions, no stored settings, no running instance.
    bool IsUnattended() const { return !Screenshot.empty() || !Tour.empty(); }
    bool operator==(const Options&) const = default;
};

/// Reads the arguments, the program's name first. Without a value the process is to end with `exitStatus`: help or the
/// version was printed (0), or the arguments are wrong and it was said why on stderr (2).
std::optional<Options> ParseCommandLine(const std::vector<std::string>& arguments, int& exitStatus);

/// "1280x800": two numbers from 100 to 16384.
std::optional<std::pair<int, int>> ParseWindowSize(const std::string& text);

} // namespace ek
