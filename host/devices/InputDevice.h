// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "devices/OutputDevice.h"

#include <cstdint>
#include <string>

namespace ek {

class CaptureQueue;

/// An open capture device. A thread of its own puts frames into the queue, between Start and Stop, any number per call.
class InputDevice {
public:
    virtual ~InputDevice() = default; ///< stops

    virtual StreamShape Shape() const = 0; ///< no more channels than were wished for
    virtual std::string Name() const = 0;  ///< for a person
    /// Once. The queue outlives the device or its Stop. False: `trouble` says why, for a person, and nothing comes.
    virtual bool Start(CaptureQueue& queue, std::string& trouble) = 0;
    virtual void Stop() = 0; ///< when it returns, the queue is in nobody's hands
    /// The device gives no more frames and will not recover. Any thread.
    virtual bool HasFailed() const { return false; }
    virtual std::string Trouble() const { return {}; } ///< why it has failed; for a person
};

} // namespace ek
