// SPDX-License-Identifier: GPL-3.0-or-later
#include "host/ModuleLoop.h"

#include "host/Module.h"

#include <QAbstractEventDispatcher>
#include <QApplication>
#include <QEvent>
#include <QThread>
#include <QWidget>

#include <utility>

namespace ek {

namespace {

constexpr int IdlePauseMilliseconds = 100;

bool IsKeyEvent(QEvent::Type type)
{
    return type == QEvent::KeyPress || type == QEvent::KeyRelease || type == QEvent::ShortcutOverride;
}

bool IsMouseEvent(QEvent::Type type)
{
    return type == QEvent::MouseButtonPress || type == QEvent::MouseButtonRelease ||
           type == QEvent::MouseButtonDblClick || type == QEvent::MouseMove || type == QEvent::Wheel;
}

bool IsDialogOpen()
{
    return QApplication::activePopupWidget() || QApplication::activeModalWidget();
}

} // namespace

bool IsModuleBusy()
{
    // Work that shows its progress runs a loop before its dialog appears.
    return IsDialogOpen() || QThread::currentThread()->loopLevel() > 1;
}

ModuleLoop::ModuleLoop(const ModuleExports& module, std::function<void()> idle)
    : m_module(module), m_idle(std::move(idle))
{
    m_wakeUp.setSingleShot(true);
    qApp->installEventFilter(this);
    connect(QAbstractEventDispatcher::instance(), &QAbstractEventDispatcher::aboutToBlock, this,
            [this] { BeforeSleep(); });
}

ModuleLoop::~ModuleLoop()
{
    qApp->removeEventFilter(this);
}

bool ModuleLoop::eventFilter(QObject* receiver, QEvent* event)
{
    if (event->type() != QEvent::Timer)
        m_hasActivity = true;
    if (!IsModuleInput(*receiver, *event))
        return false;
    const WindowMessage message{receiver, event};
    return m_module.FilterDllMsg(&message) != 0;
}

/// A key that its widget ignores goes on to the parents, one event each; the module is to see it once.
bool ModuleLoop::IsModuleInput(const QObject& receiver, const QEvent& event) const
{
    if (!receiver.isWidgetType() || IsDialogOpen())
        return false;
    if (!IsKeyEvent(event.type()))
        return IsMouseEvent(event.type());
    const QWidget* focus = QApplication::focusWidget();
    return focus ? &receiver == focus : static_cast<const QWidget&>(receiver).isWindow();
}

void ModuleLoop::BeforeSleep()
{
    if (!m_hasActivity || IsModuleBusy())
        return;
    if (m_sinceIdle.isValid() && m_sinceIdle.elapsed() < IdlePauseMilliseconds) {
        if (!m_wakeUp.isActive())
            m_wakeUp.start(IdlePauseMilliseconds - static_cast<int>(m_sinceIdle.elapsed()));
        return;
    }
    m_hasActivity = false;
    m_idle();
    m_sinceIdle.start();
}

} // namespace ek
