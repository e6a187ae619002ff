// SPDX-License-Identifier: GPL-3.0-or-later
#include "devices/FileDevice.h"

#include "devices/PlayQueue.h"
#include "devices/WakeUp.h"
#include "devices/WavWriter.h"
#include "platform/Events.h"
#include "servicefuncs/SoundData.h"

#include <atomic>
#include <thread>
#include <utility>
#include <vector>

namespace ek {

namespace {

constexpr uint32_t PieceFrames = 4096;

std::string CannotWrite(const std::filesystem::path& path, const IoStatus& status)
{
    return "Can't write " + path.string() + ": " + status.Text() + ".";
}

class FileOutput final : public OutputDevice {
public:
    explicit FileOutput(const StreamWish& wish) : m_wish(wish) {}
    ~FileOutput() override { Stop(); }

    IoStatus Create(const std::filesystem::path& path)
    {
        m_path = path;
        return m_writer.Create(path, m_wish.Sound);
    }

    StreamShape Shape() const override
    {
        return {m_wish.Sound.nSamplesPerSec, m_wish.Sound.nChannels, m_wish.BlockFrames};
    }
    std::string Name() const override { return m_path.string(); }
    uint32_t LatencyFrames() const override { return 0; }
    bool IsReplaceable() const override { return false; }
    void OnQueueChanged() override { m_wake.Signal(); }
    bool HasFailed() const override { return m_failed.load(std::memory_order_acquire); }
    std::string Trouble() const override { return HasFailed() ? m_trouble : std::string(); }

    bool Start(PlayQueue& queue, std::string& /*trouble*/) override
    {
        m_quit = false;
        m_thread = std::thread([this, &queue] { Run(queue); });
        return true;
    }

    void Stop() override
    {
        if (!m_thread.joinable())
            return;
        m_quit = true;
        m_wake.Signal();
        m_thread.join();
    }

    bool Finish(std::string& trouble) override
    {
        const IoStatus status = m_writer.Complete();
        if (!status.Ok())
            trouble = CannotWrite(m_path, status);
        return status.Ok();
    }

private:
    void Run(PlayQueue& queue)
    {
        std::vector<float> frames(static_cast<size_t>(PieceFrames) * queue.Channels());
        while (!m_quit) {
            const uint32_t count =
                queue.Take(frames.data(), PieceFrames, static_cast<int64_t>(TickMilliseconds()) * 1000);
            if (count == 0) {
                m_wake.Wait();
            } else if (const IoStatus status = Write(frames, count); !status.Ok()) {
                m_trouble = CannotWrite(m_path, status);
                m_writer.Abandon();
                m_failed.store(true, std::memory_order_release);
                queue.Pump().Signal();
                return;
            }
        }
    }

    IoStatus Write(const std::vector<float>& frames, uint32_t count)
    {
        const uint32_t channels = m_wish.Sound.nChannels;
        m_sound.Resize(channels, count);
        for (uint32_t channel = 0; channel < channels; ++channel)
            for (uint32_t i = 0; i < count; ++i)
                m_sound.Record().Channels[channel][i] = frames[static_cast<size_t>(i) * channels + channel];
        m_bytes.resize(static_cast<size_t>(count) * m_wish.Sound.nBlockAlign);
        SD2MME(m_sound.Record(), 0, count, m_bytes.data(), m_wish.Sound);
        return m_writer.Append(m_bytes.data(), m_bytes.size());
    }

    StreamWish m_wish;
    std::filesystem::path m_path;
    WavWriter m_writer;
    SoundData m_sound;
    std::vector<uint8_t> m_bytes;
    WakeUp m_wake;
    std::atomic<bool> m_quit = false;
    std::atomic<bool> m_failed = false;
    std::string m_trouble; ///< fixed before m_failed is set
    std::thread m_thread;
};

} // namespace

std::unique_ptr<OutputDevice> MakeFileOutput(const StreamWish& wish, const std::filesystem::path& path,
                                             std::string& trouble)
{
    auto device = std::make_unique<FileOutput>(wish);
    if (const IoStatus status = device->Create(path); !status.Ok()) {
        trouble = CannotWrite(path, status);
        return nullptr;
    }
    return device;
}

} // namespace ek
