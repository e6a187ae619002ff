// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <QPointer>

#include <utility>

namespace ek {

/// A dialog for one exec(). The window that it belongs to may be destroyed meanwhile and take it along; exec() then
/// answers "rejected".
template <class Dialog>
class DialogHolder {
public:
    template <class... Arguments>
    explicit DialogHolder(Arguments&&... arguments) : m_dialog(new Dialog(std::forward<Arguments>(arguments)...))
    {
    }
    ~DialogHolder() { delete m_dialog; }

    DialogHolder(const DialogHolder&) = delete;
    DialogHolder& operator=(const DialogHolder&) = delete;

    Dialog* Get() const { return m_dialog; } ///< null: gone with its window
    Dialog* operator->() const { return m_dialog; }
    Dialog& operator*() const { return *m_dialog; }

private:
    QPointer<Dialog> m_dialog;
};

} // namespace ek
