// SPDX-License-Identifier: GPL-3.0-or-later
#include "host/HostWindow.h"

#include "host/DesktopTheme.h"
#include "host/ModuleLoop.h"
#include "host/ModuleMenu.h"
#include "host/OpenRequest.h"
#include "host/SkinChoice.h"
#include "host/Transport.h"

#include "debugmanager/DebugManager.h"
#include "ek/Message.h"
#include "skincontrols/Skin.h"
#include "skincontrols/SystemColors.h"

#include <QApplication>
#include <QCloseEvent>
#include <QMenu>
#include <QMenuBar>
#include <QMessageBox>
#include <QScreen>
#include <QStatusBar>
#include <QTimer>
#include <QVBoxLayout>

#include <algorithm>
#include <utility>

namespace ek {

namespace {

constexpr uint32_t AboutCommand = 1138;
constexpr uintptr_t TextForHostCommand = 11000; ///< and two more, which carry no text
constexpr int TextForHostMilliseconds = 3000;
constexpr char GeometryKey[] = "Geometry";

AudioChoice ChooseAudio(const HostServices& services, const HostWindowOptions& options)
{
    return options.AudioOfThisRun ? AudioChoice{.Output = *options.AudioOfThisRun, .InputDevice = {}}
                                  : LoadAudioChoice(services);
}

/// The host's icons stand beside the module's, and are of its colour.
QColor IconColor(HostSkin& skin)
{
    std::string own;
    const enXml* element = skin.GetSkinXml(QString::fromLatin1(ModuleName).toStdU16String().c_str(), u"Main");
    const bool isNamed =
        element && element->GetAttribute("color", own) && QColor::isValidColor(QString::fromStdString(own));
    return isNamed ? QColor(QString::fromStdString(own)) : SkinColorOf(ColorButtonText);
}

} // namespace

HostWindow::HostWindow(const ModuleExports& module, SettingsStore& settings, const HostWindowOptions& options)
    : m_module(module), m_desktop(std::make_unique<DesktopTheme>(options.AskDesktop)), m_services(settings),
      m_audio(ChooseAudio(m_services, options)), m_objects(m_services, m_audio.Player(), m_audio.Recorder(), m_skin),
      m_skins(new SkinChoice(m_skin, m_services, *m_desktop, options.SkinOfThisRun, this)),
      m_transport(new Transport(m_audio, *this)), m_menu(new ModuleMenu(module, *menuBar())),
      m_quit(new QAction(tr("Quit"), this)), m_page(new QWidget(this))
{
    m_menu->setParent(this);
    auto* layout = new QVBoxLayout(m_page);
    layout->setContentsMargins(0, 0, 0, 0);
    setCentralWidget(m_page);
    statusBar()->setSizeGripEnabled(false);
    setWindowTitle(QString::fromLatin1(ModuleName));
    MakeOwnMenus();
    connect(m_skins, &SkinChoice::Changed, this, &HostWindow::TakeSkin);
    connect(&m_services, &HostServices::MenuChanged, this, [this] { m_isMenuStale = true; });
    connect(&m_services, &HostServices::StatusText, statusBar(), &QStatusBar::showMessage);
    connect(m_transport, &Transport::StatusText, statusBar(), &QStatusBar::showMessage);
    if (!options.AudioOfThisRun)
        connect(m_transport, &Transport::DevicesChosen, this,
                [this](const AudioChoice& choice) { StoreAudioChoice(m_services, choice); });
    TakeSkin();
    RestorePlace();
}

HostWindow::~HostWindow()
{
    FreeModule();
    m_services.SaveSettings();
}

void HostWindow::MakeOwnMenus()
{
    m_quit->setMenuRole(QAction::QuitRole);
    // Closing frees the menus, one of which is still at work while it reports what was chosen.
    connect(m_quit, &QAction::triggered, this, &QWidget::close, Qt::QueuedConnection);
    auto* help = new QMenu(tr("Help"), this);
    connect(help->addAction(tr("About %1...").arg(QString::fromLatin1(ModuleName))), &QAction::triggered, this,
            [this] { RunCommand(AboutCommand); });
    m_menu->SetOwnEntries(m_quit, m_skins->Menu(), m_transport->Menu(), help);
}

bool HostWindow::Start()
{
    ModuleInfo info{.Size = ModuleInfoSize, .Name = nullptr, .Version = nullptr, .Company = nullptr, .Kind = 0};
    if (!m_module.GetModuleInfo(nullptr, &info))
        return false;
    m_frame = m_module.Initialize(m_page, nullptr, nullptr, &m_objects);
    if (!m_frame)
        return false;
    m_page->layout()->addWidget(m_frame);
    m_frame->installEventFilter(this);
    m_audio.SetModule(m_frame);
    m_menu->Rebuild(m_frame);
    m_moduleKeys = m_module.GetAccelTable(m_frame);
    if (IsKeyFree(Qt::Key_Q, Qt::ControlModifier))
        m_quit->setShortcut(Qt::CTRL | Qt::Key_Q);
    m_transport->Actions().AssignKeys(
        [this](int key, Qt::KeyboardModifiers modifiers) { return IsKeyFree(key, modifiers); });
    TakeSkin();
    m_module.ChangeState(m_frame, 1);
    TakeFrameTitle();
    m_loop = std::make_unique<ModuleLoop>(m_module, [this] { OnIdle(); });
    return true;
}

/// The module's keys go before the host's.
bool HostWindow::IsKeyFree(int key, Qt::KeyboardModifiers modifiers) const
{
    const AcceleratorTable* table = m_moduleKeys;
    return !table || std::none_of(table->Entries, table->Entries + table->Count, [&](const Accelerator& entry) {
        return entry.Key == key && entry.Modifiers == modifiers.toInt();
    });
}

void HostWindow::TakeSkin()
{
    m_transport->SetIcons(IconColor(m_skin));
    if (m_frame)
        m_module.LoadSkin(m_frame, QString::fromStdString(m_skins->WornSkin()).toStdU16String().c_str());
}

void HostWindow::RestorePlace()
{
    const std::string stored = m_services.ReadOwnSetting(GeometryKey);
    if (restoreGeometry(QByteArray::fromBase64(QByteArray::fromStdString(stored))))
        return;
    const QSize room = screen()->availableSize() * 0.9;
    resize(QSize(1280, 800).boundedTo(room));
}

bool HostWindow::OpenFiles(const std::vector<std::filesystem::path>& files)
{
    if (!m_frame)
        return false;
    m_waitingFiles.insert(m_waitingFiles.end(), files.begin(), files.end());
    return true;
}

QStringList HostWindow::OpenFilesNow(const std::vector<std::filesystem::path>& files)
{
    const OpenRequest request = MakeOpenRequest(files);
    if (!request.Text.empty())
        m_module.PassMessage(m_frame, nullptr, request.Text.c_str());
    QStringList refusals;
    for (const std::string& refusal : request.Refusals)
        refusals.append(QString::fromStdString(refusal));
    return refusals;
}

void HostWindow::OpenWaitingFiles()
{
    if (!m_frame || IsModuleBusy())
        return;
    const QStringList refusals = OpenFilesNow(std::exchange(m_waitingFiles, {}));
    if (!refusals.isEmpty())
        QMessageBox::critical(this, QString::fromLatin1(ModuleName), refusals.join(u"\n\n"));
}

bool HostWindow::RunCommand(uint32_t id)
{
    return m_module.OnCmdMsg(m_frame, id, CN_COMMAND, nullptr, nullptr) != 0;
}

void HostWindow::OnIdle()
{
    if (!m_frame || IsModuleBusy())
        return;
    if (std::exchange(m_isMenuStale, false))
        m_menu->Rebuild(m_frame);
    // Opening runs a loop of its own, which must not start inside the present one's idle time.
    if (!m_waitingFiles.empty())
        QTimer::singleShot(0, this, &HostWindow::OpenWaitingFiles);
    m_module.ProcessDllIdle();
    AskModuleOfRecorder();
}

void HostWindow::AskModuleOfRecorder()
{
    CommandUi ui{.Id = TransportRecord};
    const bool isHandled = m_module.OnCmdMsg(m_frame, ui.Id, CN_UPDATE_COMMAND_UI, &ui, nullptr) != 0;
    m_transport->SetCanRecord(isHandled && ui.Enabled);
}

void HostWindow::Settle()
{
    OnIdle();
    QCoreApplication::sendPostedEvents();
    QCoreApplication::processEvents();
}

bool HostWindow::event(QEvent* event)
{
    if (event->type() != MessageEvent::Kind)
        return QMainWindow::event(event);
    const bool isTaken = TakeMessage(*static_cast<MessageEvent*>(event));
    event->setAccepted(isTaken);
    return isTaken;
}

bool HostWindow::TakeMessage(const MessageEvent& message)
{
    if (message.Id != EK_WM_COMMAND || message.WParam < TextForHostCommand || message.WParam > TextForHostCommand + 2)
        return false;
    if (message.WParam == TextForHostCommand && message.LParam)
        statusBar()->showMessage(QString::fromUtf16(reinterpret_cast<const char16_t*>(message.LParam)),
                                 TextForHostMilliseconds);
    return true;
}

bool HostWindow::eventFilter(QObject* receiver, QEvent* event)
{
    const bool isTitle = event->type() == QEvent::WindowTitleChange || event->type() == QEvent::ModifiedChange;
    if (receiver == m_frame && isTitle)
        TakeFrameTitle();
    return QMainWindow::eventFilter(receiver, event);
}

void HostWindow::TakeFrameTitle()
{
    if (!m_frame || m_frame->windowTitle().isEmpty())
        return;
    const QString title = m_frame->windowTitle();
    setWindowTitle(title);
    setWindowModified(title.contains(u"[*]") && m_frame->isWindowModified());
}

void HostWindow::closeEvent(QCloseEvent* event)
{
    event->setAccepted(Leave());
}

bool HostWindow::Leave()
{
    // Closing asks questions, and a second close can arrive while one of them is open.
    if (!m_frame || m_isLeaving || IsModuleBusy())
        return !m_frame;
    m_isLeaving = true;
    const size_t waitingFiles = m_waitingFiles.size();
    // Files that were handed over while the questions were asked are opened instead.
    const bool mayLeave = m_module.TryClose() != 0 && m_waitingFiles.size() == waitingFiles;
    m_isLeaving = false;
    if (mayLeave)
        LeaveWithoutAsking();
    return mayLeave;
}

void HostWindow::LeaveWithoutAsking()
{
    if (m_frame)
        m_services.WriteOwnSetting(GeometryKey, saveGeometry().toBase64().toStdString());
    FreeModule();
    m_services.SaveSettings();
}

void HostWindow::FreeModule()
{
    if (!m_frame)
        return;
    m_menu->Clear();
    m_loop.reset();
    m_audio.TakePlayerAway();
    m_audio.SetModule(nullptr);
    QWidget* frame = std::exchange(m_frame, nullptr);
    m_module.ChangeState(frame, 0);
    m_module.Free(frame);
}

} // namespace ek
