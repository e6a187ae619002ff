// SPDX-License-Identifier: GPL-3.0-or-later
#include "waveedit/ui/UndoPopupDlg.h"

#include <QGuiApplication>
#include <QKeyEvent>
#include <QListWidget>
#include <QScreen>
#include <QVBoxLayout>

#include <algorithm>

namespace ek {

namespace {

constexpr int SideMargin = 16; // beside the longest name
constexpr int LineMargin = 6;  // above and below the letters, together
constexpr int SmallestWidth = 120;

/// Where a window of that size lies at a button: below, else above, and within the screen.
QPoint PlaceAt(const QRect& button, QSize size, const QRect& screen)
{
    const int below = button.bottom() + 1;
    const int top = below + size.height() <= screen.bottom() + 1 ? below : button.top() - size.height();
    return {std::clamp(button.left(), screen.left(), std::max(screen.left(), screen.right() + 1 - size.width())),
            std::clamp(top, screen.top(), std::max(screen.top(), screen.bottom() + 1 - size.height()))};
}

QListWidget* MakeList(const std::vector<std::string>& names, QWidget* parent)
{
    auto* list = new QListWidget(parent);
    list->setObjectName("1001");
    list->setSelectionMode(QAbstractItemView::MultiSelection);
    list->setHorizontalScrollBarPolicy(Qt::ScrollBarAlwaysOff);
    list->setVerticalScrollBarPolicy(Qt::ScrollBarAlwaysOff);
    list->setMouseTracking(true);
    list->setFrameStyle(QFrame::Box | QFrame::Plain);
    for (const std::string& name : names) {
        auto* line = new QListWidgetItem(QString::fromStdString(name), list);
        line->setSizeHint(
            {list->fontMetrics().horizontalAdvance(line->text()), list->fontMetrics().height() + LineMargin});
    }
    return list;
}

/// All lines are visible, also before the list is shown.
void FitToLines(QListWidget& list)
{
    int height = 2 * list.frameWidth();
    for (int i = 0; i < list.count(); ++i)
        height += list.sizeHintForRow(i);
    list.setFixedSize(std::max(SmallestWidth, list.sizeHintForColumn(0) + SideMargin + 2 * list.frameWidth()), height);
}

} // namespace

CUndoPopupDlg::CUndoPopupDlg(const std::vector<std::string>& names, const QString& title, QWidget* parent)
    : QDialog(parent, Qt::Popup | Qt::FramelessWindowHint), m_list(MakeList(names, this))
{
    setWindowTitle(title);
    setAttribute(Qt::WA_DeleteOnClose);
    if (parent)
        setPalette(parent->palette());
    auto* layout = new QVBoxLayout(this);
    layout->setContentsMargins(0, 0, 0, 0);
    layout->setSizeConstraint(QLayout::SetFixedSize);
    layout->addWidget(m_list);
    m_list->setAccessibleName(title);
    m_list->installEventFilter(this);
    m_list->viewport()->installEventFilter(this);
    setFocusProxy(m_list);
}

void CUndoPopupDlg::PopUp(const QRect& button)
{
    FitToLines(*m_list);
    adjustSize();
    const QScreen* screen = QGuiApplication::screenAt(button.center());
    if (!screen)
        screen = QGuiApplication::primaryScreen();
    move(PlaceAt(button, size(), screen->availableGeometry()));
    show();
    m_list->setFocus(Qt::PopupFocusReason);
}

void CUndoPopupDlg::done(int result)
{
    if (m_isDone)
        return;
    m_isDone = true;
    QDialog::done(result);
}

int CUndoPopupDlg::IndexAt(QPoint place) const
{
    const QModelIndex index = m_list->indexAt(QPoint(m_list->viewport()->width() / 2, place.y()));
    return index.isValid() ? index.row() : place.y() < 0 ? -1 : m_list->count() - 1;
}

void CUndoPopupDlg::SelectTo(int index)
{
    m_hovered = std::clamp(index, -1, m_list->count() - 1);
    for (int i = 0; i < m_list->count(); ++i)
        m_list->item(i)->setSelected(i <= m_hovered);
    m_list->setCurrentRow(m_hovered, QItemSelectionModel::NoUpdate); // what a screen reader reads out
}

bool CUndoPopupDlg::eventFilter(QObject* watched, QEvent* event)
{
    switch (event->type()) {
    case QEvent::MouseMove:
        SelectTo(IndexAt(static_cast<QMouseEvent*>(event)->pos()));
        return true;
    case QEvent::MouseButtonPress:
        if (watched == m_list)
            return false; // one on the frame; those on the lines reach the viewport
        SelectTo(IndexAt(static_cast<QMouseEvent*>(event)->pos()));
        OnListPress(static_cast<QMouseEvent*>(event)->button());
        return true;
    case QEvent::MouseButtonRelease:
    case QEvent::MouseButtonDblClick:
        return true; // the press has decided
    case QEvent::KeyPress:
        return OnListKey(static_cast<QKeyEvent*>(event)->key());
    case QEvent::FocusOut:
        reject();
        return false;
    default:
        return QDialog::eventFilter(watched, event);
    }
}

void CUndoPopupDlg::OnListPress(Qt::MouseButton button)
{
    if (button == Qt::LeftButton && m_hovered >= 0)
        accept();
    else
        reject();
}

bool CUndoPopupDlg::OnListKey(int key)
{
    switch (key) {
    case Qt::Key_Up:
        SelectTo(std::max(0, m_hovered - 1));
        return true;
    case Qt::Key_Down:
        SelectTo(m_hovered + 1);
        return true;
    case Qt::Key_Home:
        SelectTo(0);
        return true;
    case Qt::Key_End:
        SelectTo(m_list->count() - 1);
        return true;
    case Qt::Key_Return:
    case Qt::Key_Enter:
        OnListPress(Qt::LeftButton);
        return true;
    default:
        return false;
    }
}

/// The popup gets the presses outside of it too.
void CUndoPopupDlg::mousePressEvent(QMouseEvent*)
{
    reject();
}

bool CUndoPopupDlg::event(QEvent* event)
{
    if (event->type() == QEvent::WindowDeactivate)
        reject();
    return QDialog::event(event);
}

} // namespace ek
