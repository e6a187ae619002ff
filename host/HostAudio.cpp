// SPDX-License-Identifier: GPL-3.0-or-later
#include "host/HostAudio.h"

#include "debugmanager/DebugManager.h"
#include "ek/Message.h"

#include <QCoreApplication>
#include <QThread>

#include <utility>

namespace ek {

namespace {

constexpr int WatchEveryMilliseconds = 1000;

} // namespace

HostAudio::HostAudio(const AudioChoice& choice)
{
    m_player.SetListener(this);
    m_recorder.SetListener(this);
    m_watch.setInterval(WatchEveryMilliseconds);
    connect(&m_watch, &QTimer::timeout, this, [this] { m_player.Watch(); });
    Choose(choice);
}

HostAudio::~HostAudio()
{
    m_player.Stop();
    m_recorder.Stop();
    m_player.SetListener(nullptr);
    m_recorder.SetListener(nullptr);
}

void HostAudio::Choose(const AudioChoice& choice)
{
    m_choice = choice;
    m_toldTrouble.clear();
    m_isDeviceKnown = IsPlaying() || (m_isDeviceKnown && choice.Output == m_player.Choice());
    m_player.Choose(choice.Output);
    m_recorder.Choose(choice.Input());
    emit StateChanged();
    emit DeviceChanged();
}

QString HostAudio::DeviceText() const
{
    const std::string name = m_isDeviceKnown ? m_player.DeviceName() : std::string();
    return QString::fromStdString(name.empty() ? m_choice.Output.Device : name);
}

bool HostAudio::Send(TransportCommand command, intptr_t parameter)
{
    if (IsJump(command) && !IsPlaying()) // the module jumps in the view that has the player, even while it is silent
        SendMessage(EK_WM_TAKE_PLAYER);
    return SendMessage(EK_WM_COMMAND, command, parameter);
}

void HostAudio::TakePlayerAway()
{
    if (m_player.GetOwner())
        SendMessage(EK_WM_RELEASE_PLAYER);
}

bool HostAudio::SendMessage(uint32_t id, uintptr_t wParam, intptr_t lParam)
{
    if (!m_frame)
        return false;
    MessageEvent message(id, wParam, lParam);
    message.ignore();
    QCoreApplication::sendEvent(m_frame, &message);
    return message.isAccepted();
}

TransportState HostAudio::State() const
{
    TransportState state;
    state.Device = m_player.GetState();
    state.CanPlay = m_player.CanPlay();
    state.IsLoop = m_player.IsLoop() != 0;
    state.ProgressRange = m_player.GetProgressRange();
    state.Progress = state.IsStopped() ? 0 : m_player.Progress();
    state.HeardMilliseconds = m_player.HeardMilliseconds();
    return state;
}

void HostAudio::OnPlayerGranted()
{
    SendMessage(EK_WM_TAKE_PLAYER);
}

void HostAudio::OnPlayerReconfigured()
{
    SendMessage(EK_WM_TAKE_PLAYER);
}

void HostAudio::OnInputGranted()
{
    SendMessage(EK_WM_SETUP_CAPTURE);
}

void HostAudio::OnControlsChanged()
{
    QMetaObject::invokeMethod(this, &HostAudio::TakeControls, Qt::AutoConnection);
}

void HostAudio::TakeControls()
{
    const bool hasStarted = IsPlaying() && !m_wasPlaying;
    m_wasPlaying = IsPlaying();
    if (hasStarted)
        m_toldTrouble.clear();
    emit StateChanged();
    if (hasStarted)
        OnDeviceChanged();
    if (!m_wasPlaying)
        m_watch.stop();
    else if (!m_watch.isActive())
        m_watch.start();
}

void HostAudio::OnDeviceChanged()
{
    m_isDeviceKnown = true;
    emit DeviceChanged();
}

void HostAudio::OnDeviceTrouble(const std::string& text)
{
    const bool hasEnded = HasEndedByItself();
    const std::lock_guard lock(m_troubleLock);
    if (m_trouble.empty())
        QMetaObject::invokeMethod(this, &HostAudio::TellOfTrouble, Qt::QueuedConnection);
    m_trouble += m_trouble.empty() ? text : "\n" + text;
    m_isEnd = m_isEnd || hasEnded;
}

/// A device that does not let playing start is the module's to tell of; a device's own thread runs only afterwards.
bool HostAudio::HasEndedByItself() const
{
    return QThread::currentThread() != thread() && !IsPlaying();
}

void HostAudio::TellOfTrouble()
{
    std::unique_lock lock(m_troubleLock);
    const QString text = QString::fromStdString(std::exchange(m_trouble, {}));
    const bool isEnd = std::exchange(m_isEnd, false);
    lock.unlock();
    const bool isKnown = std::exchange(m_toldTrouble, text) == text;
    if (text.isEmpty() || (isKnown && IsPlaying()))
        return;
    enDebugManager().WriteLogMessage("Host", LogError, "Error: audio: %s", qPrintable(text));
    emit Trouble(text, isEnd);
}

} // namespace ek
