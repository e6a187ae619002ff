// SPDX-License-Identifier: GPL-3.0-or-later
#include "figures/Figures.h"

#include "storage/ColumnCache.h"
#include "storage/WaveData.h"

#include <algorithm>
#include <random>

namespace ek::bench {

namespace {

constexpr uint32_t Width = 1920;
constexpr uint32_t ScrollColumns = 64;
constexpr double BarMilliseconds = 2;

class ColumnTimer {
public:
    explicit ColumnTimer(CWaveData& store) : m_store(store) { m_columns.SetChannelCount(2); }

    /// Columns at places all over the sound, every time anew.
    double FullRefresh(uint32_t framesPerColumn)
    {
        std::mt19937_64 random(framesPerColumn);
        const uint64_t shown = uint64_t{framesPerColumn} * Width;
        const uint64_t places = m_store.FrameCount() > shown ? m_store.FrameCount() - shown : 1;
        std::vector<double> times;
        for (int i = 0; i < 200; ++i) {
            m_columns.Invalidate();
            times.push_back(Refresh(random() % places, framesPerColumn));
        }
        return Percentile99(times);
    }

    double ScrollStep(uint32_t framesPerColumn)
    {
        const uint64_t step = uint64_t{framesPerColumn} * ScrollColumns;
        std::vector<double> times;
        m_columns.Invalidate();
        Refresh(0, framesPerColumn);
        for (uint64_t i = 1; i <= 1000; ++i)
            times.push_back(Refresh(std::min(i, 1000 - i) * step, framesPerColumn));
        return Percentile99(times);
    }

private:
    double Refresh(uint64_t firstFrame, uint32_t framesPerColumn)
    {
        return 1000 * Seconds([&] { m_columns.Refresh(m_store, firstFrame, framesPerColumn, Width); });
    }

    CWaveData& m_store;
    ColumnCache m_columns;
};

} // namespace

void MeasureColumns(Bench& bench)
{
    CWaveData store;
    if (!store.OpenFile(bench.LongSound()))
        Fail("cannot open the long sound");
    ColumnTimer timer(store);
    double slowest = 0;
    for (uint32_t framesPerColumn = 1; uint64_t{framesPerColumn} * Width < 2 * store.FrameCount(); framesPerColumn *= 2)
        slowest = std::max(slowest, timer.FullRefresh(framesPerColumn));
    bench.Report("all columns anew, slowest zoom, 99th of 100", slowest, BarMilliseconds, "ms");
    bench.Report("columns of a scroll step at 1:1, 99th of 100", timer.ScrollStep(1), BarMilliseconds, "ms");
    bench.Report("columns of a scroll step at 1:128, 99th of 100", timer.ScrollStep(128), BarMilliseconds, "ms");
}

} // namespace ek::bench
