// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <QList>
#include <QObject>

#include <functional>

class QAction;
class QMenu;
class QMenuBar;
class QWidget;

namespace ek {

struct ModuleExports;

/// The menu bar: the module's submenus with the host's own entries among them. The submenus stay the module's; they
/// are shown, their states are asked for as they open, and what is chosen goes back as a command.
class ModuleMenu : public QObject {
public:
    ModuleMenu(const ModuleExports& module, QMenuBar& bar);

    /// The host's entries: at the end of the module's first menu; at the end of its View menu, or in the bar when it
    /// has none; and at the end of the bar. They outlive this object.
    void SetOwnEntries(QAction* quit, QMenu* skins, QMenu* transport, QMenu* help);

    /// Reads the module's menu again.
    void Rebuild(QWidget* moduleFrame);
    void Clear();

private:
    void Connect(QMenu* menu);
    void ConnectStates(QMenu* menu);
    void UpdateStates(QMenu& menu);
    void Run(const QAction& action);
    void PlaceOwnEntries(const QList<QMenu*>& menus);

    const ModuleExports& m_module;
    QMenuBar& m_bar;
    QWidget* m_frame = nullptr;
    QAction* m_quit = nullptr;
    QMenu* m_skins = nullptr;
    QMenu* m_transport = nullptr;
    QMenu* m_help = nullptr;
    QAction* m_quitSeparator;
    QAction* m_skinSeparator;
    QObject* m_connections = nullptr; ///< the context of the present connections
};

} // namespace ek
