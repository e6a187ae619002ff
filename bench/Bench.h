// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <filesystem>
#include <functional>
#include <string>
#include <vector>

namespace ek::bench {

struct Options {
    double Hours = 1;
    std::filesystem::path Folder; ///< for sounds and temporary files; empty: a new one in the temporary folder
};

/// What a process took, seen from outside.
struct ProcessCost {
    double Seconds = 0;
    double PeakMegabytes = 0; ///< resident
};

/// The sounds, the clock and the table that all figures share. Its folder is removed at the end.
class Bench {
public:
    static constexpr double LongFactor = 10;

    explicit Bench(const Options& options);
    ~Bench();
    Bench(const Bench&) = delete;
    Bench& operator=(const Bench&) = delete;

    double Hours() const { return m_hours; }
    const std::filesystem::path& Sound();     ///< stereo, 44.1 kHz, 16-bit WAV of Hours(), in the page cache
    const std::filesystem::path& LongSound(); ///< LongFactor times as long
    std::filesystem::path PathFor(const std::string& name) const { return m_folder / name; }

    /// Time of `work` in units of the time of copying Sound(), measured by turns; of each the shortest time, which is
    /// the one that other load and the first use of the machine's memory disturb least. `prepare` (may be empty) runs
    /// before each `work` and is not counted.
    double RatioToCopy(const std::function<void()>& prepare, const std::function<void()>& work);

    /// One line of the table. The value must not be above the bar.
    void Report(const std::string& figure, double value, double bar, const std::string& unit = {});
    bool PrintTable() const; ///< false when a bar was missed

private:
    struct Row {
        std::string Figure;
        double Value;
        double Bar;
        std::string Unit;
    };
    double m_hours;
    std::filesystem::path m_folder;
    std::filesystem::path m_sound;
    std::filesystem::path m_longSound;
    std::vector<Row> m_rows;
};

double Seconds(const std::function<void()>& work);
double Percentile99(std::vector<double> values);

/// Runs a program to its end; stops the benchmark when it fails.
ProcessCost RunProcess(const std::vector<std::string>& arguments);
/// The other half of RunProcess: this program, started anew, runs the program and writes what it cost to a file. The
/// system counts the size of the starting process to the peak of the started one, and this one is small then.
int RunMeasured(const std::vector<std::string>& costFileAndArguments);
inline constexpr char RunMeasuredOption[] = "--run-measured";
/// The batch program, told to open a sound and to save it elsewhere.
std::vector<std::string> OpenAndSaveCommand(const std::filesystem::path& sound, const std::filesystem::path& target);
[[noreturn]] void Fail(const std::string& text);

/// A stereo, 44.1 kHz, 16-bit WAV file of noise.
void MakeSound(const std::filesystem::path& path, double hours);

} // namespace ek::bench
