// SPDX-License-Identifier: GPL-3.0-or-later
#include "host/DeviceDialog.h"

#include <QComboBox>
#include <QDialogButtonBox>
#include <QFormLayout>
#include <QLabel>
#include <QPushButton>
#include <QSpinBox>
#include <QVBoxLayout>

#include <algorithm>
#include <utility>

namespace ek {

namespace {

constexpr int LongestLatency = 2000;
constexpr int LatencyStep = 5;

QString SystemText(const std::string& system)
{
    static const std::pair<const char*, const char*> texts[] = {
        {"auto", QT_TRANSLATE_NOOP("ek::DeviceDialog", "Automatic")},
        {"pulse", QT_TRANSLATE_NOOP("ek::DeviceDialog", "PulseAudio or PipeWire")},
        {"jack", QT_TRANSLATE_NOOP("ek::DeviceDialog", "JACK")},
        {"alsa", QT_TRANSLATE_NOOP("ek::DeviceDialog", "ALSA")},
        {"null", QT_TRANSLATE_NOOP("ek::DeviceDialog", "None (silent)")},
        {"file", QT_TRANSLATE_NOOP("ek::DeviceDialog", "File")},
    };
    const auto* found = std::ranges::find_if(texts, [&system](const auto& text) { return system == text.first; });
    return found == std::end(texts) ? QString::fromStdString(system) : DeviceDialog::tr(found->second);
}

std::string ChosenIn(const QComboBox& box)
{
    return box.currentData().toString().toStdString();
}

void Select(QComboBox& box, const std::string& data)
{
    box.setCurrentIndex(box.findData(QString::fromStdString(data)));
}

} // namespace

DeviceDialog::DeviceDialog(const AudioChoice& choice, DeviceLists lists, QWidget* parent)
    : QDialog(parent), m_lists(std::move(lists)), m_choice(choice), m_system(new QComboBox(this)),
      m_output(new QComboBox(this)), m_input(new QComboBox(this)), m_latency(new QSpinBox(this)),
      m_inUse(new QLabel(this)), m_test(new QPushButton(tr("&Test"), this))
{
    setWindowTitle(tr("Audio Devices"));
    new QVBoxLayout(this);
    AddRows(choice);
    AddButtons();
    FillSystems(choice.Output.System);
    FillDevices();
    connect(m_system, &QComboBox::currentIndexChanged, this, &DeviceDialog::FillDevices);
}

void DeviceDialog::AddRows(const AudioChoice& choice)
{
    m_system->setObjectName(QStringLiteral("system"));
    m_output->setObjectName(QStringLiteral("output"));
    m_input->setObjectName(QStringLiteral("input"));
    m_latency->setRange(0, LongestLatency);
    m_latency->setSingleStep(LatencyStep);
    m_latency->setSuffix(tr(" ms"));
    m_latency->setSpecialValueText(tr("Automatic"));
    m_latency->setValue(static_cast<int>(choice.Output.LatencyMilliseconds));
    m_inUse->setTextFormat(Qt::PlainText);
    auto* form = new QFormLayout;
    form->addRow(tr("Audio &system:"), m_system);
    form->addRow(tr("&Output:"), m_output);
    form->addRow(tr("&Input:"), m_input);
    form->addRow(tr("&Latency:"), m_latency);
    form->addRow(tr("In use:"), m_inUse);
    static_cast<QVBoxLayout*>(layout())->addLayout(form);
}

void DeviceDialog::AddButtons()
{
    auto* buttons =
        new QDialogButtonBox(QDialogButtonBox::Ok | QDialogButtonBox::Cancel | QDialogButtonBox::Apply, this);
    layout()->addWidget(buttons);
    m_test->setToolTip(tr("Play a short tone to the chosen output"));
    m_test->setAutoDefault(false);
    buttons->addButton(m_test, QDialogButtonBox::ActionRole);
    connect(m_test, &QPushButton::clicked, this, &DeviceDialog::Test);
    connect(&m_tone, &TestTone::Failed, m_inUse, &QLabel::setText);
    const auto apply = [this] {
        m_choice = Shown();
        emit Chosen(m_choice);
    };
    connect(buttons->button(QDialogButtonBox::Apply), &QPushButton::clicked, this, apply);
    connect(this, &QDialog::accepted, this, apply);
    connect(buttons, &QDialogButtonBox::accepted, this, &QDialog::accept);
    connect(buttons, &QDialogButtonBox::rejected, this, &QDialog::reject);
}

void DeviceDialog::FillSystems(const std::string& chosen)
{
    std::vector<std::string> systems = m_lists.Systems();
    if (std::ranges::find(systems, chosen) == systems.end())
        systems.push_back(chosen);
    for (const std::string& system : systems)
        m_system->addItem(SystemText(system), QString::fromStdString(system));
    Select(*m_system, chosen);
}

void DeviceDialog::FillDevices()
{
    m_test->setEnabled(System() != "file"); // which holds what was played
    const bool isOwnSystem = System() == m_choice.Output.System;
    FillWith(*m_output, false, isOwnSystem ? m_choice.Output.Device : std::string());
    FillWith(*m_input, true, isOwnSystem ? m_choice.InputDevice : std::string());
}

/// A chosen device that is not there now stays chosen: it may come back.
void DeviceDialog::FillWith(QComboBox& box, bool forCapture, const std::string& chosen)
{
    box.clear();
    box.addItem(tr("Default device"), QString());
    for (const AudioDeviceInfo& device : m_lists.Devices(System(), forCapture)) {
        const QString name = QString::fromStdString(device.Name);
        box.addItem(device.IsDefault ? tr("%1 (now the default)").arg(name) : name, name);
    }
    const QString name = QString::fromStdString(chosen);
    if (box.findData(name) < 0)
        box.addItem(tr("%1 (not connected)").arg(name), name);
    Select(box, chosen);
}

void DeviceDialog::Test()
{
    m_tone.Play(Shown().Output);
}

void DeviceDialog::ShowDeviceInUse(const QString& device)
{
    m_inUse->setText(device.isEmpty() ? tr("nothing has been played yet") : device);
}

std::string DeviceDialog::System() const
{
    return ChosenIn(*m_system);
}

AudioChoice DeviceDialog::Shown() const
{
    AudioChoice choice = m_choice; // a file stays the one it was
    choice.Output.System = System();
    choice.Output.Device = ChosenIn(*m_output);
    choice.Output.LatencyMilliseconds = static_cast<uint32_t>(m_latency->value());
    choice.InputDevice = ChosenIn(*m_input);
    return choice;
}

} // namespace ek
