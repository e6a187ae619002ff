// SPDX-License-Identifier: GPL-3.0-or-later
#include "Batch.h"
#include "Interruption.h"

#include "devices/HostPlayer.h"
#include "platform/Events.h"
#include "platform/SaveTarget.h"
#include "platform/TempFile.h"
#include "waveview/WavePlayback.h"

#include <chrono>
#include <mutex>

namespace ek {

namespace {

/// One playing of a sound from its beginning, or that of its selection, to its end.
class Performance final : private PlaybackSite, private HostPlayerListener {
public:
    Performance(CWEDoc& document, const WaveGeometry& view, const AudioDeviceChoice& device)
        : m_view(view), m_playback(document, m_view, &m_player, nullptr, *this)
    {
        m_view.CursorFrame = WaveGeometry::NoFrame;
        m_player.SetListener(this);
        m_player.Choose(device);
    }

    ~Performance()
    {
        m_playback.Stop();
        m_player.SetListener(nullptr);
    }

    /// False: it does not play, and the user has been told.
    bool Start()
    {
        m_playback.Play();
        m_isSilent = m_player.IsInTrouble();
        return m_playback.IsPlaying();
    }

    /// There was no sound device to start with, and time passes without sound.
    bool IsSilent() const { return m_isSilent; }

    enum class End { Heard, NotHeard, Lost, Interrupted };
    /// A device that goes away, with none in its place, is the end of it: nobody waits for what cannot be heard.
    End WaitForEnd()
    {
        auto nextWatch = std::chrono::steady_clock::now() + WatchInterval;
        while (m_playback.IsPlaying() && !m_rangePlayed.WaitFor(std::chrono::milliseconds(50))) {
            if (IsInterrupted())
                return End::Interrupted;
            // At a regular end the state may change shortly before the notice comes.
            if (m_player.GetState() == CHostPlayer::Stopped && !m_rangePlayed.WaitFor(WatchInterval))
                return End::NotHeard;
            if (std::chrono::steady_clock::now() >= nextWatch) {
                m_player.Watch();
                nextWatch += WatchInterval;
                if (!m_isSilent && m_player.IsInTrouble())
                    return End::Lost;
            }
        }
        const bool hasEnded = m_rangePlayed.IsSet();
        m_playback.Finish();
        return hasEnded && !m_playback.HasFailed() ? End::Heard : End::NotHeard;
    }

    /// What the device had to say; empty: nothing.
    std::string Trouble()
    {
        const std::lock_guard lock(m_mutex);
        return m_trouble;
    }

private:
    static constexpr std::chrono::seconds WatchInterval{1};

    void OnCursorMoved(uint64_t) override {}
    void OnPlaybackStarted() override {}
    void OnPlaybackStopped() override {}
    void OnRangePlayed() override { m_rangePlayed.Set(); }

    void OnPlayerGranted() override {}
    void OnPlayerReconfigured() override {}
    void OnControlsChanged() override {}
    void OnDeviceTrouble(const std::string& text) override
    {
        const std::lock_guard lock(m_mutex);
        m_trouble += m_trouble.empty() ? text : "\n" + text;
    }

    ManualResetEvent m_rangePlayed;
    std::mutex m_mutex;
    std::string m_trouble;
    bool m_isSilent = false;
    WaveGeometry m_view;
    HostPlayer m_player;
    WavePlayback m_playback;
};

} // namespace

Batch::Outcome Batch::Play(const Words& words, std::string& error)
{
    const OpenSound* sound = Current(error);
    if (!sound)
        return Outcome::Failed;
    if (sound->Document->FrameCount() == 0)
        return Fail(error, "the sound is empty");
    return words.size() > 1 ? PlayInto(*sound, words[1], error) : Perform(*sound, {}, {}, error);
}

/// Only a sound that was played to its end takes the place of what stands there.
Batch::Outcome Batch::PlayInto(const OpenSound& sound, const std::string& name, std::string& error)
{
    const std::filesystem::path path = AbsolutePath(name);
    if (path.empty())
        return Fail(error, "there is no file \"" + name + "\" to play into");
    const std::filesystem::path target = FollowLinks(path);
    if (const IoStatus status = MayReplace(target); !status.Ok())
        return Fail(error, "Can't write " + name + ": " + status.Text());
    AudioDeviceChoice device;
    device.System = "file";
    device.File = MakeTempFileName("ekplay", ".wav", target.parent_path());
    Outcome outcome = Perform(sound, device, name, error);
    if (outcome == Outcome::Done) {
        if (const IoStatus status = RenameOver(device.File, target); !status.Ok())
            outcome = Fail(error, "Can't write " + name + ": " + status.Text());
    }
    if (outcome != Outcome::Done && IsFile(device.File)) {
        if (const IoStatus status = RemoveFile(device.File); !status.Ok())
            error += "\nCan't remove " + device.File.string() + ": " + status.Text();
    }
    return outcome;
}

/// `name` is what the user calls the device's file.
Batch::Outcome Batch::Perform(const OpenSound& sound, const AudioDeviceChoice& device, const std::string& name,
                              std::string& error)
{
    Performance performance(*sound.Document, sound.View, device);
    Performance::End end = Performance::End::NotHeard;
    if (performance.Start()) {
        if (performance.IsSilent()) {
            m_prompts.ShowMessage("There is no sound device: the sound is not audible.", MessageButtons::Ok,
                                  MessageIcon::Information);
            PassMessagesOn();
        }
        end = performance.WaitForEnd();
    }
    std::string trouble = performance.Trouble();
    const std::string file = device.File.string();
    if (const size_t at = file.empty() ? std::string::npos : trouble.find(file); at != std::string::npos)
        trouble.replace(at, file.size(), name);
    if (!trouble.empty())
        m_prompts.ShowMessage(trouble, MessageButtons::Ok, MessageIcon::Error);
    if (end == Performance::End::Lost)
        m_prompts.ShowMessage("The sound device is lost, playing was stopped.", MessageButtons::Ok, MessageIcon::Error);
    if (end == Performance::End::Interrupted)
        return Fail(error, "interrupted");
    const bool isComplete = end == Performance::End::Heard && (file.empty() || trouble.empty());
    return isComplete ? Outcome::Done : Fail(error, "the sound was not played to its end");
}

} // namespace ek
