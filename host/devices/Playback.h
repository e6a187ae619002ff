// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "devices/AudioBackend.h"
#include "devices/CardMixer.h"
#include "devices/PeakTrack.h"
#include "devices/PlayQueue.h"
#include "devices/RateStage.h"
#include "ek/HostAudioDevice.h"

#include <atomic>
#include <cstdint>
#include <deque>
#include <functional>
#include <memory>
#include <string>
#include <thread>
#include <vector>

namespace ek {

/// What a module has set up for playing.
struct PlaySetup {
    CHostAudioDevice* Device = nullptr; ///< what the callback is given
    AudioCallback Callback = nullptr;
    void* User = nullptr;
    StreamWish Wish;
    uint32_t BlockCount = 0;
};

/// One sound from Start to its end or Stop: the pump thread, which asks the module for blocks and fills the queue of
/// the device in use. The device may be changed for another one on the way; frames that the old one took and that
/// were not heard are then played again. All calls come from one thread unless a line says otherwise.
class Playback {
public:
    struct Events {
        std::function<void()> OnEnded;                          ///< on the pump thread, before the end notice
        std::function<void(const std::string& text)> OnTrouble; ///< any thread; of an end by itself after OnEnded
    };

    Playback(AudioBackend& backend, Events events);
    ~Playback(); ///< stops
    Playback(const Playback&) = delete;
    Playback& operator=(const Playback&) = delete;

    /// Begins the sound of the setup, on the device that is open for the same wish or on one that is given. False:
    /// `trouble` says why, nothing runs and no device is open.
    bool Start(const PlaySetup& setup, std::unique_ptr<OutputDevice> device, std::string& trouble);
    /// No callback runs or will run, until one of the other calls lets it: the sound stands as it is.
    void Hold();
    bool CanRestart(const PlaySetup& setup) const; ///< with the device that is open; while on hold
    /// Drops what is not heard yet; if CanRestart. False: as for Start.
    bool Restart(const PlaySetup& setup, std::string& trouble);
    /// Goes on with another device from what was heard last. False: as for Start, but the old device is gone.
    bool Continue(std::unique_ptr<OutputDevice> device, std::string& trouble);
    /// Closes the device, so that its like can be opened; Continue follows.
    void Silence();
    void Stop(); ///< a file whose writing has failed is told of
    void SetPaused(bool paused);

    bool HasEnded() const { return m_ended.load(std::memory_order_acquire); } ///< by itself; no call is to follow
    const StreamWish& Wish() const { return m_setup.Wish; }
    OutputDevice* Device() const { return m_device.get(); }
    uint64_t HeardMilliseconds() const;
    uint64_t Dropouts() const;
    PeakTrack::Peaks TakePeaks() { return m_peaks.Take(HeardFrames()); } ///< of what was heard since the last call

private:
    /// A block as the module has filled it.
    struct Block {
        uint64_t Start = 0; ///< in frames of the sound
        uint32_t Frames = 0;
        std::vector<float> Values; ///< one channel after the other, as many values for each as a block has frames
    };

    bool RunOn(std::unique_ptr<OutputDevice> device, std::string& trouble);
    bool Use(std::unique_ptr<OutputDevice> device, std::string& trouble);
    void Run();
    void CloseDevice();
    bool CompleteDevice(std::string& trouble);
    void ForgetBlocks();

    // The pump thread.
    void Pump();
    bool HasMore() const { return !m_soundOver || m_unsent < m_blocks.size(); }
    void Ask();
    void Send();
    void SendEnd();
    void TrimBlocks();
    Block TakeSpare();
    _SOUNDDATAEX_ RecordOf(Block& block, uint32_t offset) const;
    void Finish();
    uint32_t StampMilliseconds() const;

    uint64_t HeardFrames() const; ///< of the sound

    AudioBackend& m_backend;
    Events m_events;
    PlaySetup m_setup;
    std::unique_ptr<PlayQueue> m_queue;
    std::unique_ptr<OutputDevice> m_device; ///< after the queue that it takes from
    std::unique_ptr<CardMixer> m_mixer;
    std::unique_ptr<RateStage> m_rate;
    std::deque<Block> m_blocks; ///< those that are not heard yet
    std::vector<Block> m_spare;
    PeakTrack m_peaks;
    size_t m_unsent = 0;      ///< index of the first block that the queue has not been given
    uint64_t m_asked = 0;     ///< frames of the sound so far
    bool m_soundOver = false; ///< the module has no more
    bool m_endSent = false;
    uint64_t m_queueStart = 0;                    ///< position in the queue of
    uint64_t m_soundStart = 0;                    ///< this frame of the sound
    uint64_t m_pastDropouts = 0;                  ///< of devices used before
    mutable std::atomic<uint64_t> m_heardMost{0}; ///< frames of the sound
    std::atomic<bool> m_ended = false;
    std::atomic<bool> m_quit = false;
    bool m_paused = false;
    std::thread m_thread;
};

} // namespace ek
