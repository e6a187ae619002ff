// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <QElapsedTimer>
#include <QObject>
#include <QTimer>

#include <functional>

namespace ek {

struct ModuleExports;

/// Whether the module waits in a call of its own: a menu is open, or a dialog or any other loop runs inside the
/// program's. It must not be called for more then, and what it works on must stay.
bool IsModuleBusy();

/// The module's share of the event loop: it sees input before it is delivered, and gets idle time.
///
/// Idle time is given when the loop is about to sleep and something has happened since the last time, at most ten
/// times a second; with nothing happening the process sleeps. No input and no idle time is passed on while a menu
/// is open or a modal window runs its own loop.
///
/// Timers are no activity: what they do to a window is.
class ModuleLoop : public QObject {
public:
    ModuleLoop(const ModuleExports& module, std::function<void()> idle);
    ~ModuleLoop() override;

    bool eventFilter(QObject* receiver, QEvent* event) override;

private:
    bool IsModuleInput(const QObject& receiver, const QEvent& event) const;
    void BeforeSleep();

    const ModuleExports& m_module;
    std::function<void()> m_idle;
    QTimer m_wakeUp;
    QElapsedTimer m_sinceIdle;
    bool m_hasActivity = true;
};

} // namespace ek
