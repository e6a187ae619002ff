// SPDX-License-Identifier: GPL-3.0-or-later
#include "host/TransportActions.h"

#include "skincontrols/Skin.h"

#include <QAction>
#include <QMenu>

#include <utility>
#include <vector>

/// The linker takes a resource out of a static library only when it is asked for, and from outside any namespace.
static void InitTransportIcons()
{
    Q_INIT_RESOURCE(transport);
}

namespace ek {

namespace {

struct Kind {
    TransportCommand Command;
    const char* Text;
    const char* Icon;
    std::vector<QKeyCombination> Keys; ///< the first is shown
    bool IsCheckable = false;
};

const std::vector<Kind>& Kinds()
{
    // Where an input method has taken Ctrl+Space, Shift+Space is left.
    static const std::vector<Kind> kinds = {
        {TransportToStart, QT_TRANSLATE_NOOP("ek::TransportActions", "To &Start"), "to-start", {Qt::Key_Home}},
        {TransportBack, QT_TRANSLATE_NOOP("ek::TransportActions", "&Back"), "back", {Qt::CTRL | Qt::Key_Left}},
        {TransportPlay, QT_TRANSLATE_NOOP("ek::TransportActions", "&Play"), "play", {}, true},
        {TransportPause,
         QT_TRANSLATE_NOOP("ek::TransportActions", "P&ause"),
         "pause",
         {Qt::SHIFT | Qt::Key_Space, Qt::CTRL | Qt::Key_Space},
         true},
        {TransportStop, QT_TRANSLATE_NOOP("ek::TransportActions", "St&op"), "stop", {}},
        {TransportForward,
         QT_TRANSLATE_NOOP("ek::TransportActions", "&Forward"),
         "forward",
         {Qt::CTRL | Qt::Key_Right}},
        {TransportToEnd, QT_TRANSLATE_NOOP("ek::TransportActions", "To &End"), "to-end", {Qt::Key_End}},
        {TransportRecord, QT_TRANSLATE_NOOP("ek::TransportActions", "&Record..."), "record", {}},
    };
    return kinds;
}

constexpr char LoopIcon[] = "loop";
constexpr QKeyCombination LoopKey = Qt::Key_L;
constexpr QKeyCombination SpaceBar = Qt::Key_Space;

QIcon IconNamed(const char* name, const QColor& color)
{
    return MakeIcon(QStringLiteral(":/ek-host/icons/%1.svg").arg(QLatin1String(name)), color);
}

void NameKeyInToolTip(QAction& action, const QKeySequence& key)
{
    const QString text = action.text().remove(u'&').remove(QStringLiteral("..."));
    action.setToolTip(key.isEmpty() ? text
                                    : QStringLiteral("%1 (%2)").arg(text, key.toString(QKeySequence::NativeText)));
}

} // namespace

TransportActions::TransportActions(QObject* parent)
    : QObject(parent), m_loop(new QAction(tr("&Loop"), this)), m_devices(new QAction(tr("Audio &Devices..."), this))
{
    InitTransportIcons();
    for (const Kind& kind : Kinds()) {
        auto* action = new QAction(tr(kind.Text), this);
        action->setCheckable(kind.IsCheckable);
        action->setAutoRepeat(kind.Command == TransportBack || kind.Command == TransportForward);
        NameKeyInToolTip(*action, {});
        connect(action, &QAction::triggered, this, [this, command = kind.Command] { emit CommandChosen(command); });
        m_commands[kind.Command] = action;
    }
    m_loop->setCheckable(true);
    m_loop->setAutoRepeat(false);
    connect(m_loop, &QAction::triggered, this, &TransportActions::LoopChosen);
    Show(TransportState());
}

QMenu* TransportActions::MakeMenu(QWidget* parent) const
{
    auto* menu = new QMenu(tr("&Transport"), parent);
    for (const TransportCommand command : {TransportPlay, TransportPause, TransportStop})
        menu->addAction(Of(command));
    menu->addSeparator();
    for (const TransportCommand command : {TransportToStart, TransportBack, TransportForward, TransportToEnd})
        menu->addAction(Of(command));
    menu->addSeparator();
    menu->addAction(m_loop);
    menu->addSeparator();
    menu->addAction(Of(TransportRecord));
    menu->addSeparator();
    menu->addAction(m_devices);
    return menu;
}

void TransportActions::AssignKeys(const std::function<bool(int, Qt::KeyboardModifiers)>& isFree)
{
    const auto freeOf = [&isFree](const std::vector<QKeyCombination>& keys) {
        QList<QKeySequence> free;
        for (const QKeyCombination key : keys) {
            if (isFree(key.key(), key.keyboardModifiers()))
                free.append(QKeySequence(key));
        }
        return free;
    };
    for (const Kind& kind : Kinds()) {
        Of(kind.Command)->setShortcuts(freeOf(kind.Keys));
        NameKeyInToolTip(*Of(kind.Command), Of(kind.Command)->shortcut());
    }
    m_loop->setShortcuts(freeOf({LoopKey}));
    NameKeyInToolTip(*m_loop, m_loop->shortcut());
    m_spaceBar = freeOf({SpaceBar}).value(0);
    for (const TransportCommand command : {TransportPlay, TransportStop})
        NameKeyInToolTip(*Of(command), m_spaceBar);
    PlaceSpaceBar();
}

/// Two actions with one key would make it ambiguous, and it would run neither.
void TransportActions::PlaceSpaceBar()
{
    Of(m_isRunning ? TransportPlay : TransportStop)->setShortcut({});
    Of(m_isRunning ? TransportStop : TransportPlay)->setShortcut(m_spaceBar);
}

void TransportActions::SetIcons(const QColor& color)
{
    for (const Kind& kind : Kinds())
        Of(kind.Command)->setIcon(IconNamed(kind.Icon, color));
    m_loop->setIcon(IconNamed(LoopIcon, color));
}

void TransportActions::Show(const TransportState& state)
{
    for (const auto& [command, action] : m_commands) {
        if (IsJump(command))
            action->setEnabled(state.CanPlay || !state.IsStopped());
    }
    for (const TransportCommand command : {TransportPause, TransportStop})
        Of(command)->setEnabled(!state.IsStopped());
    Of(TransportPlay)->setEnabled(state.CanPlay);
    Of(TransportRecord)->setEnabled(state.CanRecord);
    Of(TransportPlay)->setChecked(!state.IsStopped());
    Of(TransportPause)->setChecked(state.Device == CHostAudioDevice::Paused);
    m_loop->setChecked(state.IsLoop);
    if (std::exchange(m_isRunning, state.IsRunning()) != state.IsRunning())
        PlaceSpaceBar();
}

} // namespace ek
