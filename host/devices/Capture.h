// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "devices/CaptureQueue.h"
#include "devices/InputDevice.h"
#include "devices/RateStage.h"
#include "ek/HostAudioDevice.h"
#include "servicefuncs/SoundData.h"

#include <atomic>
#include <cstdint>
#include <functional>
#include <memory>
#include <string>
#include <thread>
#include <vector>

namespace ek {

/// What a module has set up for capturing.
struct CaptureSetup {
    CHostAudioDevice* Device = nullptr; ///< what the callback is given
    AudioCallback Callback = nullptr;
    void* User = nullptr;
    StreamWish Wish;
    uint32_t BlockCount = 0;
};

/// One recording from Start to Stop: the pump thread, which takes frames out of the device's queue and hands them to
/// the module in blocks of its format. All calls come from one thread unless a line says otherwise.
class Capture {
public:
    using TroubleReport = std::function<void(const std::string& text)>; ///< called on any thread

    explicit Capture(TroubleReport report) : m_report(std::move(report)) {}
    ~Capture() { Stop(); }
    Capture(const Capture&) = delete;
    Capture& operator=(const Capture&) = delete;

    /// False: `trouble` says why, and nothing runs.
    bool Start(const CaptureSetup& setup, std::unique_ptr<InputDevice> device, std::string& trouble);
    void Stop(); ///< what the device has given until now reaches the module first; the last block may be short
    void TogglePause();
    uint64_t Lost() const { return m_queue ? m_queue->Lost() : 0; }

private:
    bool Run(std::unique_ptr<InputDevice> device, std::string& trouble);
    void Pump();
    void Drain();
    void Convert(const float* frames, uint32_t count);
    void DeliverWholeBlocks();
    void Deliver(size_t bytes);

    TroubleReport m_report;
    CaptureSetup m_setup;
    std::unique_ptr<CaptureQueue> m_queue;
    std::unique_ptr<InputDevice> m_device; ///< after the queue that it fills
    std::unique_ptr<RateStage> m_rate;
    SoundData m_sound;
    std::vector<float> m_frames;  ///< as the card gave them
    std::vector<uint8_t> m_bytes; ///< in the module's format, not delivered yet
    int64_t m_endTime = 0;        ///< microseconds: when what follows the bytes was captured
    bool m_paused = false;
    std::atomic<bool> m_quit = false;
    std::thread m_thread;
};

} // namespace ek
