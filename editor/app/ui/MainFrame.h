// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "app/HostSettings.h"
#include "app/RecentFiles.h"
#include "app/ui/AppCommands.h"
#include "app/ui/MainMenu.h"
#include "app/ui/TransportRouter.h"
#include "framework/DocumentSite.h"
#include "framework/ui/MDIFrameWnd.h"
#include "framework/ui/View.h"

#include <deque>
#include <memory>
#include <mutex>
#include <optional>

namespace ek {

class CEffectNode;
class CEkEditorApp;
class CHostFrame;
class CHostPlayer;
class CHostServices;
class CHostSkin;
class CMDIClient;
class MainToolBar;
struct WindowMessage;

/// The one frame of the module: a child of the host's window that holds the tool bar and the document windows. It owns
/// the menu that the host shows, knows the recent files, and is where the host's commands and messages arrive.
class CMainFrame final : public CMDIFrameWnd, public ViewSite, public DocumentSite, private CommandRouter {
    Q_OBJECT
public:
    /// `app` and `host` outlive the frame; the host and each of its services may be null.
    CMainFrame(QWidget* parent, CEkEditorApp& app, CHostFrame* host);
    /// Stores the effects library and the recent files, stops playback, and closes every document without asking.
    ~CMainFrame() override;

    CEkEditorApp& App() { return m_app; }
    QMenu* Menu(); ///< the first call adds the recent files

    bool OpenFile(const std::filesystem::path& path); ///< on success the file is the latest of the recent ones
    /// The files one after the other, behind those that wait already: at once, or when what runs has ended.
    void OpenFiles(const std::vector<std::filesystem::path>& paths);
    /// The same from the event loop; nothing is opened before this returns.
    void OpenLater(const std::vector<std::filesystem::path>& paths);
    void NewDocument(const std::string& templateName);
    void PassMessage(std::string_view text); ///< a textual request of the host
    bool TryClose();                         ///< false: the user kept a document open, or work is running

    /// Runs a command, or fills in the CommandUi that `extra` points to; false when nobody handles it. While work is
    /// running only those of the transport are run. For the host's own commands `extra` is their parameter.
    bool HandleCommand(uint32_t id, int code, void* extra);
    bool PreTranslate(const WindowMessage& message); ///< true: it was a key of the module's and is done with
    void OnIdle();
    void ChangeState(bool active);
    void LoadSkin(); ///< reads every colour and image again

    CView* CurrentView() const { return m_transport.CurrentView(); } ///< the one that plays
    void ActivateCurrentView() { m_transport.ActivateCurrentView(ActiveView()); }
    void UpdateTransport(); ///< tells the host whether its buttons may start playing
    const WAVEFORMATEXTENSIBLE& ActiveFormat() const { return m_activeFormat; }
    Qt::KeyboardModifiers CommandModifiers() const; ///< held down with the command that is running

    // ViewSite and DocumentSite
    void SetActiveFormat(const WAVEFORMATEXTENSIBLE& format) override { m_activeFormat = format; }
    bool RunCommand(uint32_t id) override;
    intptr_t CommandParameter() const override { return m_commandParameter; }
    CHostPlayer* Player() const override { return m_player; }
    CEffectTree* GetEffectTree() const override { return m_effectTree.get(); }
    void ShowStatusText(const QString& text) override;
    void AddRecentFile(const std::filesystem::path& path) override;
    void RefreshMenu() override;
    void FocusView(CDocument& document) override;
    void ReopenAs(CDocument& document, const std::filesystem::path& path) override;

    std::span<const CommandEntry> CommandTable() const override;

protected:
    bool event(QEvent* event) override;
    void dragEnterEvent(QDragEnterEvent* event) override;
    void dragMoveEvent(QDragMoveEvent* event) override;
    void dropEvent(QDropEvent* event) override;

private:
    struct WaitingFile {
        std::filesystem::path Path;
        QPointer<CMDIChildWnd> Replaced; ///< closed first, if there is one
    };

    bool RouteCommand(uint32_t id, CommandCode code, CommandUi* ui) override;
    bool OnHostMessage(MessageEvent& message);
    bool IsInWindow(const QObject* receiver) const;
    bool IsBusy() const; ///< with what must not be entered a second time
    void OpenWaitingFiles();
    void OpenWaitingFilesLater();
    DocumentFrame* MakeWaveFrame(CDocument& document);
    void DeleteClosedChildren();
    void CreateEffectTree();
    void SaveEffectsLibrary();
    void DeleteEffectTree();
    CMDIChildWnd* FindChild(const CDocument& document) const;
    void UpdateRecentMenu();
    void UpdateTitle();

    CEffectNode* MorphNode(uint32_t id) const;

    void OnRecentFile(uint32_t id);
    void OnMorph(uint32_t id);
    void OnUpdateMorph(CommandUi& ui);
    void OnAbout();
    void OnRecord() {}
    void OnUpdateRecord(CommandUi& ui) { ui.Enabled = false; }

    CEkEditorApp& m_app;
    CHostServices* m_services = nullptr;
    CHostPlayer* m_player = nullptr;
    CHostSkin* m_skin = nullptr;
    HostSettings m_settings;
    AppCommands m_appCommands;
    MainMenu m_menu;
    TransportRouter m_transport;
    RecentFiles m_recentFiles;
    bool m_recentLoaded = false;
    bool m_active = false;
    CMDIClient* m_client;
    MainToolBar* m_toolBar;
    WAVEFORMATEXTENSIBLE m_activeFormat;
    std::filesystem::path m_effectsLibraryPath;
    bool m_isLibraryOurs = true; ///< there was none, or it could be read
    std::unique_ptr<CEffectTree> m_effectTree;
    std::deque<WaitingFile> m_waitingFiles;
    bool m_isOpening = false;
    intptr_t m_commandParameter = 0;
    std::optional<Qt::KeyboardModifiers> m_commandModifiers;
    std::recursive_mutex m_lock; ///< held while a request of the host is carried out
};

} // namespace ek
