// SPDX-License-Identifier: GPL-3.0-or-later
#include "devices/CaptureQueue.h"
#include "devices/ClockedThread.h"
#include "devices/FileDevice.h"
#include "devices/WavReader.h"
#include "servicefuncs/SoundData.h"

#include <algorithm>
#include <vector>

namespace ek {

namespace {

std::string CannotRead(const std::filesystem::path& path, const IoStatus& status)
{
    return "Can't read " + path.string() + ": " + status.Text() + ".";
}

class FileInput final : public InputDevice {
public:
    FileInput(std::filesystem::path path, std::shared_ptr<AudioClock> clock)
        : m_path(std::move(path)), m_thread(std::move(clock))
    {
    }

    IoStatus Open()
    {
        const IoStatus status = m_reader.Open(m_path);
        if (status.Ok())
            m_shape = ClockedShape(m_reader.Format());
        return status;
    }

    StreamShape Shape() const override { return m_shape; }
    std::string Name() const override { return m_path.string(); }
    void Stop() override { m_thread.Stop(); }
    bool HasFailed() const override { return m_failed.load(std::memory_order_acquire); }
    std::string Trouble() const override { return HasFailed() ? m_trouble : std::string(); }

    bool Start(CaptureQueue& queue, std::string& /*trouble*/) override
    {
        m_bytes.resize(static_cast<size_t>(m_shape.PeriodFrames) * m_reader.Format().nBlockAlign);
        m_frames.resize(static_cast<size_t>(m_shape.PeriodFrames) * m_shape.Channels);
        m_thread.Start(m_shape, [this, &queue](int64_t due) { return GivePeriod(queue, due); });
        return true;
    }

private:
    bool GivePeriod(CaptureQueue& queue, int64_t due)
    {
        const auto count =
            static_cast<uint32_t>(std::min<uint64_t>(m_shape.PeriodFrames, m_reader.FrameCount() - m_next));
        if (const IoStatus status = m_reader.Read(m_bytes.data(), m_next, count); !status.Ok()) {
            m_trouble = CannotRead(m_path, status);
            m_failed.store(true, std::memory_order_release);
            return false;
        }
        m_next += count;
        m_sound.Resize(m_shape.Channels, count);
        MME2SD_BYSAMPLES(m_bytes.data(), count, m_sound.Record(), m_reader.Format(), 0, -1);
        for (uint32_t channel = 0; channel < m_shape.Channels; ++channel)
            for (uint32_t i = 0; i < count; ++i)
                m_frames[static_cast<size_t>(i) * m_shape.Channels + channel] = m_sound.Record().Channels[channel][i];
        queue.Put(m_frames.data(), count, due);
        return true;
    }

    std::filesystem::path m_path;
    WavReader m_reader;
    StreamShape m_shape;
    uint64_t m_next = 0; ///< frame
    SoundData m_sound;
    std::vector<uint8_t> m_bytes;
    std::vector<float> m_frames;
    std::atomic<bool> m_failed = false;
    std::string m_trouble;  ///< fixed before m_failed is set
    ClockedThread m_thread; ///< last: it uses the others
};

} // namespace

std::unique_ptr<InputDevice> MakeFileInput(const std::filesystem::path& path, std::shared_ptr<AudioClock> clock,
                                           std::string& trouble)
{
    auto device = std::make_unique<FileInput>(path, std::move(clock));
    if (const IoStatus status = device->Open(); !status.Ok()) {
        trouble = CannotRead(path, status);
        return nullptr;
    }
    return device;
}

} // namespace ek
