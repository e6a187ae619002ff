// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <QDialog>

#include <string>
#include <vector>

class QListWidget;

namespace ek {

/// The list of edits that can be undone, or redone, below a button of a tool bar. Pointing at a line selects all from
/// the first one to it, and so do the arrow keys; the left button or Enter accepts that many. The right button, a press
/// outside, Escape, and losing the keyboard cancel.
class CUndoPopupDlg final : public QDialog {
    Q_OBJECT
public:
    /// `names`, the next one to be undone or redone first, are shown as they are.
    CUndoPopupDlg(const std::vector<std::string>& names, const QString& title, QWidget* parent);

    /// Shows the list below `button`, a rectangle of the screen, or above it where there is no room below; always
    /// whole on the screen. Returns at once; accepted() or rejected() follows, then finished().
    void PopUp(const QRect& button);
    int SelectedCount() const { return m_hovered + 1; } ///< lines from the first on

    void done(int result) override; ///< once: closing it takes the keyboard from the list, which would cancel

protected:
    bool eventFilter(QObject* watched, QEvent* event) override;
    void mousePressEvent(QMouseEvent* event) override;
    bool event(QEvent* event) override;

private:
    bool OnListKey(int key);
    void OnListPress(Qt::MouseButton button);
    void SelectTo(int index);
    int IndexAt(QPoint place) const;

    QListWidget* m_list;
    int m_hovered = -1; // index of the last selected line
    bool m_isDone = false;
};

} // namespace ek
