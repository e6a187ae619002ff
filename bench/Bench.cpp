// SPDX-License-Identifier: GPL-3.0-or-later
#include "Bench.h"

#include "platform/Paths.h"
#include "platform/TempFile.h"

#include <algorithm>
#include <chrono>
#include <cstdio>
#include <cstdlib>
#include <fcntl.h>
#include <fstream>
#include <spawn.h>
#include <sys/resource.h>
#include <sys/wait.h>
#include <unistd.h>

namespace ek::bench {

namespace fs = std::filesystem;

namespace {

constexpr int Rounds = 7;

fs::path MakeFolder(const fs::path& parent)
{
    std::string pattern = (parent.empty() ? TempFolder() : fs::absolute(parent)) / "ek-bench-XXXXXX";
    if (!mkdtemp(pattern.data()))
        Fail("cannot make a folder in " + parent.string());
    return pattern;
}

/// Reads the file once, so that it lies in the page cache as far as that is large enough.
void Warm(const fs::path& path)
{
    const int descriptor = open(path.c_str(), O_RDONLY | O_CLOEXEC);
    std::vector<char> buffer(size_t{1} << 20);
    while (read(descriptor, buffer.data(), buffer.size()) > 0) {
    }
    close(descriptor);
}

int Spawn(const std::vector<std::string>& arguments, rusage& usage)
{
    std::vector<char*> pointers;
    for (const std::string& argument : arguments)
        pointers.push_back(const_cast<char*>(argument.c_str()));
    pointers.push_back(nullptr);
    pid_t process = 0;
    int status = -1;
    if (posix_spawnp(&process, pointers[0], nullptr, nullptr, pointers.data(), environ) == 0)
        wait4(process, &status, 0, &usage);
    return status;
}

} // namespace

void Fail(const std::string& text)
{
    std::fprintf(stderr, "ek_bench: %s\n", text.c_str());
    std::exit(2);
}

double Seconds(const std::function<void()>& work)
{
    const auto start = std::chrono::steady_clock::now();
    work();
    return std::chrono::duration<double>(std::chrono::steady_clock::now() - start).count();
}

double Percentile99(std::vector<double> values)
{
    std::ranges::sort(values);
    return values[(values.size() - 1) * 99 / 100];
}

ProcessCost RunProcess(const std::vector<std::string>& arguments)
{
    const fs::path costFile = TempFolder() / "cost";
    std::vector<std::string> measured = {"/proc/self/exe", RunMeasuredOption, costFile.string()};
    measured.insert(measured.end(), arguments.begin(), arguments.end());
    rusage unused{};
    if (Spawn(measured, unused) != 0)
        Fail("failed: " + arguments[0]);
    ProcessCost cost;
    std::ifstream(costFile) >> cost.Seconds >> cost.PeakMegabytes;
    return cost;
}

int RunMeasured(const std::vector<std::string>& costFileAndArguments)
{
    const std::vector<std::string> arguments(costFileAndArguments.begin() + 1, costFileAndArguments.end());
    rusage usage{};
    int status = 0;
    const double seconds = Seconds([&] { status = Spawn(arguments, usage); });
    std::ofstream(costFileAndArguments[0]) << seconds << ' ' << static_cast<double>(usage.ru_maxrss) / 1024;
    return status == 0 ? 0 : 1;
}

std::vector<std::string> OpenAndSaveCommand(const fs::path& sound, const fs::path& target)
{
    return {(ExecutableFolder() / "ekbatch").string(), "-e", "open \"" + sound.string() + "\"", "-e",
            "save \"" + target.string() + "\""};
}

Bench::Bench(const Options& options) : m_hours(options.Hours), m_folder(MakeFolder(options.Folder))
{
    setenv("TMPDIR", m_folder.c_str(), 1);
    for (const char* variable : {"XDG_CONFIG_HOME", "XDG_DATA_HOME", "XDG_STATE_HOME"})
        setenv(variable, (m_folder / "home").c_str(), 1);
}

Bench::~Bench()
{
    std::error_code ignored;
    fs::remove_all(m_folder, ignored);
}

const fs::path& Bench::Sound()
{
    if (m_sound.empty()) {
        m_sound = PathFor("sound.wav");
        MakeSound(m_sound, m_hours);
        Warm(m_sound);
    }
    return m_sound;
}

const fs::path& Bench::LongSound()
{
    if (m_longSound.empty()) {
        m_longSound = PathFor("long.wav");
        MakeSound(m_longSound, m_hours * LongFactor);
        Warm(m_longSound);
    }
    return m_longSound;
}

double Bench::RatioToCopy(const std::function<void()>& prepare, const std::function<void()>& work)
{
    const fs::path copy = PathFor("copy.wav");
    const std::vector<std::string> command = {"cp", Sound().string(), copy.string()};
    std::vector<double> copyTimes;
    std::vector<double> workTimes;
    for (int round = 0; round < Rounds; ++round) {
        fs::remove(copy);
        sync(); // what was written before must not be on its way to the disk meanwhile
        copyTimes.push_back(RunProcess(command).Seconds);
        fs::remove(copy);
        if (prepare)
            prepare();
        sync();
        workTimes.push_back(Seconds(work));
    }
    const double copying = std::ranges::min(copyTimes);
    const double own = std::ranges::min(workTimes);
    std::fprintf(stderr, "  copy %.3f s, work %.3f s\n", copying, own);
    return own / copying;
}

void Bench::Report(const std::string& figure, double value, double bar, const std::string& unit)
{
    m_rows.push_back({figure, value, bar, unit});
    std::fprintf(stderr, "%s: %.3f %s\n", figure.c_str(), value, unit.c_str());
}

bool Bench::PrintTable() const
{
    std::printf("\n%-58s | %10s | %10s | %s\n", "figure", "value", "bar", "ok");
    std::printf("%s\n", std::string(90, '-').c_str());
    bool allMet = true;
    for (const Row& row : m_rows) {
        const bool met = row.Value <= row.Bar;
        allMet = allMet && met;
        const std::string figure = row.Unit.empty() ? row.Figure : row.Figure + ", " + row.Unit;
        std::printf("%-58s | %10.3f | %10.3f | %s\n", figure.c_str(), row.Value, row.Bar, met ? "yes" : "NO");
    }
    return allMet;
}

} // namespace ek::bench
