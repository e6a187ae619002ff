// SPDX-License-Identifier: GPL-3.0-or-later
#include "figures/Figures.h"

#include "devices/HostPlayer.h"
#include "effectmanager/EffectTree.h"
#include "waveedit/WEDoc.h"
#include "waveview/WavePlayback.h"

#include <algorithm>
#include <chrono>
#include <sys/resource.h>
#include <thread>

namespace ek::bench {

namespace {

using namespace std::chrono_literals;

constexpr int Starts = 10;
constexpr auto ListeningTime = 5s;
constexpr auto TickInterval = 33ms; // of a view while it plays

double ProcessorSeconds()
{
    rusage usage{};
    getrusage(RUSAGE_SELF, &usage);
    const auto seconds = [](const timeval& time) {
        return static_cast<double>(time.tv_sec) + static_cast<double>(time.tv_usec) * 1e-6;
    };
    return seconds(usage.ru_utime) + seconds(usage.ru_stime);
}

/// The sound played through the silent device, which takes as long as a card does.
class Listener final : private PlaybackSite {
public:
    explicit Listener(Bench& bench)
    {
        if (!m_document.OnOpenDocument(bench.Sound()))
            Fail("cannot open the sound");
        m_geometry.Length = m_document.FrameCount();
        m_player.Choose({.System = "null", .Device = {}, .LatencyMilliseconds = 0, .File = {}});
    }

    ~Listener() { m_playback.Stop(); }

    /// Milliseconds from the command to the first sound in the hands of the device, somewhere in the sound.
    double Start(int round)
    {
        m_geometry.CursorFrame = m_geometry.Length / (Starts + 1) * static_cast<uint64_t>(round + 1);
        m_player.TakePeaks();
        const double seconds = Seconds([&] {
            m_playback.Play();
            while (m_player.TakePeaks()[0] == 0)
                std::this_thread::sleep_for(50us);
        });
        m_playback.Stop();
        return seconds * 1000;
    }

    /// Percent of one core.
    double Play()
    {
        m_geometry.CursorFrame = 0;
        m_playback.Play();
        const double before = ProcessorSeconds();
        const double played = Seconds([&] {
            for (auto passed = 0ms; passed < ListeningTime; passed += TickInterval) {
                std::this_thread::sleep_for(TickInterval);
                m_playback.Tick();
            }
        });
        const double used = ProcessorSeconds() - before;
        if (!m_playback.IsPlaying())
            Fail("the sound did not play");
        m_playback.Stop();
        return used / played * 100;
    }

private:
    void OnCursorMoved(uint64_t) override {}
    void OnPlaybackStarted() override {}
    void OnPlaybackStopped() override {}
    void OnRangePlayed() override {}

    CWEDoc m_document;
    WaveGeometry m_geometry;
    HostPlayer m_player;
    CEffectTree m_tree{"Effects Library"};
    WavePlayback m_playback{m_document, m_geometry, &m_player, &m_tree, *this};
};

} // namespace

void MeasurePlay(Bench& bench)
{
    Listener listener(bench);
    double slowest = 0;
    for (int round = 0; round < Starts; ++round)
        slowest = std::max(slowest, listener.Start(round));
    bench.Report("play command to the first block at the device, slowest of 10", slowest, 50, "ms");
    bench.Report("playing stereo at 44.1 kHz, share of one core", listener.Play(), 3, "%");
}

} // namespace ek::bench
