// SPDX-License-Identifier: GPL-3.0-or-later
#include "host/Program.h"

#include "host/DemoSound.h"
#include "host/HandOver.h"
#include "host/HandOverServer.h"
#include "host/HostStyle.h"
#include "host/HostWindow.h"
#include "host/Module.h"
#include "host/Options.h"
#include "host/ScratchHome.h"
#include "host/SettingsStore.h"
#include "host/SignalWatch.h"
#include "host/SkinChoice.h"
#include "host/Unattended.h"

#include "debugmanager/DebugManager.h"
#include "platform/File.h"
#include "platform/Paths.h"

#include <QApplication>
#include <QIcon>
#include <QMessageBox>

#include <cstdio>
#include <cstdlib>
#include <optional>

namespace ek {

namespace {

constexpr int SignalExitStatus = 128; ///< plus the signal's number, as shells have it

bool IsSet(const char* variable)
{
    const char* value = std::getenv(variable);
    return value && *value;
}

/// Without a display Qt would end the process with a message about its plug-ins.
bool ChoosePlatform(const Options& options)
{
    if (IsSet("QT_QPA_PLATFORM"))
        return true;
    if (options.IsUnattended()) {
        qputenv("QT_QPA_PLATFORM", "offscreen");
        return true;
    }
    if (IsSet("DISPLAY") || IsSet("WAYLAND_DISPLAY"))
        return true;
    std::fprintf(stderr, "There is no display: neither DISPLAY nor WAYLAND_DISPLAY is set.\n");
    return false;
}

/// What Qt remarks about a platform without a screen would stand between the lines of a tour. After a fatal message Qt
/// would end the process by a signal, as if it had crashed.
void LogQtMessage(QtMsgType type, const QMessageLogContext&, const QString& text)
{
    if (type == QtFatalMsg) {
        std::fprintf(stderr, "%s\n", qPrintable(text));
        std::_Exit(1);
    }
    enDebugManager().WriteLogMessage("Qt", LogInformation, "%s", qPrintable(text));
}

int MakeDemo(const std::filesystem::path& file)
{
    if (WriteDemoSound(file))
        return 0;
    std::fprintf(stderr, "%s could not be written\n", file.c_str());
    return 1;
}

void DressApplication()
{
    QApplication::setApplicationName(QStringLiteral("ek-wave-editor"));
    QApplication::setApplicationDisplayName(QString());
    QApplication::setDesktopFileName(QStringLiteral("ek-wave-editor"));
    QApplication::setStyle(new HostStyle);
    QApplication::setWindowIcon(QIcon(QStringLiteral(":/ek-host/ek-wave-editor.svg")));
}

void TellOfFailure(const Options& options, const QString& text)
{
    enDebugManager().WriteLogMessage("Host", LogError, "Error: %s", qPrintable(text));
    std::fprintf(stderr, "%s\n", qPrintable(text));
    if (!options.IsUnattended())
        QMessageBox::critical(nullptr, QString::fromLatin1(ModuleName), text);
}

void BringToFront(QWidget& window)
{
    window.setWindowState(window.windowState() & ~Qt::WindowMinimized);
    window.raise();
    window.activateWindow();
    QApplication::alert(&window);
}

/// The module may wait in a call of its own, to which this does not return.
[[noreturn]] void LeaveAtOnce(HostWindow& window, HandOverListener& listener, int signal)
{
    window.LeaveWithoutAsking();
    listener.Close();
    std::_Exit(SignalExitStatus + signal);
}

int RunAttended(HostWindow& window, const Options& options, HandOverListener& listener)
{
    const HandOverServer server(listener, [&window](const std::vector<std::filesystem::path>& files) {
        if (!window.OpenFiles(files))
            return false;
        BringToFront(window);
        return true;
    });
    const SignalWatch signalWatch([&window] { window.close(); },
                                  [&](int signal) { LeaveAtOnce(window, listener, signal); });
    window.OpenFiles(options.Files);
    window.show();
    return QApplication::exec();
}

bool IsSkinKnown(HostWindow& window, const std::string& name)
{
    if (name.empty() || window.Skins().Has(name))
        return true;
    std::fprintf(stderr, "There is no skin named \"%s\".\n", name.c_str());
    return false;
}

/// Nobody listens to a run that nobody sees.
std::optional<AudioDeviceChoice> AudioOf(const Options& options)
{
    if (!options.AudioFile.empty())
        return AudioDeviceChoice{.System = "file", .Device = {}, .File = options.AudioFile};
    if (!options.AudioSystem.empty())
        return AudioDeviceChoice{.System = options.AudioSystem, .Device = {}, .File = {}};
    return options.IsUnattended() ? std::optional(AudioDeviceChoice{.System = "null", .Device = {}, .File = {}})
                                  : std::nullopt;
}

int RunWindow(const Options& options, HandOverListener& listener)
{
    ModuleExports module;
    std::string reason;
    if (!LoadModule(ModulePlaces(), module, reason)) {
        TellOfFailure(options,
                      QObject::tr("The editor module cannot be loaded.\n%1").arg(QString::fromStdString(reason)));
        return 1;
    }
    const bool isUnattended = options.IsUnattended();
    SettingsStore settings(isUnattended ? std::filesystem::path() : ConfigHome() / "ek-wave-editor" / "settings.ini");
    HostWindowOptions windowOptions{
        .SkinOfThisRun = options.Skin, .AskDesktop = !isUnattended, .AudioOfThisRun = AudioOf(options)};
    if (isUnattended && options.Skin.empty())
        windowOptions.SkinOfThisRun = "Light";
    HostWindow window(module, settings, windowOptions);
    if (!IsSkinKnown(window, options.Skin) && isUnattended)
        return 1;
    if (!window.Start()) {
        TellOfFailure(options, QObject::tr("The editor module cannot be started."));
        return 1;
    }
    return isUnattended ? RunUnattended(window, options) : RunAttended(window, options, listener);
}

/// Without a display that can be reached the process ends in here.
int CheckDisplay(int argc, char** argv)
{
    qInstallMessageHandler(LogQtMessage);
    const QGuiApplication application(argc, argv);
    return 0;
}

int RunUnattendedProgram(const Options& options, int argc, char** argv)
{
    const ScratchHome home;
    if (!home.IsMade()) {
        std::fprintf(stderr, "There is no folder for temporary files.\n");
        return 1;
    }
    qInstallMessageHandler(LogQtMessage);
    QCoreApplication::setAttribute(Qt::AA_DontUseNativeDialogs);
    const QApplication application(argc, argv);
    DressApplication();
    HandOverListener listener;
    return RunWindow(options, listener);
}

int RunAttendedProgram(const Options& options, int argc, char** argv)
{
    HandOverListener listener;
    if (!options.NewInstance && JoinRunningEditor(HandOverSocket(), options.Files, listener) == StartKind::HandedOver)
        return 0;
    const QApplication application(argc, argv);
    DressApplication();
    return RunWindow(options, listener);
}

} // namespace

int RunProgram(int argc, char** argv)
{
    int exitStatus = 0;
    const std::optional<Options> options = ParseCommandLine({argv, argv + argc}, exitStatus);
    if (!options)
        return exitStatus;
    if (!options->MakeDemo.empty())
        return MakeDemo(options->MakeDemo);
    if (!ChoosePlatform(*options))
        return 1;
    if (options->CheckDisplay)
        return CheckDisplay(argc, argv);
    RaiseOpenFileLimit();
    return options->IsUnattended() ? RunUnattendedProgram(*options, argc, argv)
                                   : RunAttendedProgram(*options, argc, argv);
}

} // namespace ek
