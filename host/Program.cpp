// SPDX-License-Identifier: GPL-3.0-or-later
#include "host/Program.h"

#include "host/DemoSound.h"
#include "host/HandOver.h"
#include "host/HandOverServer.h"
#include "host/HostStyle.h"
#include "host/HostWindow.h"
#include "host/Module.h"
#include "host/Options.h"
#include "host/SettingsStore.h"
#include "host/Unattended.h"

#include "debugmanager/DebugManager.h"
#include "platform/File.h"
#include "platform/Paths.h"

#include <QApplication>
#include <QIcon>
#include <QMessageBox>

#include <cstdio>
#include <cstdlib>

namespace ek {

namespace {

bool HasDisplay()
{
    return std::getenv("DISPLAY") || std::getenv("WAYLAND_DISPLAY") || std::getenv("QT_QPA_PLATFORM");
}

/// Without a display Qt would end the process with a message about its plug-ins.
bool ChoosePlatform(const Options& options)
{
    if (HasDisplay())
        return true;
    if (options.IsUnattended()) {
        qputenv("QT_QPA_PLATFORM", "offscreen");
        return true;
    }
    std::fprintf(stderr, "There is no display: neither DISPLAY nor WAYLAND_DISPLAY is set.\n");
    return false;
}

/// What Qt remarks about a platform without a screen would stand between the lines of a tour.
void LogQtMessage(QtMsgType, const QMessageLogContext&, const QString& text)
{
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

int RunAttended(HostWindow& window, const Options& options, const HandOverListener& listener)
{
    const HandOverServer server(listener, [&window](const std::vector<std::filesystem::path>& files) {
        window.OpenFiles(files);
        BringToFront(window);
    });
    window.OpenFiles(options.Files);
    window.show();
    return QApplication::exec();
}

int RunWindow(const Options& options, const HandOverListener& listener)
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
    HostWindowOptions windowOptions{.SkinOfThisRun = options.Skin, .AskDesktop = !isUnattended};
    if (isUnattended && options.Skin.empty())
        windowOptions.SkinOfThisRun = "Light";
    HostWindow window(module, settings, windowOptions);
    if (!window.Start()) {
        TellOfFailure(options, QObject::tr("The editor module cannot be started."));
        return 1;
    }
    return isUnattended ? RunUnattended(window, options) : RunAttended(window, options, listener);
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
    HandOverListener listener;
    const bool isAlone = options->NewInstance || options->IsUnattended();
    if (!isAlone && JoinRunningEditor(HandOverSocket(), options->Files, listener) == StartKind::HandedOver)
        return 0;
    RaiseOpenFileLimit();
    if (options->IsUnattended())
        qInstallMessageHandler(LogQtMessage);
    QCoreApplication::setAttribute(Qt::AA_DontUseNativeDialogs, options->IsUnattended());
    QApplication application(argc, argv);
    DressApplication();
    return RunWindow(*options, listener);
}

} // namespace ek
