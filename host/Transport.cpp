// SPDX-License-Identifier: GPL-3.0-or-later
#include "host/Transport.h"

#include "host/DeviceDialog.h"
#include "host/HostAudio.h"
#include "host/TransportBar.h"

#include "debugmanager/DebugManager.h"
#include "skincontrols/LevelMeter.h"

#include <QAction>
#include <QMainWindow>
#include <QMenu>
#include <QMessageBox>

#include <utility>

namespace ek {

namespace {

constexpr int LookEveryMilliseconds = 50;
constexpr int TroubleTextMilliseconds = 10000;

} // namespace

Transport::Transport(HostAudio& audio, QMainWindow& window)
    : QObject(&window), m_audio(audio), m_window(window), m_actions(this), m_bar(new TransportBar(m_actions, &window)),
      m_menu(m_actions.MakeMenu(&window))
{
    window.addToolBar(Qt::BottomToolBarArea, m_bar);
    connect(&m_actions, &TransportActions::CommandChosen, this,
            [this](uint32_t command) { Run(static_cast<TransportCommand>(command)); });
    connect(&m_actions, &TransportActions::LoopChosen, this, [this](bool on) { m_audio.Player().SetLoop(on); });
    connect(m_actions.Devices(), &QAction::triggered, this, &Transport::OpenDeviceDialog);
    connect(m_bar, &TransportBar::SeekWanted, this, [this](int percent) { Run(TransportSeek, percent); });
    connect(&m_bar->DeviceMenu(), &QMenu::aboutToShow, this, &Transport::FillDeviceMenu);
    connect(&m_audio, &HostAudio::StateChanged, this, &Transport::Refresh);
    connect(&m_audio, &HostAudio::DeviceChanged, this, &Transport::TakeDevice);
    connect(&m_audio, &HostAudio::Trouble, this, &Transport::TellOfTrouble);
    connect(&m_look, &QTimer::timeout, this, &Transport::ShowPlaying);
    Refresh();
}

void Transport::SetIcons(const QColor& color)
{
    m_actions.SetIcons(color);
    m_bar->SetIcons(color);
}

void Transport::SetCanRecord(bool canRecord)
{
    if (std::exchange(m_canRecord, canRecord) != canRecord)
        Refresh();
}

void Transport::Run(TransportCommand command, intptr_t parameter)
{
    m_audio.Send(command, parameter);
    Refresh();
}

void Transport::Refresh()
{
    TransportState state = m_audio.State();
    state.CanRecord = m_canRecord;
    m_actions.Show(state);
    m_bar->Show(state);
    WAVEFORMATEXTENSIBLE format = *m_audio.Player().GetFormat();
    if (!state.IsStopped()) // another sound may have been got ready meanwhile
        format.nChannels = static_cast<uint16_t>(m_audio.Player().ChannelCount());
    m_bar->Meter().SetFormat(format);
    if (state.IsRunning() == m_look.isActive())
        return;
    if (!state.IsRunning()) {
        m_look.stop();
        return;
    }
    m_audio.Player().TakePeaks();
    m_sinceLook.start();
    m_look.start(LookEveryMilliseconds);
}

void Transport::ShowPlaying()
{
    const auto peaks = m_audio.Player().TakePeaks();
    m_bar->Meter().SetPeaks(peaks, static_cast<double>(m_sinceLook.restart()));
    Refresh();
}

/// What plays on the device that was wished for has no trouble any more.
void Transport::TakeDevice()
{
    if (!m_audio.IsDeviceInTrouble())
        m_trouble.clear();
    ShowDevice();
}

void Transport::TellOfTrouble(const QString& text, bool isEnd)
{
    Refresh();
    if (m_audio.State().IsStopped() || m_audio.IsDeviceInTrouble())
        m_trouble = text;
    ShowDevice();
    emit StatusText(text.simplified(), TroubleTextMilliseconds);
    if (!isEnd)
        return;
    if (m_message) {
        m_message->setText(text);
        return;
    }
    m_message =
        new QMessageBox(QMessageBox::Warning, QString::fromLatin1(ModuleName), text, QMessageBox::Ok, &m_window);
    m_message->setAttribute(Qt::WA_DeleteOnClose);
    m_message->setModal(false);
    m_message->show();
}

void Transport::ShowDevice()
{
    const QString device = m_audio.DeviceText();
    QString text = device.isEmpty() ? tr("Audio device") : tr("Audio device: %1").arg(device);
    if (!m_trouble.isEmpty())
        text += u'\n' + m_trouble;
    m_bar->ShowDevice(text, !m_trouble.isEmpty() || m_audio.IsDeviceInTrouble());
    if (m_dialog)
        m_dialog->ShowDeviceInUse(device);
}

void Transport::FillDeviceMenu()
{
    QMenu& menu = m_bar->DeviceMenu();
    menu.clear();
    AddDevice(tr("Default Device"), {});
    for (const AudioDeviceInfo& device : ListAudioDevices(m_audio.Choice().Output.System, false))
        AddDevice(QString::fromStdString(device.Name), device.Name);
    menu.addSeparator();
    menu.addAction(m_actions.Devices());
}

void Transport::AddDevice(const QString& text, const std::string& device)
{
    QAction* action = m_bar->DeviceMenu().addAction(QString(text).replace(QStringLiteral("&"), QStringLiteral("&&")));
    action->setCheckable(true);
    action->setChecked(m_audio.Choice().Output.Device == device);
    connect(action, &QAction::triggered, this, [this, device] {
        AudioChoice choice = m_audio.Choice();
        choice.Output.Device = device;
        TakeChoice(choice);
    });
}

void Transport::TakeChoice(const AudioChoice& choice)
{
    m_audio.Choose(choice);
    emit DevicesChosen(choice);
}

void Transport::OpenDeviceDialog()
{
    if (!m_dialog) {
        m_dialog = new DeviceDialog(m_audio.Choice(), DeviceLists(), &m_window);
        m_dialog->setAttribute(Qt::WA_DeleteOnClose);
        connect(m_dialog, &DeviceDialog::Chosen, this, &Transport::TakeChoice);
        m_dialog->ShowDeviceInUse(m_audio.DeviceText());
    }
    m_dialog->show();
    m_dialog->raise();
    m_dialog->activateWindow();
}

} // namespace ek
