// SPDX-License-Identifier: GPL-3.0-or-later
#include "app/ui/MainFrame.h"

#include "app/EkEditorApp.h"
#include "app/HostRequests.h"
#include "app/ModuleIdentity.h"
#include "app/ui/AboutDialog.h"
#include "app/ui/AcceleratorKeys.h"
#include "app/ui/DialogHolder.h"
#include "app/ui/FileDrop.h"
#include "app/ui/MDIClient.h"
#include "app/ui/MainToolBar.h"
#include "app/ui/WEFrame.h"
#include "background/ProgressDlg.h"
#include "debugmanager/DebugManager.h"
#include "effectmanager/EffectTree.h"
#include "ek/HostAudioDevice.h"
#include "ek/HostFrame.h"
#include "platform/Paths.h"
#include "platform/Text.h"
#include "resources/Accelerators.h"
#include "resources/CommandIds.h"
#include "resources/Strings.h"
#include "servicefuncs/MessageBox.h"
#include "skincontrols/Skin.h"
#include "waveedit/WEDoc.h"
#include "waveview/WavePlayback.h"
#include "xml/enXml.h"

#include <QApplication>
#include <QKeyEvent>
#include <QStatusTipEvent>
#include <QWindow>

#include <utility>

namespace ek {

namespace {
constexpr uint32_t StatusMilliseconds = 3000;
}

CMainFrame::CMainFrame(QWidget* parent, CEkEditorApp& app, CHostFrame* host)
    : CMDIFrameWnd(parent), m_app(app), m_services(host ? host->GetServices() : nullptr),
      m_player(host ? host->GetPlayer() : nullptr), m_skin(host ? host->GetSkin() : nullptr), m_settings(m_services),
      m_appCommands(*this), m_menu(*this), m_transport(*this), m_client(new CMDIClient(this)),
      m_toolBar(new MainToolBar(*this, this)),
      m_effectsLibraryPath(GetLanguageFilePath("Language", "effects_editor.xml"))
{
    if (CHostRecorder* recorder = host ? host->GetRecorder() : nullptr)
        recorder->Register(ModuleNameUtf16, 1);
    SetDocumentSite(this);
    SetClient(m_client);
    SetApplication(&m_appCommands);
    addToolBar(Qt::TopToolBarArea, m_toolBar);
    connect(m_toolBar, &CommandToolBar::HistoryRequested, this,
            [this](uint32_t historyId) { HandleCommand(historyId, CN_COMMAND, static_cast<QWidget*>(m_toolBar)); });
    connect(this, &CMDIFrameWnd::ActiveChildChanged, this, [this] {
        UpdateTitle();
        UpdateTransport();
    });
    if (CDocTemplate* waves = m_app.FindTemplate(m_app.WaveTemplateName()))
        waves->SetFrameMaker([this](CDocument& document) { return MakeWaveFrame(document); });
    CreateEffectTree();
    m_menu.SetMorphEffects(*m_effectTree);
    setAcceptDrops(true);
    LoadSkin();
    UpdateTitle();
}

CMainFrame::~CMainFrame()
{
    SaveEffectsLibrary();
    if (m_recentLoaded) // else the stored list was never looked at, and stays
        m_recentFiles.Save(m_settings);
    m_transport.StopAndForget();
    disconnect(this, &CMDIFrameWnd::ActiveChildChanged, this, nullptr);
    for (QMdiSubWindow* window : m_client->subWindowList())
        delete window;
    DeleteEffectTree();
    SoundClipboard().Free(); // here: a host that is ended by a signal does not come to the end of the program
    if (CDocTemplate* waves = m_app.FindTemplate(m_app.WaveTemplateName()))
        waves->SetFrameMaker({});
    SetDocumentSite(nullptr);
    SetCurrentSkin(nullptr);
}

void CMainFrame::CreateEffectTree()
{
    CDebugManager& log = enDebugManager();
    log.WriteLogMessage(ModuleName, "Effects tree creation started...");
    m_effectTree = std::make_unique<CEffectTree>(LoadString(IDS_EFFECTS_TREE));
    std::error_code error;
    enXml library;
    const bool isRead = library.LoadFromFile(m_effectsLibraryPath) && m_effectTree->BuildTree(library);
    m_isLibraryOurs = isRead || (!std::filesystem::exists(m_effectsLibraryPath, error) && !error);
    if (!m_isLibraryOurs)
        log.WriteLogMessage(ModuleName, LogError, "Error: Failed to read the effects library \"%s\".",
                            m_effectsLibraryPath.string().c_str());
    log.WriteLogMessage(ModuleName, "Scanning for the rest Voice Morphs...");
    m_effectTree->ScanAllVoiceMorphs();
    log.WriteLogMessage(ModuleName, "Scanning for the rest Special Effects...");
    m_effectTree->ScanAllSpecialEffects();
    log.WriteLogMessage(ModuleName, "Scanning for the rest DirectX Effects...");
    m_effectTree->ScanAllDirectXEffects();
    log.WriteLogMessage(ModuleName, "Scanning for the rest VST Effects...");
    m_effectTree->ScanAllVSTEffects();
    log.WriteLogMessage(ModuleName, "Effects tree creation finished...");
}

/// What could not be read may be somebody's library all the same, and is not written over.
void CMainFrame::SaveEffectsLibrary()
{
    if (!m_isLibraryOurs)
        return;
    enXml library("EffectsTree");
    m_effectTree->SaveTreeStruct(library);
    std::error_code error;
    std::filesystem::create_directories(m_effectsLibraryPath.parent_path(), error);
    if (error || !library.SaveToFile(m_effectsLibraryPath))
        enDebugManager().WriteLogMessage(ModuleName, LogError, "Error: Failed to write the effects library \"%s\".",
                                         m_effectsLibraryPath.string().c_str());
}

/// The views that play through it are gone by now.
void CMainFrame::DeleteEffectTree()
{
    enDebugManager().WriteLogMessage(ModuleName, "Deleting effect trees...");
    m_effectTree.reset();
    enDebugManager().WriteLogMessage(ModuleName, "Deleting effect trees finished");
}

QMenu* CMainFrame::Menu()
{
    if (!m_recentLoaded) {
        m_recentLoaded = true;
        m_recentFiles.Load(m_settings);
        UpdateRecentMenu();
    }
    return m_menu.Menu();
}

bool CMainFrame::OpenFile(const std::filesystem::path& path)
{
    if (!m_app.OpenDocumentByName(path))
        return false;
    AddRecentFile(path);
    RefreshMenu();
    return true;
}

bool CMainFrame::IsBusy() const
{
    return m_isOpening || IsWorkRunning();
}

void CMainFrame::OpenFiles(const std::vector<std::filesystem::path>& paths)
{
    for (const std::filesystem::path& path : paths)
        m_waitingFiles.push_back({path, nullptr});
    OpenWaitingFiles();
}

void CMainFrame::OpenLater(const std::vector<std::filesystem::path>& paths)
{
    for (const std::filesystem::path& path : paths)
        m_waitingFiles.push_back({path, nullptr});
    OpenWaitingFilesLater();
}

void CMainFrame::OpenWaitingFilesLater()
{
    if (!m_waitingFiles.empty() && !IsBusy())
        QMetaObject::invokeMethod(this, &CMainFrame::OpenWaitingFiles, Qt::QueuedConnection);
}

/// Opening runs an event loop of its own, which must not open the next file in the middle of this one. What arrives
/// while something else runs waits for the idle time after it.
void CMainFrame::OpenWaitingFiles()
{
    if (IsBusy())
        return;
    m_isOpening = true;
    const QPointer<CMainFrame> self = this;
    while (self && !m_waitingFiles.empty()) {
        const WaitingFile next = m_waitingFiles.front();
        m_waitingFiles.pop_front();
        if (next.Replaced)
            next.Replaced->close();
        OpenFile(next.Path);
    }
    if (self)
        m_isOpening = false;
}

void CMainFrame::NewDocument(const std::string& templateName)
{
    m_app.CreateDocument(templateName, {});
    RefreshMenu();
}

void CMainFrame::PassMessage(std::string_view text)
{
    const std::lock_guard lock(m_lock);
    const PassedRequest request = ParsePassedRequest(text);
    if (!request.IsOpen)
        AfxSCMessageBox(Format(LoadString(IDS_PASSED_MESSAGE).c_str(), std::string(text).c_str()));
    OpenFiles(request.Files);
}

bool CMainFrame::TryClose()
{
    if (IsBusy())
        return false;
    std::vector<CMDIChildWnd*> open = Children();
    while (!open.empty()) {
        const size_t before = open.size();
        open.front()->close();
        open = Children();
        if (open.size() == before)
            break;
    }
    DeleteClosedChildren();
    return open.empty();
}

/// They would be deleted when the event loop runs next; a host that asks whether everything is closed may not let it.
void CMainFrame::DeleteClosedChildren()
{
    for (QMdiSubWindow* window : m_client->subWindowList()) {
        const auto* child = qobject_cast<CMDIChildWnd*>(window);
        if (child && child->IsClosing())
            delete window;
    }
}

bool CMainFrame::HandleCommand(uint32_t id, int code, void* extra)
{
    if (code == CN_UPDATE_COMMAND_UI) {
        CommandUi unasked{.Id = id};
        return OnCmdMsg(id, CN_UPDATE_COMMAND_UI, extra ? static_cast<CommandUi*>(extra) : &unasked);
    }
    if (code != CN_COMMAND)
        return false;
    MessageEvent message(EK_WM_COMMAND, id, reinterpret_cast<intptr_t>(extra));
    return OnHostMessage(message);
}

bool CMainFrame::OnHostMessage(MessageEvent& message)
{
    if (const std::optional<bool> routed = m_transport.Route(message, ActiveView()))
        return *routed;
    if (message.Id != EK_WM_COMMAND || IsWorkRunning())
        return false;
    const intptr_t outer = std::exchange(m_commandParameter, message.LParam);
    const bool handled = OnCmdMsg(static_cast<uint32_t>(message.WParam), CN_COMMAND, nullptr);
    m_commandParameter = outer;
    return handled;
}

bool CMainFrame::RouteCommand(uint32_t id, CommandCode code, CommandUi* ui)
{
    return HandleCommand(id, code, ui);
}

bool CMainFrame::RunCommand(uint32_t id)
{
    return HandleCommand(id, CN_COMMAND, nullptr);
}

bool CMainFrame::IsInWindow(const QObject* receiver) const
{
    if (receiver && receiver->isWidgetType())
        return static_cast<const QWidget*>(receiver)->window() == window();
    return receiver && receiver == window()->windowHandle();
}

bool CMainFrame::PreTranslate(const WindowMessage& message)
{
    const QEvent::Type type = message.Event->type();
    const bool isKey = type == QEvent::KeyPress || type == QEvent::ShortcutOverride;
    if (!isKey || !m_active || !IsInWindow(message.Receiver) || QApplication::activeModalWidget() ||
        QApplication::activePopupWidget())
        return false;
    const auto& key = static_cast<const QKeyEvent&>(*message.Event);
    const Accelerator* accelerator = FindAccelerator(MainAccelerators(), key);
    if (!accelerator)
        accelerator = FindAccelerator(ViewAccelerators(), key);
    if (!accelerator || IsKeyOfTextEntry(QApplication::focusWidget(), key) ||
        !HandleCommand(accelerator->Command, CN_UPDATE_COMMAND_UI, nullptr))
        return false;
    message.Event->accept(); // the key press follows
    if (type == QEvent::KeyPress) {
        m_commandModifiers = key.modifiers();
        RunCommand(accelerator->Command);
        m_commandModifiers.reset();
    }
    return true;
}

Qt::KeyboardModifiers CMainFrame::CommandModifiers() const
{
    return m_commandModifiers.value_or(QGuiApplication::keyboardModifiers());
}

void CMainFrame::OnIdle()
{
    m_toolBar->UpdateActions();
    OpenWaitingFilesLater();
}

void CMainFrame::UpdateTransport()
{
    const CView* view = ActiveView();
    if (m_player)
        m_player->UpdateControls(ModuleNameUtf16, view && view->CanPlay() ? 1 : 0);
}

void CMainFrame::ChangeState(bool active)
{
    m_active = active;
    if (active)
        RefreshMenu();
    QList<QPointer<QWidget>> descendants; // one of them may delete others
    for (QWidget* widget : findChildren<QWidget*>())
        descendants.append(widget);
    for (const QPointer<QWidget>& widget : descendants) {
        MessageEvent message(EK_WM_ACTIVATE_MODULE, active ? 1 : 0, 0);
        if (widget)
            QCoreApplication::sendEvent(widget, &message);
    }
}

void CMainFrame::LoadSkin()
{
    SetCurrentSkin(m_skin);
    setPalette(SkinPalette());
    m_client->LoadSkin();
    m_toolBar->LoadImages(m_skin ? m_skin->GetSkinXml(ModuleNameUtf16, u"Main") : nullptr);
    for (CMDIChildWnd* child : Children())
        child->View()->OnSkinChanged();
    update();
}

DocumentFrame* CMainFrame::MakeWaveFrame(CDocument& document)
{
    auto* child = new CWEFrame(static_cast<CWEDoc&>(document), *this);
    Watch(*child);
    connect(child, &CMDIChildWnd::TitleChanged, this, &CMainFrame::UpdateTitle);
    m_client->AddChild(child);
    child->View()->OnInitialUpdate();
    return child;
}

void CMainFrame::ShowStatusText(const QString& text)
{
    if (m_services)
        m_services->ShowStatusText(text.toStdU16String().c_str(), StatusMilliseconds);
}

void CMainFrame::AddRecentFile(const std::filesystem::path& path)
{
    if (m_recentFiles.Add(path))
        UpdateRecentMenu();
}

void CMainFrame::UpdateRecentMenu()
{
    m_menu.SetRecentFiles(m_recentFiles.Paths());
    RefreshMenu();
}

void CMainFrame::RefreshMenu()
{
    if (m_services)
        m_services->RefreshMenu(ModuleNameUtf16);
}

CMDIChildWnd* CMainFrame::FindChild(const CDocument& document) const
{
    for (CMDIChildWnd* child : Children()) {
        if (&child->Document() == &document)
            return child;
    }
    return nullptr;
}

void CMainFrame::FocusView(CDocument& document)
{
    if (const CMDIChildWnd* child = FindChild(document); child && child == ActiveChild())
        child->widget()->setFocus();
}

void CMainFrame::ReopenAs(CDocument& document, const std::filesystem::path& path)
{
    CMDIChildWnd* child = FindChild(document);
    if (!child)
        return;
    m_waitingFiles.push_back({path, child});
    OpenWaitingFilesLater();
}

/// The host may show the frame's title as its own.
void CMainFrame::UpdateTitle()
{
    const CMDIChildWnd* child = ActiveChild();
    const QString name = QString::fromStdString(LoadString(IDS_MODULE_NAME));
    if (!child)
        setWindowModified(false);
    setWindowTitle(child ? QStringLiteral("%1 - %2").arg(child->windowTitle(), name) : name);
    if (child)
        setWindowModified(child->isWindowModified());
}

std::span<const CommandEntry> CMainFrame::CommandTable() const
{
    static constexpr CommandEntry table[] = {
        CommandRange<CMainFrame, &CMainFrame::OnRecentFile>(ID_RECENT_FIRST, ID_RECENT_LAST),
        CommandRange<CMainFrame, &CMainFrame::OnMorph, &CMainFrame::OnUpdateMorph>(ID_MORPH_FIRST, ID_MORPH_LAST),
        Command<CMainFrame, &CMainFrame::OnAbout>(ID_ABOUT),
        Command<CMainFrame, &CMainFrame::OnRecord, &CMainFrame::OnUpdateRecord>(ID_RECORD),
    };
    return table;
}

void CMainFrame::OnRecentFile(uint32_t id)
{
    const std::filesystem::path path = m_recentFiles.Take(id - ID_RECENT_FIRST);
    if (path.empty())
        return;
    OpenFile(path);
    UpdateRecentMenu();
}

/// Null: the library has lost it since the menu was made.
CEffectNode* CMainFrame::MorphNode(uint32_t id) const
{
    return m_effectTree->GetRootNode().FindNode(id - ID_MORPH_FIRST);
}

/// What is in use goes out of use when it is chosen again, and stays in use when another effect does not fit the sound
/// that plays.
void CMainFrame::OnMorph(uint32_t id)
{
    CEffectAbstract* const before = m_effectTree->GetSoundMorphEffect();
    CEffectAbstract* const chosen = MorphNode(id)->GetEffect();
    const tEffError error = m_effectTree->SetSoundMorphEffect(chosen == before ? nullptr : chosen);
    if (error == EffectSuccess)
        return;
    m_effectTree->SetSoundMorphEffect(before);
    AfxSCMessageBox(EffectRefusal(error));
}

void CMainFrame::OnUpdateMorph(CommandUi& ui)
{
    const CEffectNode* const node = MorphNode(ui.Id);
    ui.Enabled = node != nullptr;
    ui.Checked = node && node->GetEffect() && node->GetEffect() == m_effectTree->GetSoundMorphEffect();
}

void CMainFrame::OnAbout()
{
    DialogHolder<AboutDialog>(this)->exec();
}

bool CMainFrame::event(QEvent* event)
{
    if (event->type() == MessageEvent::Kind) {
        const bool taken = OnHostMessage(static_cast<MessageEvent&>(*event));
        event->setAccepted(taken);
        return taken;
    }
    if (event->type() == QEvent::StatusTip) {
        const QString text = static_cast<QStatusTipEvent*>(event)->tip();
        if (!text.isEmpty()) // an empty one only says that the pointer has left
            ShowStatusText(text);
        return true;
    }
    return CMDIFrameWnd::event(event);
}

void CMainFrame::dragEnterEvent(QDragEnterEvent* event)
{
    AcceptFileDrag(*event);
}

void CMainFrame::dragMoveEvent(QDragMoveEvent* event)
{
    AcceptFileDrag(*event);
}

void CMainFrame::dropEvent(QDropEvent* event)
{
    if (!AcceptFileDrag(*event))
        return;
    OpenLater(DroppedFiles(*event->mimeData())); // the program that the files come from waits for the end of this drop
}

} // namespace ek
