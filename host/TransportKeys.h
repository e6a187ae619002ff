// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <QObject>

class QKeyEvent;
class QWidget;

namespace ek {

/// Leaves a key of the transport to the widget that has the keyboard where it means something there: the space bar to a
/// button, a letter to a text field.
class TransportKeys : public QObject {
public:
    TransportKeys();

    bool eventFilter(QObject* receiver, QEvent* event) override;
};

/// Whether the widget needs the key, which is one of the transport's, for itself.
bool NeedsKey(const QWidget& widget, const QKeyEvent& key);

} // namespace ek
