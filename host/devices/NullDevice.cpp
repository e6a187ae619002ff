// SPDX-License-Identifier: GPL-3.0-or-later
#include "devices/NullDevice.h"

#include "devices/CaptureQueue.h"
#include "devices/ClockedThread.h"
#include "devices/PlayQueue.h"

#include <utility>
#include <vector>

namespace ek {

namespace {

class NullOutput final : public OutputDevice {
public:
    NullOutput(const StreamWish& wish, std::shared_ptr<AudioClock> clock)
        : m_shape(ClockedShape(wish.Sound)), m_thread(std::move(clock))
    {
    }

    StreamShape Shape() const override { return m_shape; }
    std::string Name() const override { return "No sound"; }
    uint32_t LatencyFrames() const override { return 0; }
    bool IsSilent() const override { return true; }
    void Stop() override { m_thread.Stop(); }

    bool Start(PlayQueue& queue, std::string& /*trouble*/) override
    {
        m_frames.resize(static_cast<size_t>(m_shape.PeriodFrames) * m_shape.Channels);
        m_thread.Start(m_shape, [this, &queue](int64_t due) {
            queue.Fill(m_frames.data(), m_shape.PeriodFrames, due);
            return true;
        });
        return true;
    }

private:
    StreamShape m_shape;
    std::vector<float> m_frames;
    ClockedThread m_thread; ///< last: it uses the others
};

/// A microphone in a silent room.
class NullInput final : public InputDevice {
public:
    NullInput(const StreamWish& wish, std::shared_ptr<AudioClock> clock)
        : m_shape(ClockedShape(wish.Sound)), m_thread(std::move(clock))
    {
    }

    StreamShape Shape() const override { return m_shape; }
    std::string Name() const override { return "Silence"; }
    void Stop() override { m_thread.Stop(); }

    bool Start(CaptureQueue& queue, std::string& /*trouble*/) override
    {
        m_frames.resize(static_cast<size_t>(m_shape.PeriodFrames) * m_shape.Channels);
        m_thread.Start(m_shape, [this, &queue](int64_t due) {
            queue.Put(m_frames.data(), m_shape.PeriodFrames, due);
            return true;
        });
        return true;
    }

private:
    StreamShape m_shape;
    std::vector<float> m_frames;
    ClockedThread m_thread; ///< last: it uses the others
};

} // namespace

std::unique_ptr<OutputDevice> MakeNullOutput(const StreamWish& wish, std::shared_ptr<AudioClock> clock)
{
    return std::make_unique<NullOutput>(wish, std::move(clock));
}

std::unique_ptr<InputDevice> MakeNullInput(const StreamWish& wish, std::shared_ptr<AudioClock> clock)
{
    return std::make_unique<NullInput>(wish, std::move(clock));
}

} // namespace ek
