// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "host/TransportState.h"

#include <QColor>
#include <QKeySequence>
#include <QObject>

#include <functional>
#include <map>

class QAction;
class QMenu;

namespace ek {

/// The transport's entries for the bar, the menu and the keyboard: one action per command and one for the loop.
class TransportActions : public QObject {
    Q_OBJECT

public:
    explicit TransportActions(QObject* parent);

    QAction* Of(TransportCommand command) const { return m_commands.at(command); } ///< all but TransportSeek
    QAction* Loop() const { return m_loop; }
    QAction* Devices() const { return m_devices; } ///< asks for the dialog of the audio devices
    QMenu* MakeMenu(QWidget* parent) const;

    /// Gives each action those of its keys that are free. The space bar plays, and while playing stops.
    void AssignKeys(const std::function<bool(int key, Qt::KeyboardModifiers modifiers)>& isFree);
    void SetIcons(const QColor& color);
    void Show(const TransportState& state);

signals:
    void CommandChosen(uint32_t command); ///< a TransportCommand
    void LoopChosen(bool on);

private:
    void PlaceSpaceBar();

    std::map<TransportCommand, QAction*> m_commands;
    QAction* m_loop;
    QAction* m_devices;
    QKeySequence m_spaceBar; ///< empty: the module has it
    bool m_isRunning = false;
};

} // namespace ek
