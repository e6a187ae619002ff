// SPDX-License-Identifier: GPL-3.0-or-later
#include "host/TransportKeys.h"

#include <QAbstractButton>
#include <QAbstractItemView>
#include <QAbstractSlider>
#include <QAbstractSpinBox>
#include <QApplication>
#include <QComboBox>
#include <QKeyEvent>
#include <QLineEdit>
#include <QPlainTextEdit>
#include <QScrollBar>
#include <QTextEdit>

namespace ek {

namespace {

template <class... Kinds>
bool IsOneOf(const QWidget& widget)
{
    return (qobject_cast<const Kinds*>(&widget) || ...);
}

bool IsOfTransport(const QKeyEvent& key)
{
    switch (key.key()) {
    case Qt::Key_Space:
    case Qt::Key_Home:
    case Qt::Key_End:
    case Qt::Key_Left:
    case Qt::Key_Right:
    case Qt::Key_L:
        return true;
    default:
        return false;
    }
}

} // namespace

bool NeedsKey(const QWidget& widget, const QKeyEvent& key)
{
    if (IsOneOf<QLineEdit, QComboBox, QAbstractSpinBox, QTextEdit, QPlainTextEdit>(widget))
        return true;
    const bool isSpaceBar = key.key() == Qt::Key_Space;
    if (IsOneOf<QAbstractButton>(widget))
        return isSpaceBar && key.modifiers() == Qt::NoModifier;
    return !isSpaceBar && IsOneOf<QAbstractSlider, QAbstractItemView>(widget) && !IsOneOf<QScrollBar>(widget);
}

TransportKeys::TransportKeys()
{
    qApp->installEventFilter(this);
}

/// An accepted override comes back as a key press that no shortcut takes.
bool TransportKeys::eventFilter(QObject* receiver, QEvent* event)
{
    if (event->type() != QEvent::ShortcutOverride || !receiver->isWidgetType())
        return false;
    const auto& key = static_cast<const QKeyEvent&>(*event);
    if (receiver != QApplication::focusWidget() || !IsOfTransport(key) ||
        !NeedsKey(static_cast<const QWidget&>(*receiver), key))
        return false;
    event->accept();
    return true;
}

} // namespace ek
