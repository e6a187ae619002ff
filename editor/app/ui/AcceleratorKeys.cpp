// SPDX-License-Identifier: GPL-3.0-or-later
#include "app/ui/AcceleratorKeys.h"

#include <QAbstractSpinBox>
#include <QComboBox>
#include <QKeyEvent>
#include <QLineEdit>
#include <QPlainTextEdit>
#include <QTextEdit>

#include <algorithm>

namespace ek {

namespace {

bool IsTextEntry(const QWidget* widget)
{
    if (const auto* combo = qobject_cast<const QComboBox*>(widget))
        return combo->isEditable();
    return qobject_cast<const QLineEdit*>(widget) || qobject_cast<const QTextEdit*>(widget) ||
           qobject_cast<const QPlainTextEdit*>(widget) || qobject_cast<const QAbstractSpinBox*>(widget);
}

bool IsEditingLetter(int key)
{
    return key == Qt::Key_A || key == Qt::Key_C || key == Qt::Key_V || key == Qt::Key_X || key == Qt::Key_Y ||
           key == Qt::Key_Z;
}

} // namespace

const Accelerator* FindAccelerator(const AcceleratorTable& table, const QKeyEvent& key)
{
    const int code = key.key() == Qt::Key_Backtab ? Qt::Key_Tab : key.key();
    const bool fromKeypad = key.modifiers() & Qt::KeypadModifier;
    const auto modifiers = (key.modifiers() & ~Qt::KeypadModifier).toInt();
    const Accelerator* end = table.Entries + table.Count;
    const Accelerator* found = std::find_if(table.Entries, end, [&](const Accelerator& entry) {
        return entry.Key == code && entry.Modifiers == static_cast<uint32_t>(modifiers) &&
               (fromKeypad || !entry.Keypad);
    });
    return found == end ? nullptr : found;
}

bool IsKeyOfTextEntry(const QWidget* focus, const QKeyEvent& key)
{
    if (!focus || !IsTextEntry(focus))
        return false;
    const Qt::KeyboardModifiers modifiers = key.modifiers() & ~(Qt::KeypadModifier | Qt::ShiftModifier);
    return modifiers == Qt::NoModifier ? key.key() < Qt::Key_F1 || key.key() > Qt::Key_F35
                                       : modifiers == Qt::ControlModifier && IsEditingLetter(key.key());
}

} // namespace ek
