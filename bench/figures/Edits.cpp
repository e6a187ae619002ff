// SPDX-License-Identifier: GPL-3.0-or-later
#include "figures/Figures.h"

#include "platform/Paths.h"
#include "waveedit/WEDoc.h"

#include <algorithm>
#include <fstream>
#include <random>
#include <sstream>

namespace ek::bench {

namespace {

/// Seconds of every edit, in an hour.
constexpr double EditLength = 10;
constexpr double LastMinute = 60;

void Check(bool done, const char* edit)
{
    if (!done)
        Fail(std::string("cannot ") + edit);
}

/// Edits at one place of an opened sound, each as a person gives it: the old sound is stored for undo and the peaks
/// are right when it returns. Every round takes one frame more than the one before. Otherwise an undone edit that is
/// done again would find its peaks in memory.
class EditTimer {
public:
    explicit EditTimer(Bench& bench) : m_bench(bench)
    {
        Check(m_document.OnOpenDocument(bench.Sound()), "open the sound");
        m_length = Part(EditLength);
    }

    uint64_t Middle() const { return m_document.FrameCount() / 2; }
    uint64_t InLastMinute() const { return m_document.FrameCount() - Part(LastMinute) / 2; }

    double Delete(uint64_t start, ChannelCode code)
    {
        return Time(&EditTimer::Nothing, [=, this] { DeleteFrames(start, code); });
    }
    double Paste(uint64_t start)
    {
        return Time(&EditTimer::CopyFrames, [=, this] { PasteFrames(start); });
    }
    /// The slower one of undo and redo of what was edited last.
    double Back()
    {
        bool undone = false;
        const auto swap = [&] {
            undone ? Redo() : Undo();
            undone = !undone;
        };
        const auto swapIf = [&](bool wanted) {
            if (undone == wanted)
                swap();
        };
        const double undo = m_bench.RatioToCopy([&] { swapIf(true); }, swap);
        const double redo = m_bench.RatioToCopy([&] { swapIf(false); }, swap);
        return std::max(undo, redo);
    }

private:
    uint64_t Part(double secondsOfAnHour) const
    {
        return static_cast<uint64_t>(static_cast<double>(m_document.FrameCount()) * secondsOfAnHour / 3600);
    }

    template <class Work>
    double Time(void (EditTimer::*prepare)(), Work work)
    {
        bool edited = false;
        return m_bench.RatioToCopy(
            [&] {
                if (edited)
                    Undo();
                edited = true;
                ++m_length;
                (this->*prepare)();
            },
            work);
    }

    void Nothing() {}
    void CopyFrames() { Check(m_document.Copy(0, m_length, ChannelAll), "copy"); }
    void DeleteFrames(uint64_t start, ChannelCode code)
    {
        Check(m_document.Delete(start, start + m_length, code), "delete");
    }
    void PasteFrames(uint64_t start)
    {
        uint64_t end = start;
        Check(m_document.Paste(start, end, ChannelAll), "paste");
    }
    void Undo()
    {
        uint64_t start = 0;
        uint64_t end = 0;
        Check(m_document.Undo(start, end), "undo");
    }
    void Redo()
    {
        uint64_t start = 0;
        uint64_t end = 0;
        Check(m_document.Redo(start, end), "redo");
    }

    Bench& m_bench;
    CWEDoc m_document;
    uint64_t m_length = 0;
};

void MeasureSpeed(Bench& bench)
{
    EditTimer timer(bench);
    const uint64_t middle = timer.Middle();
    bench.Report("delete 10 s in the middle / cp", timer.Delete(middle, ChannelAll), 0.12);
    bench.Report("undo or redo of that / cp", timer.Back(), 0.08);
    bench.Report("paste 10 s in the middle / cp", timer.Paste(middle), 0.12);
    bench.Report("undo or redo of that / cp", timer.Back(), 0.08);
    const uint64_t late = timer.InLastMinute();
    bench.Report("delete 10 s in the last minute / cp", timer.Delete(late, ChannelAll), 0.02);
    bench.Report("undo or redo of that / cp", timer.Back(), 0.02);
    bench.Report("paste 10 s in the last minute / cp", timer.Paste(late), 0.02);
    bench.Report("undo or redo of that / cp", timer.Back(), 0.02);
    bench.Report("delete 10 s on one channel / cp", timer.Delete(middle, ChannelLeft), 0.02);
    SoundClipboard().Free();
}

/// A script of random edits all over a sound; the same ones first, however many.
std::string RandomEdits(const std::filesystem::path& sound, uint64_t frames, int edits)
{
    static constexpr const char* Kinds[] = {"delete",          "cut",          "copy\npaste",
                                            "copy\npaste-mix", "delete\nundo", "copy\npaste\nundo\nredo"};
    static constexpr const char* Channels[] = {"all", "all", "left", "right"};
    std::mt19937_64 random(1);
    std::ostringstream script;
    script << "open \"" << sound.string() << "\"\n";
    for (int edit = 0; edit < edits; ++edit) {
        const uint64_t start = random() % (frames / 2); // what is deleted comes off the other half
        const uint64_t end = start + 1 + random() % (frames / 400);
        script << "select " << start << "f " << end << "f " << Channels[random() % std::size(Channels)] << "\n"
               << Kinds[random() % std::size(Kinds)] << "\n";
    }
    return script.str();
}

double PeakMegabytes(Bench& bench, uint64_t frames, int edits)
{
    const std::filesystem::path script = bench.PathFor("edits.txt");
    std::ofstream(script) << RandomEdits(bench.Sound(), frames, edits);
    return RunProcess({(ExecutableFolder() / "ekbatch").string(), script.string()}).PeakMegabytes;
}

void MeasureEditMemory(Bench& bench)
{
    const auto frames = static_cast<uint64_t>(bench.Hours() * 3600 * 44100);
    const double some = PeakMegabytes(bench, frames, 50);
    const double many = PeakMegabytes(bench, frames, 100);
    bench.Report("ekbatch, 100 random edits: peak resident memory", many, 80, "MB");
    bench.Report("the same / that of the first 50 of them", many / some, 1.1);
}

} // namespace

void MeasureEdits(Bench& bench)
{
    MeasureSpeed(bench);
    MeasureEditMemory(bench);
}

} // namespace ek::bench
