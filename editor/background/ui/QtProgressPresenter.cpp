// SPDX-License-Identifier: GPL-3.0-or-later
#include "background/ui/QtProgressPresenter.h"

#include "background/ui/ProgressDialog.h"

#include <QApplication>
#include <QEventLoop>
#include <QMdiSubWindow>

namespace ek {

namespace {

bool IsInput(const QEvent& event)
{
    switch (event.type()) {
    case QEvent::MouseButtonPress:
    case QEvent::MouseButtonRelease:
    case QEvent::MouseButtonDblClick:
    case QEvent::MouseMove:
    case QEvent::Wheel:
    case QEvent::KeyPress:
    case QEvent::KeyRelease:
    case QEvent::ShortcutOverride:
    case QEvent::Shortcut:
    case QEvent::ContextMenu:
    case QEvent::TabletPress:
    case QEvent::TabletMove:
    case QEvent::TabletRelease:
    case QEvent::TouchBegin:
    case QEvent::TouchUpdate:
    case QEvent::TouchEnd:
    case QEvent::DragEnter:
    case QEvent::DragMove:
    case QEvent::Drop:
        return true;
    case QEvent::Close:
        return event.spontaneous();
    default:
        return false;
    }
}

/// Holds input off from every window for as long as no modal dialog does that; a dialog that comes up later knows its
/// own rules.
class InputBarrier final : public QObject {
public:
    InputBarrier() { qApp->installEventFilter(this); }

    bool eventFilter(QObject* receiver, QEvent* event) override
    {
        if (event->type() == QEvent::Close && qobject_cast<QMdiSubWindow*>(receiver)) {
            event->ignore(); // the work may be that of this very document
            return true;
        }
        const bool isTarget = receiver->isWidgetType() || receiver->isWindowType();
        if (!isTarget || !IsInput(*event) || QApplication::activeModalWidget() != m_modalBefore)
            return false;
        event->ignore();
        return true;
    }

private:
    const QWidget* m_modalBefore = QApplication::activeModalWidget();
};

} // namespace

void QtProgressPresenter::ShowDialog(QPointer<ProgressDialog>& dialog, CProgressDlg& progress) const
{
    QWidget* active = QApplication::activeWindow();
    dialog = new ProgressDialog(progress, active || !m_mainWindow ? active : m_mainWindow->window());
    dialog->setAttribute(Qt::WA_ShowWithoutActivating, QGuiApplication::applicationState() != Qt::ApplicationActive);
    dialog->show();
}

WorkResult QtProgressPresenter::Show(CProgressDlg& progress)
{
    QEventLoop loop;
    QPointer<ProgressDialog> dialog; // its parent may take it along
    const InputBarrier barrier;
    progress.OnFinish([&loop] { QMetaObject::invokeMethod(&loop, &QEventLoop::quit, Qt::QueuedConnection); });
    QTimer appearance;
    appearance.setSingleShot(true);
    QObject::connect(&appearance, &QTimer::timeout, &loop, [&] { ShowDialog(dialog, progress); });
    appearance.start(m_delay);
    progress.Begin();
    if (!progress.HasResult())
        loop.exec();
    if (!progress.HasResult())
        progress.Cancel();                           // the loop also ends when the program quits
    const WorkResult result = progress.WaitResult(); // the worker has left Finish, and with it the loop, after this
    progress.End();
    delete dialog;
    return result;
}

} // namespace ek
