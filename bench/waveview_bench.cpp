// SPDX-License-Identifier: GPL-3.0-or-later
//
// How fast the wave view is: whole repaints at every zoom and single scroll steps, on a long stereo sound. Prints a
// table and exits with 1 when a bar is missed. Usage: ek_bench_view [--hours N]

#include "resources/CommandIds.h"
#include "waveview/ui/WEView.h"

#include <QApplication>
#include <QElapsedTimer>
#include <QScrollBar>

#include <cstdio>
#include <functional>
#include <numeric>

using namespace ek;

namespace {

constexpr uint32_t Rate = 44100;
constexpr uint32_t Channels = 2;
constexpr int Repaints = 200;
constexpr int ScrollSteps = 500;
constexpr double RepaintBar = 16.0; // milliseconds, of 99 in 100
constexpr double ScrollBar = 2.0;   // milliseconds, on average

class Site final : public ViewSite {
public:
    void SetActiveFormat(const WAVEFORMATEXTENSIBLE&) override {}
    bool RunCommand(uint32_t) override { return false; }
    void ShowStatusText(const QString&) override {}
};

struct Timing {
    double Mean;
    double Percentile99;
};

Timing Measure(int count, const std::function<void(int)>& run)
{
    std::vector<double> milliseconds;
    for (int i = 0; i < count; ++i) {
        QElapsedTimer timer;
        timer.start();
        run(i);
        milliseconds.push_back(static_cast<double>(timer.nsecsElapsed()) / 1e6);
    }
    std::ranges::sort(milliseconds);
    const double sum = std::accumulate(milliseconds.begin(), milliseconds.end(), 0.0);
    return {sum / count, milliseconds[static_cast<size_t>(count) * 99 / 100]};
}

// Noise under a slowly changing envelope, some seconds of it.
std::vector<int16_t> MakePattern(size_t frames)
{
    std::vector<int16_t> pattern;
    uint32_t random = 1;
    for (size_t i = 0; i < frames * Channels; ++i) {
        random = random * 1664525 + 1013904223;
        const auto envelope = static_cast<int32_t>(i / 64 % 32768);
        pattern.push_back(static_cast<int16_t>((static_cast<int32_t>(random >> 16) - 32768) * envelope / 32768));
    }
    return pattern;
}

bool Fill(CWEDoc& document, double hours)
{
    const auto frames = static_cast<uint64_t>(hours * 3600 * Rate);
    const uint64_t bytes = frames * Channels * sizeof(int16_t);
    if (!document.SetFormat(MakePcm16Format(Rate, Channels), nullptr) || !document.Store().InsertSpace(0, 0, bytes))
        return false;
    const std::vector<int16_t> pattern = MakePattern(1'234'567);
    const uint64_t patternBytes = pattern.size() * sizeof(int16_t);
    for (uint64_t offset = 0; offset < bytes; offset += patternBytes) {
        if (!document.Store().WriteData(pattern.data(), offset, std::min(patternBytes, bytes - offset)))
            return false;
    }
    return document.Store().BuildPeakCache();
}

class Bench {
public:
    explicit Bench(CWEDoc& document) : m_view(document, m_site, nullptr)
    {
        m_view.OnInitialUpdate();
        m_view.resize(1920, 1080);
        m_view.show();
        QCoreApplication::processEvents();
        for (auto* bar : m_view.findChildren<QScrollBar*>()) {
            if (bar->orientation() == Qt::Horizontal)
                m_bar = bar;
        }
    }

    bool Run()
    {
        std::printf("%-34s %9s %9s %9s\n", "1920 x 1080 view", "mean ms", "p99 ms", "bar ms");
        bool met = true;
        for (uint32_t id = ID_ZOOM_RATIO_FIRST; id <= ID_ZOOM_RATIO_LAST; ++id) {
            m_view.OnCmdMsg(id, CN_COMMAND, nullptr);
            met &= MeasureRepaint();
        }
        m_view.OnCmdMsg(ID_ZOOM_RATIO_FIRST, CN_COMMAND, nullptr);
        m_view.OnCmdMsg(ID_ZOOM_FULL, CN_COMMAND, nullptr);
        met &= MeasureRepaint();
        for (const uint32_t power : {0U, 7U}) {
            m_view.OnCmdMsg(ID_ZOOM_RATIO_FIRST + power, CN_COMMAND, nullptr);
            met &= MeasureScroll();
        }
        return met;
    }

private:
    // Every column anew, as after a jump, then all pixels.
    bool MeasureRepaint()
    {
        const Timing timing = Measure(Repaints, [this](int i) {
            m_bar->setValue(static_cast<int>(int64_t{m_bar->maximum()} * (i * 37 % Repaints) / Repaints));
            m_view.repaint();
        });
        return Report("full repaint", timing, timing.Percentile99, RepaintBar);
    }

    // One step of the scroll bar until it is on the screen.
    bool MeasureScroll()
    {
        m_bar->setValue(m_bar->maximum() / 3);
        m_view.repaint();
        const Timing timing = Measure(ScrollSteps, [this](int) {
            m_bar->triggerAction(QAbstractSlider::SliderSingleStepAdd);
            QCoreApplication::sendPostedEvents(nullptr, QEvent::UpdateRequest);
        });
        return Report("scroll step", timing, timing.Mean, ScrollBar);
    }

    bool Report(const char* what, const Timing& timing, double judged, double bar) const
    {
        const QByteArray label = QString("%1 at 1:%2").arg(what).arg(m_view.Geometry().FramesPerPixel).toLatin1();
        std::printf("%-34s %9.3f %9.3f %9.1f%s\n", label.data(), timing.Mean, timing.Percentile99, bar,
                    judged < bar ? "" : "  MISSED");
        return judged < bar;
    }

    Site m_site;
    CWEView m_view;
    QScrollBar* m_bar = nullptr;
};

} // namespace

int main(int argc, char** argv)
{
    qputenv("QT_QPA_PLATFORM", "offscreen");
    QApplication application(argc, argv);
    const QStringList arguments = application.arguments();
    const auto hours = arguments.indexOf("--hours");
    CWEDoc document;
    if (!Fill(document, hours > 0 ? arguments.value(hours + 1).toDouble() : 10.0)) {
        std::fprintf(stderr, "the sound could not be made\n");
        return 1;
    }
    return Bench(document).Run() ? 0 : 1;
}
