// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "host/HostAudio.h"
#include "host/HostServices.h"
#include "host/HostSkin.h"
#include "host/Module.h"

#include <QMainWindow>
#include <QPointer>

#include <filesystem>
#include <memory>
#include <optional>
#include <string>
#include <vector>

namespace ek {

class DesktopTheme;
class MessageEvent;
class ModuleLoop;
class ModuleMenu;
class SkinChoice;
class Transport;

struct HostWindowOptions {
    std::string SkinOfThisRun; ///< worn instead of the stored choice when it is not empty
    bool AskDesktop = true;    ///< whether the desktop may say that it is dark
    /// Played to instead of the stored choice; then what a person chooses is not stored either.
    std::optional<AudioDeviceChoice> AudioOfThisRun;
};

/// The program's window: the module's frame on a page, the menu bar, the transport, the status bar, the skin. It drives
/// the module from EkInitialize to EkFree.
class HostWindow : public QMainWindow {
    Q_OBJECT

public:
    /// `module` and `settings` outlive the window.
    HostWindow(const ModuleExports& module, SettingsStore& settings, const HostWindowOptions& options);
    ~HostWindow() override;

    /// Brings the module up. False when it refused, for a reason that it has told.
    bool Start();

    /// Opens the files as soon as no dialog or menu is open. False when the module has gone, or is going, for good.
    bool OpenFiles(const std::vector<std::filesystem::path>& files);
    /// Opens the files before it returns. The result says, for a person, which of them were not asked for.
    QStringList OpenFilesNow(const std::vector<std::filesystem::path>& files);

    /// Takes the module down as it is and saves the settings, whatever is open. Unsaved sounds are lost.
    void LeaveWithoutAsking();

    bool RunCommand(uint32_t id); ///< as if it came from a menu
    SkinChoice& Skins() { return *m_skins; }
    HostAudio& Audio() { return m_audio; }
    /// Does the idle work that would come next, and lets the window catch up: for pictures of the present state.
    void Settle();

protected:
    bool event(QEvent* event) override;
    bool eventFilter(QObject* receiver, QEvent* event) override;
    void closeEvent(QCloseEvent* event) override;

private:
    void MakeOwnMenus();
    bool IsKeyFree(int key, Qt::KeyboardModifiers modifiers) const;
    void TakeSkin();
    void AskModuleOfRecorder();
    void RestorePlace();
    void TakeFrameTitle();
    void OnIdle();
    void OpenWaitingFiles();
    bool TakeMessage(const MessageEvent& message);
    bool Leave();
    void FreeModule();

    const ModuleExports& m_module;
    std::unique_ptr<DesktopTheme> m_desktop;
    HostSkin m_skin;
    HostServices m_services;
    HostAudio m_audio;
    HostObjects m_objects;
    SkinChoice* m_skins;
    Transport* m_transport;
    ModuleMenu* m_menu;
    QAction* m_quit;
    QWidget* m_page;
    QPointer<QWidget> m_frame;
    const AcceleratorTable* m_moduleKeys = nullptr;
    std::unique_ptr<ModuleLoop> m_loop;
    std::vector<std::filesystem::path> m_waitingFiles;
    bool m_isMenuStale = false;
    bool m_isLeaving = false;
};

} // namespace ek
