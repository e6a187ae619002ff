// SPDX-License-Identifier: GPL-3.0-or-later
#include "StubModule.h"

#include <QKeyEvent>
#include <QString>

namespace ek {
namespace {

StubModule* g_module = nullptr;
AcceleratorTable g_table;

void AddCommand(QMenu& menu, const char* text, uint32_t id)
{
    menu.addAction(QString::fromLatin1(text))->setData(id);
}

QWidget* Initialize(QWidget* parent, void*, void*, CHostFrame* host)
{
    g_module->Calls.push_back("Initialize");
    g_module->Host = host;
    if (!g_module->Refuses) {
        g_module->Frame = new StubFrame(parent);
        g_module->Frame->setFocusPolicy(Qt::StrongFocus);
        g_module->Frame->show();
    }
    return g_module->Frame;
}

QMenu* GetMenu(QWidget*)
{
    g_module->Calls.push_back("GetMenu");
    return g_module->Menu.get();
}

const AcceleratorTable* GetAccelTable(QWidget*)
{
    g_module->Calls.push_back("GetAccelTable");
    g_table = {g_module->Keys.data(), static_cast<uint32_t>(g_module->Keys.size())};
    return &g_table;
}

void ChangeState(QWidget*, int active)
{
    g_module->Calls.push_back("ChangeState " + std::to_string(active));
}

void Free(QWidget* frame)
{
    g_module->Calls.push_back("Free");
    g_module->Menu.reset();
    delete frame;
}

int LoadSkin(QWidget*, const char16_t* name)
{
    g_module->Calls.push_back("LoadSkin " + QString::fromUtf16(name).toStdString());
    return 1;
}

int FilterDllMsg(const WindowMessage* message)
{
    if (message->Event->type() != QEvent::KeyPress)
        return 0;
    ++g_module->KeysSeen;
    return static_cast<QKeyEvent*>(message->Event)->key() == g_module->TakenKey;
}

int PassMessage(QWidget*, void*, const char16_t* text)
{
    g_module->Requests.emplace_back(text);
    return 1;
}

int OnCmdMsg(QWidget*, uint32_t id, int code, void* extra, void*)
{
    if (g_module->Unknown.contains(id))
        return 0;
    if (code == CN_COMMAND) {
        g_module->Commands.push_back(id);
        return 1;
    }
    auto* ui = static_cast<CommandUi*>(extra);
    ui->Enabled = !g_module->Disabled.contains(id);
    ui->Checked = g_module->Checked.contains(id);
    return 1;
}

int TryClose()
{
    g_module->Calls.push_back("TryClose");
    if (g_module->OnTryClose)
        g_module->OnTryClose();
    return g_module->MayClose;
}

int GetModuleInfo(void*, ModuleInfo* info)
{
    g_module->Calls.push_back("GetModuleInfo");
    return info->Size == 20;
}

} // namespace

bool StubFrame::event(QEvent* event)
{
    if (event->type() != MessageEvent::Kind)
        return QWidget::event(event);
    const auto& message = static_cast<const MessageEvent&>(*event);
    Messages.push_back({message.Id, message.WParam, message.LParam});
    event->accept();
    if (OnMessage)
        OnMessage(Messages.back());
    return true;
}

StubModule::StubModule()
    : Exports{Initialize,  GetMenu,       GetAccelTable, ChangeState,
              Free,        LoadSkin,      FilterDllMsg,  [] { ++g_module->IdleCalls; },
              PassMessage, GetModuleInfo, OnCmdMsg,      [](void*, const WindowMessage*) { return 0; },
              TryClose},
      Menu(std::make_unique<QMenu>()), FileMenu(Menu->addMenu("&File")), ViewMenu(Menu->addMenu("&View"))
{
    g_module = this;
    AddCommand(*FileMenu, "Open", 57601);
    AddCommand(*FileMenu, "Save", 57603);
    FileMenu->addAction("Print");
    AddCommand(*ViewMenu, "Effects", 1110);
    AddCommand(*ViewMenu->addMenu("More"), "Deep", 1111);
}

StubModule::~StubModule()
{
    g_module = nullptr;
}

} // namespace ek
