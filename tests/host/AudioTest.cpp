// SPDX-License-Identifier: GPL-3.0-or-later
#include "Scratch.h"
#include "StubModule.h"

#include "ek/HostFrame.h"
#include "ek/SoundData.h"
#include "host/DeviceDialog.h"
#include "host/HostAudio.h"
#include "host/HostServices.h"
#include "host/HostWindow.h"
#include "host/SettingsStore.h"
#include "host/TestTone.h"
#include "host/TransportBar.h"
#include "servicefuncs/Channels.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <QApplication>
#include <QComboBox>
#include <QDialogButtonBox>
#include <QMessageBox>
#include <QPushButton>
#include <QSpinBox>
#include <QStatusBar>
#include <QTest>
#include <QToolButton>

#include <sndfile.h>

#include <algorithm>
#include <cmath>
#include <csignal>
#include <stdlib.h>
#include <sys/resource.h>

namespace ek {
namespace {

using testing::ElementsAre;
using testing::IsEmpty;

constexpr char16_t Owner[] = u"Ek Wave Editor";

AudioDeviceChoice Silent(uint32_t latency = 0)
{
    return {.System = "null", .Device = {}, .LatencyMilliseconds = latency, .File = {}};
}

/// While it lives, no file of this process grows beyond some megabytes.
class FullDisk {
public:
    FullDisk()
    {
        getrlimit(RLIMIT_FSIZE, &m_before);
        const rlimit limit{.rlim_cur = 4 << 20, .rlim_max = m_before.rlim_max};
        setrlimit(RLIMIT_FSIZE, &limit);
        m_handler = std::signal(SIGXFSZ, SIG_IGN);
    }
    ~FullDisk()
    {
        std::signal(SIGXFSZ, m_handler);
        setrlimit(RLIMIT_FSIZE, &m_before);
    }
    FullDisk(const FullDisk&) = delete;
    FullDisk& operator=(const FullDisk&) = delete;

private:
    rlimit m_before{};
    void (*m_handler)(int);
};

/// Delivers silence without an end.
uint32_t FillSilence(CHostAudioDevice*, void* request, void*)
{
    return static_cast<PlayRequest*>(request)->Sound->FrameCount;
}

class AudioTest : public testing::Test {
protected:
    AudioTest()
    {
        m_window = std::make_unique<HostWindow>(
            m_module.Exports, m_settings,
            HostWindowOptions{.SkinOfThisRun = "Light", .AskDesktop = false, .AudioOfThisRun = Silent()});
        EXPECT_TRUE(m_window->Start());
        m_window->show();
        m_window->activateWindow();
        m_window->Settle();
        m_player = m_module.Host->GetPlayer();
        m_module.Frame->Messages.clear();
    }

    /// As the module does it when it gets the command to play.
    void Play()
    {
        Configure();
        ASSERT_TRUE(m_player->Start());
    }

    void Configure()
    {
        const WAVEFORMATEXTENSIBLE format = MakePcm16Format(44100, 2);
        ASSERT_TRUE(m_player->Acquire(Owner));
        m_player->SetFormat(&format);
        m_player->SetBufferCount(5);
        m_player->SetBufferSize(4096);
        m_player->SetCallback(FillSilence, nullptr);
    }

    void ChooseFile(const std::filesystem::path& file)
    {
        m_window->Audio().Choose({.Output = {.System = "file", .Device = {}, .File = file}, .InputDevice = {}});
    }

    QToolButton& DeviceButton() const
    {
        for (QToolButton* button : m_window->findChildren<QToolButton*>()) {
            if (button->accessibleName() == "Audio device")
                return *button;
        }
        throw std::runtime_error("no device button");
    }
    QImage DeviceIcon() const { return DeviceButton().icon().pixmap(16).toImage(); }

    void Announce(bool canPlay) { m_player->UpdateControls(Owner, canPlay); }

    std::vector<uint32_t> TakeMessageIds()
    {
        std::vector<uint32_t> ids;
        for (const StubFrame::Message& message : std::exchange(m_module.Frame->Messages, {}))
            ids.push_back(message.Id);
        return ids;
    }

    Scratch m_folder;
    StubModule m_module;
    SettingsStore m_settings{m_folder / "settings.ini"};
    std::unique_ptr<HostWindow> m_window;
    CHostPlayer* m_player = nullptr;
};

TEST_F(AudioTest, TheModuleIsToldThatADeviceIsGrantedOrReplaced)
{
    EXPECT_THAT(TakeMessageIds(), IsEmpty());
    ASSERT_TRUE(m_player->Acquire(Owner));
    EXPECT_THAT(TakeMessageIds(), ElementsAre(EK_WM_TAKE_PLAYER));
    m_window->Audio().Choose({.Output = Silent(500), .InputDevice = {}});
    EXPECT_THAT(TakeMessageIds(), ElementsAre(EK_WM_TAKE_PLAYER));
    m_player->Release(Owner);
    ASSERT_TRUE(m_module.Host->GetRecorder()->AcquireInput(Owner));
    EXPECT_THAT(TakeMessageIds(), ElementsAre(EK_WM_SETUP_CAPTURE));
}

TEST_F(AudioTest, LeavingTakesThePlayerAwayFirst)
{
    Play();
    m_module.Calls.clear();
    m_module.Frame->OnMessage = [this](const StubFrame::Message& message) {
        m_module.Calls.push_back(message.Id == EK_WM_RELEASE_PLAYER ? "Release player" : "another message");
    };
    EXPECT_TRUE(m_window->close());
    EXPECT_THAT(m_module.Calls, ElementsAre("TryClose", "Release player", "ChangeState 0", "Free"));
}

TEST_F(AudioTest, TheTransportFollowsThePlayerAndDrivesTheModule)
{
    m_module.Frame->OnMessage = [this](const StubFrame::Message& message) {
        if (message.WParam == TransportPlay && m_player->GetState() == CHostAudioDevice::Paused)
            m_player->Pause();
        else if (message.WParam == TransportPlay)
            Play();
        else if (message.WParam == TransportStop)
            m_player->Stop();
    };
    m_module.Frame->setFocus();
    const auto pressSpace = [this] { QTest::keyClick(m_window->windowHandle(), Qt::Key_Space); };
    pressSpace();
    QTest::keyClick(m_window->windowHandle(), Qt::Key_L);
    EXPECT_TRUE(m_player->IsLoop());
    EXPECT_THAT(TakeMessageIds(), IsEmpty()) << "there is nothing to play, and the loop is the host's own";
    Announce(true);
    pressSpace();
    EXPECT_EQ(m_player->GetState(), CHostAudioDevice::Running);
    const auto* slider = m_window->findChild<QSlider*>();
    m_player->SetProgress(m_player->GetProgressRange() / 2);
    EXPECT_TRUE(QTest::qWaitFor([&] { return slider->value() == slider->maximum() / 2; }));
    m_player->Pause();
    pressSpace();
    EXPECT_EQ(m_player->GetState(), CHostAudioDevice::Running);
    pressSpace();
    EXPECT_EQ(m_player->GetState(), CHostAudioDevice::Stopped);
    EXPECT_EQ(slider->value(), 0);
    EXPECT_FALSE(slider->isEnabled());
}

TEST_F(AudioTest, AJumpInSilenceGivesTheModuleThePlayerFirstAndSeekingCarriesItsPercent)
{
    const StubFrame::Message jump{EK_WM_COMMAND, TransportToEnd, 0};
    m_window->Audio().Send(TransportToEnd);
    EXPECT_THAT(std::exchange(m_module.Frame->Messages, {}),
                ElementsAre(StubFrame::Message{EK_WM_TAKE_PLAYER, 0, 0}, jump));
    Play();
    m_player->Pause();
    m_module.Frame->Messages.clear();
    m_window->Audio().Send(TransportToEnd);
    EXPECT_THAT(std::exchange(m_module.Frame->Messages, {}), ElementsAre(jump));
    EXPECT_TRUE(m_window->Audio().Send(TransportSeek, 37));
    EXPECT_THAT(m_module.Frame->Messages, ElementsAre(StubFrame::Message{EK_WM_COMMAND, TransportSeek, 37}));
}

TEST_F(AudioTest, ADeviceThatRefusesIsToldAtEachTryWithoutADialog)
{
    Configure();
    QStringList told;
    QObject::connect(&m_window->Audio(), &HostAudio::Trouble, [&told](const QString& text) { told.append(text); });
    const auto refuse = [this](const char* file) {
        ChooseFile(m_folder / file);
        EXPECT_FALSE(m_player->Start());
    };
    for (int i = 0; i < 2; ++i) {
        refuse("no/first.wav");
        QCoreApplication::processEvents();
    }
    refuse("no/first.wav");
    refuse("no/second.wav");
    QCoreApplication::processEvents();
    ASSERT_EQ(told.size(), 3);
    EXPECT_EQ(told[0], told[1]);
    EXPECT_TRUE(told[2].startsWith(told[0] + u'\n') && told[2].contains(QStringLiteral("second.wav"))) << "both";
    EXPECT_FALSE(m_window->statusBar()->currentMessage().contains(u'\n'));
    EXPECT_TRUE(m_window->findChildren<QMessageBox*>().isEmpty()) << "the module says that it cannot play";
}

TEST_F(AudioTest, AFailureThatEndsPlayingIsToldInADialogHoweverItIsNoticed)
{
    ChooseFile(m_folder / "heard.wav");
    const FullDisk disk;
    Play();
    const auto ends = [this] { return m_player->GetState() == CHostAudioDevice::Stopped; };
    for (int i = 0; i < 60000 && !ends(); ++i)
        QTest::qSleep(1); // no event tells the window of it
    ASSERT_TRUE(ends());
    m_window->Audio().Player().Watch();
    ASSERT_TRUE(QTest::qWaitFor([this] { return !m_window->findChildren<QMessageBox*>().isEmpty(); }, 60000));
    EXPECT_THAT(m_window->findChild<QMessageBox*>()->text().toStdString(), testing::HasSubstr("heard.wav"));
    EXPECT_FALSE(std::filesystem::exists(m_folder / "heard.wav"));
}

TEST_F(AudioTest, TheBarShowsTroubleUntilTheDeviceThatWasWishedForIsInUse)
{
    const QImage calm = DeviceIcon();
    ChooseFile(m_folder / "no/folder.wav");
    Configure();
    EXPECT_FALSE(m_player->Start());
    QCoreApplication::processEvents();
    EXPECT_NE(DeviceIcon(), calm);
    EXPECT_TRUE(DeviceButton().toolTip().contains(QStringLiteral("folder.wav")));
    m_window->Audio().Choose({.Output = Silent(), .InputDevice = {}});
    EXPECT_EQ(DeviceIcon(), calm);
    EXPECT_EQ(DeviceButton().toolTip(), "Audio device");
    ASSERT_TRUE(m_player->Start());
    const QString silent = DeviceButton().toolTip();
    EXPECT_NE(silent, "Audio device") << "it has a name";
    EXPECT_EQ(DeviceIcon(), calm) << "silence was wished for";

    ASSERT_EQ(setenv("PULSE_SERVER", "unix:/nowhere", 1), 0);
    m_window->Audio().Choose({});
    if (!m_window->Audio().Player().IsInTrouble())
        GTEST_SKIP() << "this machine has a sound card";
    QCoreApplication::processEvents();
    EXPECT_NE(DeviceIcon(), calm) << "nobody hears what plays";
    m_window->Audio().Choose({.Output = Silent(), .InputDevice = {}});
    EXPECT_EQ(DeviceIcon(), calm);
    EXPECT_EQ(DeviceButton().toolTip(), silent);
}

TEST_F(AudioTest, WhatIsChosenIsStoredButNotInARunWithAnAudioSystemOfItsOwn)
{
    const auto chooseDefault = [this] {
        QMenu& menu = m_window->findChild<TransportBar*>()->DeviceMenu();
        emit menu.aboutToShow();
        menu.actions().first()->trigger();
    };
    chooseDefault();
    EXPECT_EQ(m_settings.Get("Host", "AudioSystem"), std::nullopt);
    m_window.reset();
    m_settings.Set("Host", "AudioSystem", "null");
    m_settings.Set("Host", "AudioOutput", "Gone");
    m_settings.Set("Host", "AudioInput", "Microphone");
    m_window = std::make_unique<HostWindow>(
        m_module.Exports, m_settings,
        HostWindowOptions{.SkinOfThisRun = "Light", .AskDesktop = false, .AudioOfThisRun = {}});
    chooseDefault();
    EXPECT_EQ(m_settings.Get("Host", "AudioOutput"), "");
    EXPECT_EQ(m_settings.Get("Host", "AudioInput"), "Microphone");
}

TEST_F(AudioTest, RecordingWaitsForTheModulesLeave)
{
    const auto isEnabled = [this] {
        m_window->Settle();
        for (const QAction* action : m_window->findChild<TransportBar*>()->actions()) {
            if (action->text().startsWith("&Record"))
                return action->isEnabled();
        }
        return false;
    };
    m_module.Disabled = {TransportRecord};
    EXPECT_FALSE(isEnabled());
    m_module.Disabled.clear();
    EXPECT_TRUE(isEnabled());
    m_module.Unknown = {TransportRecord};
    EXPECT_FALSE(isEnabled());
}

class DeviceDialogTest : public testing::Test {
protected:
    DeviceDialogTest()
    {
        QObject::connect(&m_dialog, &DeviceDialog::Chosen,
                         [this](const AudioChoice& choice) { m_chosen.push_back(choice); });
    }

    static DeviceLists Lists()
    {
        return {.Systems =
                    [] {
                        return std::vector<std::string>{"auto", "alsa", "null"};
                    },
                .Devices =
                    [](const std::string& system, bool forCapture) {
                        std::vector<AudioDeviceInfo> devices;
                        if (system == "alsa")
                            devices.push_back({system, forCapture ? "Microphone" : "Speakers & more", 2, true});
                        return devices;
                    }};
    }

    void Select(const char* box, const QString& text)
    {
        auto* found = m_dialog.findChild<QComboBox*>(QLatin1String(box));
        for (int i = 0; i < found->count(); ++i) {
            if (found->itemText(i).startsWith(text))
                found->setCurrentIndex(i);
        }
        ASSERT_TRUE(found->currentText().startsWith(text)) << box;
    }

    void Click(QDialogButtonBox::StandardButton button)
    {
        m_dialog.findChild<QDialogButtonBox*>()->button(button)->click();
    }

    std::vector<AudioChoice> m_chosen;
    const AudioChoice m_given{.Output = {.System = "jack", .Device = "Gone", .LatencyMilliseconds = 40, .File = {}},
                              .InputDevice = "Also gone"};
    DeviceDialog m_dialog{m_given, Lists(), nullptr};
};

TEST_F(DeviceDialogTest, WhatIsGoneNowStaysChosenUntilItIsChanged)
{
    Click(QDialogButtonBox::Apply);
    EXPECT_THAT(m_chosen, ElementsAre(m_given));
    Select("system", "ALSA");
    Select("output", "Speakers");
    Select("input", "Microphone");
    m_dialog.findChild<QSpinBox*>()->setValue(0);
    Click(QDialogButtonBox::Ok);
    ASSERT_EQ(m_chosen.size(), 2u);
    EXPECT_EQ(m_chosen[1].Output,
              (AudioDeviceChoice{.System = "alsa", .Device = "Speakers & more", .LatencyMilliseconds = 0, .File = {}}));
    EXPECT_EQ(m_chosen[1].InputDevice, "Microphone");
}

TEST_F(DeviceDialogTest, AnotherSystemStartsWithItsDefaultsAndCancellingChangesNothing)
{
    Select("system", "None");
    EXPECT_EQ(m_dialog.findChild<QComboBox*>("output")->currentText(), "Default device");
    Select("system", "JACK");
    EXPECT_EQ(m_dialog.findChild<QComboBox*>("output")->currentText(), "Gone (not connected)");
    Click(QDialogButtonBox::Cancel);
    EXPECT_THAT(m_chosen, IsEmpty());
}

TEST(TestToneTest, ASecondOfAQuietToneIsHeardAndNothingElse)
{
    const Scratch folder;
    const std::filesystem::path file = folder / "tone.wav";
    TestTone tone;
    tone.Play({.System = "file", .Device = {}, .File = file});
    ASSERT_TRUE(QTest::qWaitFor([&] { return std::filesystem::exists(file); }));
    SF_INFO info{};
    SNDFILE* sound = sf_open(file.c_str(), SFM_READ, &info);
    ASSERT_NE(sound, nullptr);
    std::vector<float> samples(static_cast<size_t>(info.frames) * 2);
    EXPECT_EQ(sf_readf_float(sound, samples.data(), info.frames), info.samplerate);
    sf_close(sound);
    int crossings = 0;
    float loudest = 0;
    for (size_t i = 2; i < samples.size(); ++i) {
        loudest = std::max(loudest, std::abs(samples[i]));
        crossings += i % 2 == 0 && samples[i - 2] < 0 && samples[i] >= 0;
    }
    EXPECT_NEAR(crossings, 440, 1);
    EXPECT_NEAR(loudest, 0.1, 0.001);
}

TEST(TestToneTest, ADeviceThatIsNotHeardSaysWhy)
{
    TestTone tone;
    QString text;
    QObject::connect(&tone, &TestTone::Failed, [&text](const QString& failure) { text = failure; });
    tone.Play({.System = "file", .Device = {}, .File = "/dev/null/tone.wav"});
    EXPECT_TRUE(QTest::qWaitFor([&] { return text.contains(QStringLiteral("tone.wav")); }));
    tone.Play(Silent());
    EXPECT_TRUE(text.startsWith(QStringLiteral("There is no sound device")));
}

TEST(AudioSettingsTest, AChoiceComesBackAndNonsenseIsTheDefault)
{
    const Scratch folder;
    const AudioChoice choice{.Output = {.System = "null", .Device = "A ; b", .LatencyMilliseconds = 70, .File = {}},
                             .InputDevice = "in"};
    {
        SettingsStore store(folder / "s.ini");
        HostServices services(store);
        EXPECT_EQ(LoadAudioChoice(services), AudioChoice());
        StoreAudioChoice(services, choice);
        services.SaveSettings();
    }
    SettingsStore store(folder / "s.ini");
    HostServices services(store);
    EXPECT_EQ(LoadAudioChoice(services), choice);
    EXPECT_EQ(choice.Input().Device, "in");
    services.WriteOwnSetting("AudioLatency", "70x");
    EXPECT_EQ(LoadAudioChoice(services).Output.LatencyMilliseconds, 0u);
    services.WriteOwnSetting("AudioLatency", "999999");
    EXPECT_LE(LoadAudioChoice(services).Output.LatencyMilliseconds, 2000u);
    services.WriteOwnSetting("AudioSystem", "gramophone");
    EXPECT_EQ(LoadAudioChoice(services), AudioChoice());
}

} // namespace
} // namespace ek
